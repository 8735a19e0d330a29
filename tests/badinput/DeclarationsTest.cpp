// Declarations that cannot stand: types of the type language made from values outside their
// range, a getter asked past its one type, and a module author's declaration that contradicts
// itself or comes too late. Each refusal reaches the module that declares, which fails its start.
#include <builtin/declare/Module.hpp>
#include <builtin/types/KaArrayTypes.hpp>
#include <builtin/types/NativeArgTypes.hpp>
#include <builtin/types/TypeVocabulary.hpp>

#include "BadInput.hpp"

namespace badinput {
namespace {

using types::KaArrayTypes;
using Shape = KaArrayTypes::Shape;
using Level = types::OrroSupportLevel;
constexpr auto full = KaArrayTypes::Density::FULL;
constexpr auto real = KaArrayTypes::Complexity::NOT_COMPLEX;

Row arrayType(std::string input, void (*make)()) {
    return {"array type " + std::move(input), make,
            refusal<std::invalid_argument>("cannot convert Shape to numeric dimension")};
}
Row level(int value) {
    return {"support level " + std::to_string(value),
            [value] { types::combine(static_cast<Level>(value), Level::EQUIVALENT_SUPPORT); },
            refusal<std::invalid_argument>("level1 is not a valid OrroSupportLevel")};
}
const Refusal subscript = refusal<std::out_of_range>("invalid array<T, N> subscript");

bool reportingSqrt(double x, double* out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*) {
    *out = x;
    return false;
}

double identity(double x) {
    return x;
}

// A module whose declaring function makes the mistake; the module's name comes first.
Row moduleRow(std::string input, void (*declare)(declare::Module&), const std::string& mistake) {
    return {"module declaring " + std::move(input),
            [declare] { declare::detail::declareModule("mine", declare); },
            refusal<std::invalid_argument>("module mine: " + mistake)};
}

TEST(BadInput, Declarations) {
    runTable(
        "declarations",
        {
            arrayType("of shape ND without a dimension count",
                      [] { KaArrayTypes(kaDOUBLE_CLASS, Shape::ND, full, real); }),
            arrayType("of shape UNKNOWN",
                      [] { KaArrayTypes(kaDOUBLE_CLASS, Shape::UNKNOWN, full, real); }),
            arrayType("of a shape outside the enum",
                      [] { KaArrayTypes(kaDOUBLE_CLASS, static_cast<Shape>(42), full, real); }),
            arrayType("set to shape ND",
                      [] {
                          KaArrayTypes type(kaDOUBLE_CLASS, Shape::ROW, full, real);
                          type.setShape(Shape::ND);
                      }),
            level(4),
            level(-1),
            {"getter of double asked for its second type",
             [] { types::getNativeArgType<double, types::NativeShape::SCALAR>(1); }, subscript},
            {"getter of any double array asked for its second type",
             [] { types::getAnyShapeArgType<double>(1); }, subscript},
            {"a reporting function that neither warns nor fails",
             [] {
                 declare::Module module("broken");
                 module.builtin("f").def(&reportingSqrt, declare::pure, declare::noWarnings,
                                         declare::noErrors);
             },
             refusal<std::invalid_argument>(
                 "builtin f: a function of the reporting form must be able to warn or to fail; "
                 "declare it without noWarnings or noErrors")},
            {"a builtin added to a finished module",
             [] {
                 declare::Module module("done");
                 module.finish();
                 module.builtin("late");
             },
             refusal<std::logic_error>("module done is finished: no builtin can be added")},
            moduleRow(
                "a flag beyond the inputs",
                [](declare::Module& m) {
                    m.builtin("f").def(&identity, declare::pure, declare::flag(2, "oops"));
                },
                "builtin f: the flag \"oops\" at position 2 lies beyond the inputs: the "
                "function has 1 input, so a flag may stand at positions 0 to 1"),
            moduleRow(
                "a second flag beyond the inputs",
                [](declare::Module& m) {
                    m.builtin("f").def(&identity, declare::pure, declare::flag(0, "a"),
                                       declare::flag(3, "b"));
                },
                "builtin f: the flag \"b\" at position 3 lies beyond the inputs: the "
                "function has 1 input, so a flag may stand at positions 0 to 2"),
            moduleRow(
                "two flags at one position",
                [](declare::Module& m) {
                    m.builtin("f").def(&identity, declare::pure, declare::flag(1, "a"),
                                       declare::flag(1, "b"));
                },
                "builtin f: the flags \"a\" and \"b\" stand at one position, 1"),
            moduleRow(
                "a boxing declaration beside a flag",
                [](declare::Module& m) {
                    m.builtin("f").def(&identity, declare::pure, declare::boxed<double>(),
                                       declare::flag(1, "fast"));
                },
                "builtin f: a boxing declaration names one type per input"),
            moduleRow(
                "elementwise on a function of a string",
                [](declare::Module& m) {
                    m.builtin("f").def([](std::u16string_view) { return 1.0; }, declare::pure,
                                       declare::elementwise);
                },
                "builtin f: elementwise takes a function of one to four numbers that returns a "
                "number, each by value"),
            moduleRow(
                "elementwise on a function of five numbers",
                [](declare::Module& m) {
                    m.builtin("f").def([](double a, double, double, double, double) { return a; },
                                       declare::elementwise);
                },
                "builtin f: elementwise takes a function of one to four numbers that returns a "
                "number, each by value"),
            moduleRow(
                "a builtin without a name",
                [](declare::Module& m) { m.builtin("").def(&identity, declare::pure); },
                "a builtin needs a name"),
        });
}

}  // namespace
}  // namespace badinput
