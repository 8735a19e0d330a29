// Shapes that do not broadcast: in some dimension the two sizes differ and neither is 1. The
// interpreter's matching takes no variant for them; the engine's road reaches the lifted entry,
// which refuses them before it makes anything.
#include <complex>
#include <cstdint>

#include "BadInput.hpp"

namespace badinput {
namespace {

using Arrays = std::vector<ka::ArrayPtr>;

ka::ArrayPtr zeros(const ka::Dims& dims, kaClassID classId = kaDOUBLE_CLASS,
                   kaComplexity c = kaREAL) {
    ka::ArrayPtr a = ka::createNumeric(classId, dims, c);
    const std::size_t bytes =
        matrix::numberOfElements(a.get()) * ka::elementSize(classId) * (c == kaCOMPLEX ? 2 : 1);
    std::fill_n(static_cast<char*>(matrix::data(a.get())), bytes, 0);
    return a;
}

Row interpreted(const char* name, ka::Dims d0, ka::Dims d1, kaClassID classId = kaDOUBLE_CLASS,
                kaComplexity c = kaREAL) {
    return {std::string(name) + " of " + testing::PrintToString(d0) + " and " +
                testing::PrintToString(d1),
            [=] { call(name, arrays(zeros(d0, classId, c), zeros(d1, classId, c))); },
            refusal<NoVariantTakesCall>("builtin function implementation is nullptr")};
}

Row engine(const char* name, std::vector<std::string> types, ka::Dims d0, ka::Dims d1,
           const std::string& sizes, kaClassID classId = kaDOUBLE_CLASS) {
    return {std::string(name) + " of " + sizes + " by the engine",
            [=] { engineCall(name, types, arguments(zeros(d0, classId), zeros(d1, classId))); },
            refusal<std::invalid_argument>("element-wise inputs of sizes " + sizes +
                                           " do not broadcast")};
}

TEST(BadInput, Shapes) {
    const std::vector<std::string> doubles = {"double", "double"};
    runTable("shapes",
             {
                 interpreted("plus", {1, 3}, {1, 2}),
                 interpreted("plus", {2, 3}, {3, 2}),
                 interpreted("plus", {0, 3}, {2, 3}),
                 interpreted("plus", {2, 3, 4}, {2, 3, 5}),
                 interpreted("plus", {2, 1, 4}, {1, 3, 2}),
                 interpreted("minus", {1, 2}, {1, 3}, kaINT32_CLASS),
                 interpreted("times", {2, 1, 3}, {3, 1}, kaSINGLE_CLASS),
                 interpreted("plus", {1, 2}, {1, 3}, kaDOUBLE_CLASS, kaCOMPLEX),
                 interpreted("hypot", {3, 1}, {4, 1}),

                 engine("plus", doubles, {1, 3}, {1, 2}, "1x3 and 1x2"),
                 engine("plus", doubles, {2, 3}, {3, 2}, "2x3 and 3x2"),
                 engine("plus", doubles, {0, 3}, {2, 3}, "0x3 and 2x3"),
                 engine("plus", doubles, {2, 3, 4}, {2, 3, 5}, "2x3x4 and 2x3x5"),
                 engine("plus", doubles, {2, 1, 4}, {1, 3, 2}, "2x1x4 and 1x3x2"),
                 engine("minus", {"int32", "int32"}, {1, 2}, {1, 3}, "1x2 and 1x3", kaINT32_CLASS),
                 engine("hypot", doubles, {3, 1}, {4, 1}, "3x1 and 4x1"),
             });
}

}  // namespace
}  // namespace badinput
