#include <fl/filesystem.hpp>
#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace fl::filesystem;
using detail::concatenate_pathname;
using detail::make_native_form;

TEST(Filesystem, MakeNativeFormFoldsSeparators) {
  struct Case {
    std::u16string in;
    std::u16string native;
  };
  const std::vector<Case> cases = {
      {u"", u""},
      {u"bin\\win64\\x", u"bin/win64/x"},
      {u"a//b\\\\c/", u"a/b/c"},
      {u"/root/", u"/root"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(fl::i18n::to_string(c.in));
    EXPECT_EQ(make_native_form(c.in, true), c.native);
    EXPECT_EQ(make_native_form(c.in, false), c.in);
  }
}

TEST(Filesystem, ConcatenateLeavesOneSeparator) {
  struct Case {
    std::u16string base, relative, joined;
  };
  const std::vector<Case> cases = {
      {u"/a/", u"b", u"/a/b"}, {u"/a", u"/b", u"/a/b"}, {u"", u"b\\c", u"b/c"},
      {u"/a", u"", u"/a"},     {u"/", u"x", u"/x"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(fl::i18n::to_string(c.base + u" + " + c.relative));
    std::u16string base = c.base;
    concatenate_pathname(base, c.relative, true);
    EXPECT_EQ(base, c.joined);
    EXPECT_EQ((path(c.base) / c.relative).text(), c.joined);
  }
}

TEST(Filesystem, InstallPathComesFromTheEnvironmentElseFromAboveTheLibrary) {
  ASSERT_EQ(unsetenv("KELDOR_INSTALL_ROOT"), 0);
  const std::u16string derived = get_install_path();
  ASSERT_FALSE(derived.empty());
  EXPECT_EQ(derived.front(), u'/');
  // The stand-in lives in <root>/lib, so <root>/lib/libplatform_fl.so must exist.
  const std::string library = fl::i18n::to_string(derived) + "/lib/libplatform_fl.so";
  EXPECT_EQ(std::system(("test -f '" + library + "'").c_str()), 0) << library;

  ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", "/opt/keldor", 1), 0);
  EXPECT_EQ(get_install_path(), u"/opt/keldor");
  ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", "", 1), 0);
  EXPECT_EQ(get_install_path(), derived);
  unsetenv("KELDOR_INSTALL_ROOT");
}

}  // namespace
