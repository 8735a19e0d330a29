#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace fl::i18n;

TEST(I18n, RoundTripsAcrossThePlanes) {
  struct Case {
    std::string utf8;
    std::u16string utf16;
  };
  const std::vector<Case> cases = {
      {"", u""},
      {"abc", u"abc"},
      {"caf\xc3\xa9", u"caf\u00e9"},
      {"\xe2\x82\xac", u"\u20ac"},
      {"\xf0\x9f\x98\x80", u"\U0001F600"},  // needs a surrogate pair
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(utf8_to_ustring(c.utf8), c.utf16);
    EXPECT_EQ(ustring_to_utf8(c.utf16), c.utf8);
    EXPECT_EQ(to_string(c.utf16), c.utf8);
  }
}

TEST(I18n, RefusesMalformedText) {
  for (std::string bad : {"\xff", "ab\xc3", "\xc0\xaf", "\xed\xa0\x80"}) {
    SCOPED_TRACE(bad);
    EXPECT_THROW(utf8_to_ustring(bad), std::invalid_argument);
  }
  for (std::u16string bad : {std::u16string(1, char16_t(0xD800)), std::u16string(u"a") + char16_t(0xDC00)}) {
    EXPECT_THROW(ustring_to_utf8(bad), std::invalid_argument);
    EXPECT_THROW(to_string(bad), std::invalid_argument);
  }
}

}  // namespace
