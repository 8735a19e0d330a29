// The foundation library: the fatal report of terminate, readable type names and UTF-8/UTF-16
// conversion. Paths and the installation root: tests/services (no_framework, reference_bundle);
// malformed text: tests/badinput/TextTest.cpp.
#include <fl/diag.hpp>
#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace {

TEST(DiagTerminateDeathTest, PrintsTextPathLineAndSignatureThenAborts) {
    EXPECT_DEATH(
        foundation::core::diag::terminate("broken invariant", "lib/Widget", 42, "void widget()"),
        "broken invariant(.|\n)*lib/Widget:42(.|\n)*void widget\\(\\)");
}

struct Named {};
namespace inner {
template <class T>
struct Box {};
}  // namespace inner

TEST(DemangleTypeidName, GivesTheReadableNameOrRefusesWithTheNameAsItsText) {
    using foundation::core::diag::detail::demangle_typeid_name;
    const std::pair<const char*, std::string> cases[] = {
        {typeid(int).name(), "int"},
        {typeid(inner::Box<Named>).name(),
         "(anonymous namespace)::inner::Box<(anonymous namespace)::Named>"},
    };
    for (const auto& [mangled, readable] : cases) {
        EXPECT_EQ(demangle_typeid_name(mangled, false), readable);
        EXPECT_EQ(demangle_typeid_name(mangled, true), readable + " 'RTTI Type Descriptor'");
    }
    try {
        demangle_typeid_name("_Z?not-a-name", true);
        FAIL() << "expected std::invalid_argument";
    } catch (const std::invalid_argument& e) {
        EXPECT_STREQ(e.what(), "_Z?not-a-name");
    }
    EXPECT_THROW(demangle_typeid_name(nullptr, true), std::invalid_argument);
}

TEST(I18n, RoundTripsAcrossThePlanes) {
    using namespace fl::i18n;
    const std::pair<std::string, std::u16string> cases[] = {{"", u""},
                                                            {"caf\xc3\xa9", u"caf\u00e9"},
                                                            {"\xe2\x82\xac", u"\u20ac"},
                                                            {"\xf0\x9f\x98\x80", u"\U0001F600"}};
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(utf8_to_ustring(utf8), utf16);
        EXPECT_EQ(ustring_to_utf8(utf16), utf8);
        EXPECT_EQ(to_string(utf16), utf8);
    }
}

}  // namespace
