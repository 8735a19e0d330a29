#include <fl/diag.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

TEST(DiagTerminateDeathTest, PrintsTextPathLineAndSignatureThenAborts) {
  EXPECT_DEATH(foundation::core::diag::terminate("broken invariant", "lib/Widget", 42,
                                                 "void widget()"),
               "broken invariant(.|\n)*lib/Widget:42(.|\n)*void widget\\(\\)");
}

TEST(DiagTerminate, SwitchIsOnByDefaultAndReturnsThePreviousAnswer) {
  EXPECT_TRUE(fl_diag_terminate());
  EXPECT_TRUE(fl_set_diag_terminate(false));
  EXPECT_FALSE(fl_diag_terminate());
  EXPECT_FALSE(fl_set_diag_terminate(true));
  EXPECT_TRUE(fl_diag_terminate());
}

struct Named {};
namespace inner {
template <class T>
struct Box {};
}  // namespace inner

TEST(DemangleTypeidName, GivesTheReadableName) {
  using foundation::core::diag::detail::demangle_typeid_name;
  struct Case {
    const char* mangled;
    std::string readable;
  };
  const std::vector<Case> cases = {
      {typeid(int).name(), "int"},
      {typeid(Named).name(), "(anonymous namespace)::Named"},
      {typeid(inner::Box<Named>).name(),
       "(anonymous namespace)::inner::Box<(anonymous namespace)::Named>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.mangled);
    EXPECT_EQ(demangle_typeid_name(c.mangled, false), c.readable);
    EXPECT_EQ(demangle_typeid_name(c.mangled, true), c.readable + " 'RTTI Type Descriptor'");
  }
}

TEST(DemangleTypeidName, RefusesWhatIsNotAMangledNameWithTheNameAsItsText) {
  using foundation::core::diag::detail::demangle_typeid_name;
  for (const bool decorated : {true, false}) {
    try {
      demangle_typeid_name("_Z?not-a-name", decorated);
      FAIL() << "expected std::invalid_argument";
    } catch (const std::invalid_argument& e) {
      EXPECT_STREQ(e.what(), "_Z?not-a-name");
    }
  }
  EXPECT_THROW(demangle_typeid_name(nullptr, true), std::invalid_argument);
}

}  // namespace
