// The three selectors: which positions hold a wrapper, where the table ends, and that the
// positions around the internal boundaries of the table hold the right members.
#include "WrapperCheck.hpp"

#include <set>

namespace Norvane::builtin::testing {
namespace {

using builtinreg::detail::getExportedInlineCWrapperFcn;
using builtinreg::detail::Wrapper;

TEST(WrapperSelector, PositionsPastTheEndGiveNull) {
  struct Case {
    const char* name;
    Wrapper wrapper;
    bool present;
  };
  const Case cases[] = {
      {"() out 16: void f()", getExportedInlineCWrapperFcn(nullptr, 16), true},
      {"() out 17", getExportedInlineCWrapperFcn(nullptr, 17), false},
      {"(a) position 271", getExportedInlineCWrapperFcn(nullptr, 16, 15), true},
      {"(a) position 272", getExportedInlineCWrapperFcn(nullptr, 17, 0), false},
      {"(a) position 272 by in0", getExportedInlineCWrapperFcn(nullptr, 16, 16), false},
      {"(a, b) position 4351", getExportedInlineCWrapperFcn(nullptr, 16, 15, 15), true},
      {"(a, b) position 4352", getExportedInlineCWrapperFcn(nullptr, 17, 0, 0), false},
      {"(a, b) position 4352 by in1", getExportedInlineCWrapperFcn(nullptr, 16, 15, 16), false},
      {"(a, b) far past the end", getExportedInlineCWrapperFcn(nullptr, 1000, 3, 3), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.wrapper != nullptr, c.present);
  }
}

TEST(WrapperSelector, AllPositionsHoldDistinctWrappers) {
  std::set<Wrapper> seen;
  std::size_t count = 0;
  for (std::size_t out = 0; out <= noOutputIndex; ++out) {
    seen.insert(getExportedInlineCWrapperFcn(nullptr, out));
    ++count;
    for (std::size_t in0 = 0; in0 < parameterTypeCount; ++in0) {
      seen.insert(getExportedInlineCWrapperFcn(nullptr, out, in0));
      ++count;
      for (std::size_t in1 = 0; in1 < parameterTypeCount; ++in1) {
        seen.insert(getExportedInlineCWrapperFcn(nullptr, out, in0, in1));
        ++count;
      }
    }
  }
  EXPECT_EQ(count, 4641u);
  EXPECT_EQ(seen.size(), 4641u);
  EXPECT_EQ(seen.count(nullptr), 0u);
}

// Positions 271, 511/512, 4095/4096 and 4351 sit where the table is cut into parts; each holds
// the member of its own signature.
TEST(WrapperSelector, PositionsAtTheInnerBoundariesHoldTheirOwnSignature) {
  using Object = Norvane::orro::OrroObject*;
  checkWrapperUnderAllConventions<void, Object>();                          // 271
  checkWrapperUnderAllConventions<double, Object, Object>();                // 511
  checkWrapperUnderAllConventions<float, std::uint64_t, std::uint64_t>();   // 512
  checkWrapperUnderAllConventions<Object, Object, Object>();                // 4095
  checkWrapperUnderAllConventions<void, std::uint64_t, std::uint64_t>();    // 4096
  checkWrapperUnderAllConventions<void, Object, Object>();                  // 4351
  checkWrapperUnderAllConventions<double, double, int>();                   // 278
}

}  // namespace
}  // namespace Norvane::builtin::testing
