// kcall --explain against invoke: on random search lists and random calls, the variant that the
// explanation says takes the call is the one that invoke runs, and a call that it says no
// variant takes goes to the default implementation.
#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>
#include <vector>

#include <builtin/variants/BuiltinVariantLists.hpp>

#include "../invoke/InvokeSupport.hpp"
#include "Describe.hpp"
#include "LiveArrays.hpp"

namespace invoketest {
namespace {

// A builtin over lists that BuiltinVariantLists sorted, cleaned and distributed.
class ListsFcn final : public BuiltinFcn {
public:
    explicit ListsFcn(const builtinreg::BuiltinVariantLists& lists)
        : BuiltinFcn("f", {}, lists, defaultVariant(), nullptr) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, Consider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new ListsFcn(*this); }
};

class Explain : public testsupport::LiveArrayTest {
protected:
    std::mt19937 random_{20261124};

    std::size_t below(std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_);
    }

    ArgType randomType() {
        const ArgType pool[] = {scalar(),
                                scalar(kaSINGLE_CLASS),
                                scalar(kaINT32_CLASS),
                                scalar(kaDOUBLE_CLASS, true),
                                anyArray(),
                                anyArray(kaINT32_CLASS),
                                anyArray(kaUNKNOWN_CLASS),
                                flag("on")};
        return pool[below(std::size(pool))];
    }

    // Up to twelve variants of up to two inputs; those of scalars alone may be element-wise.
    std::vector<BuiltinVariant> randomVariants() {
        std::vector<BuiltinVariant> variants;
        const std::size_t count = 1 + below(12);
        for (std::size_t k = 0; k < count; ++k) {
            std::vector<ArgType> in;
            for (std::size_t i = below(3); i > 0; --i) in.push_back(randomType());
            const bool scalars = std::all_of(in.begin(), in.end(), [](const ArgType& t) {
                return std::holds_alternative<NumericScalarTypes>(t);
            });
            std::vector<ArgType> out;
            if (below(4) != 0) out.push_back(scalar());
            variants.push_back(
                makeVariant({.in = std::move(in),
                             .out = std::move(out),
                             .typedEntry = &recordingEntry,
                             .elementWise = scalars && below(2) == 0 ? V::IsElementWise::YES
                                                                     : V::IsElementWise::NO,
                             .name = "v" + std::to_string(k)}));
        }
        return variants;
    }

    ka::ArrayPtr randomArgument() {
        switch (below(8)) {
            case 0: return ka::scalar(2.0);
            case 1: return ka::scalar(1.5f);
            case 2: return ka::scalar<std::int32_t>(3);
            case 3: return ka::createNumeric(kaDOUBLE_CLASS, {2, 3});
            case 4: return ka::createNumeric(kaDOUBLE_CLASS, {2, 1});
            case 5: return ka::createNumeric(kaDOUBLE_CLASS, {3, 2});
            case 6: return ka::createNumeric(kaDOUBLE_CLASS, {0, 3});
            default: return ka::charArray("on");
        }
    }
};

// The variant that the explanation says takes the call, or "default".
std::string explainedChoice(const std::string& explanation) {
    static const std::regex taken(R"(\d+\. (v\d+)\(.*: takes the call)");
    std::smatch match;
    return std::regex_search(explanation, match, taken) ? match[1].str() : "default";
}

TEST_F(Explain, ChoosesAsInvokeDoes) {
    std::size_t calls = 0, taken = 0;
    for (int list = 0; list < 200; ++list) {
        const builtinreg::BuiltinVariantLists lists(randomVariants());
        const ListsFcn fcn(lists);
        for (int call = 0; call < 25; ++call, ++calls) {
            std::vector<ka::ArrayPtr> held;
            std::vector<kaArray_tag*> args;
            for (std::size_t i = below(3); i > 0; --i)
                args.push_back(held.emplace_back(randomArgument()).get());
            const int nlhs = static_cast<int>(below(2));
            const std::string explanation =
                kcall::explainCall("f", fcn, args, static_cast<std::size_t>(nlhs));
            seen.ran.clear();
            kaArray_tag* plhs[1] = {nullptr};
            fcn.call(nlhs, plhs, static_cast<int>(args.size()), args.data());
            const ka::ArrayPtr result(plhs[0]);
            ASSERT_EQ(seen.ran.size(), 1u);
            ASSERT_EQ(explainedChoice(explanation), seen.ran.back()) << explanation;
            taken += seen.ran.back() != "default";
        }
    }
    // The draw reaches both roads often enough to mean something.
    EXPECT_GT(taken, calls / 5);
    EXPECT_LT(taken, calls - calls / 5);
}

}  // namespace
}  // namespace invoketest
