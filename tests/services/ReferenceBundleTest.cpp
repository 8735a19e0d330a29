// A process whose builtin service bundles are those of the build tree: the reference string and
// class-system bundles start from the installation root, and string arrays of the string bundle.
#include <builtin/services/services.hpp>

#include <foundation/cppmicroservices/framework.hpp>
#include <ka/ka.hpp>
#include <stringbundle/KeldorString.hpp>

#include <gtest/gtest.h>

#include <ModuleHost.hpp>

#include <cstdlib>
#include <stdexcept>

#include "LiveArrays.hpp"

using namespace Norvane::builtin;

namespace {

class ReferenceBundle : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() { testsupport::startFramework(); }
    void SetUp() override {
        LiveArrayTest::SetUp();
        ASSERT_NE(getHeldService<StringSupport>(), nullptr);
    }
    const StringSupport& strings() { return *getHeldService<StringSupport>(); }
};

TEST_F(ReferenceBundle, IsStartedFromTheInstallRoot) {
    EXPECT_EQ(strings().getStringClassId(), 19);
    EXPECT_NE(getHeldService<IZOBJRegWrapper>(), nullptr);  // the class-system bundle's
}

TEST_F(ReferenceBundle, StringArraysOfAnySize) {
    const std::size_t dims[] = {2, 3}, wrongDims[] = {2, 2}, emptyDims[] = {0, 3};
    const std::vector<std::u16string> texts = {u"a", u"bc", u"", u"d", u"\u00e9t\u00e9", u"f"};
    const auto array = strings().createString(dims, texts);
    EXPECT_EQ(matrix::classId(array.get()), 19);
    EXPECT_TRUE(strings().isString(array.get()));
    EXPECT_EQ(strings().getNumberOfStrings(array.get()), 6u);
    EXPECT_EQ(strings().getStrings(array.get()), texts);
    EXPECT_EQ(strings().getString(array.get(), 5), u"f");
    EXPECT_EQ(strings().getStringUtf8(array.get(), 4), "\xc3\xa9t\xc3\xa9");
    EXPECT_THROW(strings().getString(array.get(), 6), std::out_of_range);
    EXPECT_THROW(strings().createString(wrongDims, texts), std::invalid_argument);
    EXPECT_EQ(strings().getNumberOfStrings(strings().createEmptyStrings(emptyDims).get()), 0u);
}

TEST_F(ReferenceBundle, OnlyAOneByOneStringIsAFlagAndEngineStringsBecomeOne) {
    const std::size_t scalar[] = {1, 1}, pair[] = {1, 2};
    const auto chars = ka::charArray(std::u16string_view(u"on"));
    EXPECT_EQ(strings().getStringFlag(strings().createString(scalar, {u"on"}).get()),
              std::u16string_view(u"on"));
    EXPECT_EQ(strings().getStringFlag(strings().createString(pair, {u"on", u"off"}).get()),
              std::nullopt);
    EXPECT_EQ(strings().getStringFlag(chars.get()), std::nullopt);
    EXPECT_FALSE(strings().isString(chars.get()));
    EXPECT_THROW(strings().getString(chars.get(), 0), std::invalid_argument);

    Norvane::String::String text(u"hello");
    EXPECT_EQ(strings().getStringFlag(strings().stringToKaArray(&text, 0).get()),
              std::u16string_view(u"hello"));
    EXPECT_THROW(strings().stringToKaArray(&text, 1), std::invalid_argument);
    EXPECT_THROW(strings().stringToKaArray(nullptr, 0), std::invalid_argument);
}

}  // namespace
