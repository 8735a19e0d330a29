// With the reference string bundle: a 1-by-1 string matches a flag by its text and is left out of
// the arguments; other strings and char rows stand for no flag.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include <builtin/services/BuiltinServices.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include "InvokeSupport.hpp"
#include "live_arrays.hpp"

namespace invoketest {
namespace {

class InvokeWithStrings : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() {
        unsetenv("KELDOR_INSTALL_ROOT");
        foundation::cppmicroservices::createFramework();
    }
    static ka::ArrayPtr strings(std::vector<std::u16string> texts) {
        const std::size_t dims[] = {1, texts.size()};
        return getHeldService<StringSupport>()->createString(dims, std::move(texts));
    }
};

TEST_F(InvokeWithStrings, FlagsMatchByTextAndDropOut) {
    ASSERT_NE(getHeldService<StringSupport>(), nullptr);
    // Wrappers of one input: a flag left among the arguments would make them fail.
    Lists lists{.noOrro = {doubleVariant("fast, x", {flag("fast"), scalar()}),
                           doubleVariant("slow, x", {flag("slow"), scalar()}),
                           doubleVariant("x, fast", {scalar(), flag("fast")})}};
    std::sort(lists.noOrro.begin(), lists.noOrro.end());
    const TestFcn fcn(lists, defaultVariant());
    const ka::ArrayPtr fast = strings({u"fast"}), slow = strings({u"slow"}), pair = strings({u"fast", u"slow"});
    const ka::ArrayPtr chars = ka::charArray(std::u16string_view(u"fast")), x = ka::scalar(2.0);
    const struct {
        kaArray_tag *first, *second;
        const char* expected;
    } cases[] = {
        {fast.get(), x.get(), "fast, x"}, {slow.get(), x.get(), "slow, x"}, {x.get(), fast.get(), "x, fast"},
        {pair.get(), x.get(), "default"}, {chars.get(), x.get(), "default"},
    };
    for (const auto& c : cases) {
        seen.ran.clear();
        EXPECT_EQ(callForOne(fcn, {c.first, c.second}), std::string(c.expected) == "default" ? -1.0 : 3.0);
        EXPECT_EQ(seen.ran, std::vector<std::string>{c.expected});
    }
    EXPECT_EQ(fast->refCount, 1u);

    const Lists recorded{.noOrro = {makeVariant({.in = {flag("a"), scalar(), flag("b"), anyArray()},
                                                 .out = {scalar()}, .typedEntry = &recordingEntry})}};
    const ka::ArrayPtr a = strings({u"a"}), b = strings({u"b"});
    EXPECT_EQ(callForOne(TestFcn(recorded, defaultVariant()), {a.get(), x.get(), b.get(), x.get()}), 2.0);
    EXPECT_EQ(seen.argumentAlternatives, (std::vector<int>{1, 13}));
}

}  // namespace
}  // namespace invoketest
