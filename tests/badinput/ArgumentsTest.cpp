// Arguments that do not fit: Parameters of another alternative than a typed entry takes, as the
// engine could hand them, and arrays of the wrong class, by the engine's road and by the
// interpreter's, where no variant takes them and the builtin has no default implementation.
#include <complex>
#include <cstdint>

#include <boost/variant/get.hpp>

#include <builtin/objects/OrroObjectArrays.hpp>
#include <builtin/objects/OrroObjectIdentity.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <engine/OrroObject.hpp>

#include "BadInput.hpp"

namespace badinput {
namespace {

using Complex = std::complex<double>;
const std::vector<std::string> doubles = {"double", "double"};

Row entry(std::string input, const char* name, std::vector<std::string> types,
          std::vector<Argument> (*make)(), Refusal expected) {
    return {std::string(name) + "(" + input + ") by the engine",
            [name, types = std::move(types), make] { engineCall(name, types, make()); },
            std::move(expected)};
}

Refusal wrongAlternative(const std::string& expected, const std::string& actual) {
    return refusal<std::logic_error>("Parameter should contain " + expected +
                                     " but actually contained " + actual);
}
const Refusal badGet = refusal<boost::bad_get>("boost::bad_get: failed value get using boost::get");
const Refusal badCast = refusal<std::bad_cast>("std::bad_cast");

TEST(BadInput, ParameterAlternatives) {
    using S = Norvane::String::String;
    using O = Norvane::orro::OrroObject;
    runTable("Parameter alternatives",
             {
                 entry(
                     "float, double", "plus", doubles,
                     [] { return arguments(Parameter(1.0f), Parameter(1.0)); },
                     wrongAlternative("double", "float")),
                 entry(
                     "array, int", "plus", doubles,
                     [] {
                         return arguments(ka::row({1.0, 2.0}), Parameter(1));
                     },
                     wrongAlternative("double", "int")),
                 entry(
                     "String*, double", "plus", doubles,
                     [] { return arguments(Parameter(static_cast<S*>(nullptr)), Parameter(1.0)); },
                     wrongAlternative("double", "Norvane::String::String*")),
                 entry(
                     "double, OrroObject*", "plus", doubles,
                     [] { return arguments(Parameter(1.0), Parameter(static_cast<O*>(nullptr))); },
                     wrongAlternative("double", "Norvane::orro::OrroObject*")),
                 entry(
                     "complex, array", "plus", doubles,
                     [] { return arguments(Parameter(Complex(1, 1)), ka::row({1.0})); },
                     wrongAlternative("double", "std::complex<double>")),
                 entry(
                     "bool, double", "plus", doubles,
                     [] { return arguments(Parameter(true), Parameter(1.0)); },
                     wrongAlternative("double", "bool")),
                 entry(
                     "uint64, array", "plus", doubles,
                     [] { return arguments(Parameter(std::uint64_t{1}), ka::row({1.0})); },
                     wrongAlternative("double", "unsigned long")),
                 entry(
                     "double, int", "plus", {"int32", "int32"},
                     [] { return arguments(Parameter(1.0), Parameter(1)); },
                     wrongAlternative("int", "double")),
                 entry(
                     "float", "sqrt", {"double"}, [] { return arguments(Parameter(4.0f)); },
                     wrongAlternative("double", "float")),
                 entry(
                     "short", "sqrt", {"double"}, [] { return arguments(Parameter(short{4})); },
                     wrongAlternative("double", "short")),
                 entry(
                     "float", "inv", {"double"}, [] { return arguments(Parameter(2.0f)); }, badGet),
                 entry(
                     "int", "inv", {"double"}, [] { return arguments(Parameter(2)); }, badGet),
                 entry(
                     "double", "sum", {"kaArray_of<double,$Shape0,ka_full,false>"},
                     [] { return arguments(Parameter(2.0)); }, badGet),
                 entry(
                     "float", "sum", {"double"}, [] { return arguments(Parameter(2.0f)); }, badGet),
                 entry(
                     "double", "upper", {"scalar_keldor_string"},
                     [] { return arguments(Parameter(2.0)); }, badGet),
                 entry(
                     "double", "count", {"orro_object<*"}, [] { return arguments(Parameter(2.0)); },
                     badGet),
             });
}

ka::ArrayPtr strings(std::vector<std::u16string> texts) {
    const std::size_t dims[] = {1, texts.size()};
    return getHeldService<StringSupport>()->createString(dims, std::move(texts));
}

ka::ArrayPtr sparse() {
    return ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{0, 0, 1.0}});
}

Row interpreted(
    std::string input, const char* name, std::vector<ka::ArrayPtr> (*make)(), int nlhs = 1,
    Refusal expected = refusal<NoVariantTakesCall>("builtin function implementation is nullptr")) {
    return {std::string(name) + "(" + input + ")", [name, make, nlhs] { call(name, make(), nlhs); },
            std::move(expected)};
}
using Arrays = std::vector<ka::ArrayPtr>;

TEST(BadInput, ArrayClasses) {
    const std::string doesNotFit = "does not fit matrix::typed_array<double>";
    runTable(
        "array classes",
        {
            entry(
                "single row, double row", "plus", doubles,
                [] {
                    return arguments(ka::row<float>({1, 2}), ka::row({1.0, 2.0}));
                },
                badCast),
            entry(
                "double row, complex row", "plus", doubles,
                [] {
                    return arguments(ka::row({1.0}), ka::row<Complex>({{1, 1}}));
                },
                badCast),
            entry(
                "sparse, double", "plus", doubles,
                [] { return arguments(sparse(), Parameter(1.0)); }, badCast),
            entry(
                "double, int32 row", "plus", doubles,
                [] {
                    return arguments(Parameter(1.0), ka::row<std::int32_t>({1, 2}));
                },
                badCast),
            entry(
                "null array, double", "plus", doubles,
                [] {
                    return arguments(Parameter(static_cast<kaArray_tag*>(nullptr)), Parameter(1.0));
                },
                badCast),
            entry(
                "null array", "sum", {"kaArray_of<double,$Shape0,ka_full,false>"},
                [] { return arguments(Parameter(static_cast<kaArray_tag*>(nullptr))); },
                refusal<std::invalid_argument>("null array " + doesNotFit)),
            entry(
                "logical row", "sqrt", {"double"}, [] { return arguments(ka::row<bool>({true})); },
                badCast),
            entry(
                "char row", "sqrt", {"double"}, [] { return arguments(ka::charArray(u"ab")); },
                badCast),
            entry(
                "int32 matrix", "sum", {"kaArray_of<double,$Shape0,ka_full,false>"},
                [] {
                    return arguments(ka::fromRows<std::int32_t>(2, 2, {1, 2, 3, 4}));
                },
                refusal<std::invalid_argument>("array of class id 12 (int32), 2x2, " + doesNotFit)),
            entry(
                "sparse", "sum", {"kaArray_of<double,$Shape0,ka_full,false>"},
                [] { return arguments(sparse()); },
                refusal<std::invalid_argument>("array of class id 6 (double), 2x2 sparse, " +
                                               doesNotFit)),
            entry(
                "2-by-2 char", "upper", {"scalar_keldor_string"},
                [] {
                    return arguments(ka::createNumeric(kaCHAR_CLASS, {2, 2}));
                },
                refusal<std::invalid_argument>(
                    "only scalar strings or char row vectors are expected.")),
            entry(
                "double row", "upper", {"scalar_keldor_string"},
                [] { return arguments(ka::row({1.0})); },
                refusal<std::invalid_argument>("the array is not an array of the string class")),

            {"a double read as an engine object",
             [] { orroobject::fromKaArray(ka::scalar(1.0).get()); },
             refusal<std::invalid_argument>("the array holds no engine object")},
            {"no engine object put into an array", [] { orroobject::toKaArray(nullptr, "none"); },
             refusal<std::invalid_argument>("no engine object to put into an array")},

            interpreted("int32 matrix", "sum",
                        [] {
                            return arrays(ka::fromRows<std::int32_t>(2, 2, {1, 2, 3, 4}));
                        }),
            interpreted("single matrix", "sum",
                        [] {
                            return arrays(ka::fromRows<float>(2, 2, {1, 2, 3, 4}));
                        }),
            interpreted("complex row", "sum",
                        [] {
                            return arrays(ka::row<Complex>({{1, 1}, {2, 2}}));
                        }),
            interpreted("logical row", "sum",
                        [] {
                            return arrays(ka::row<bool>({true, false}));
                        }),
            interpreted("char row", "sum", [] { return arrays(ka::charArray(u"abc")); }),
            interpreted("sparse", "sum", [] { return arrays(sparse()); }),
            interpreted("cell", "sum",
                        [] {
                            return arrays(ka::createCell({1, 2}));
                        }),
            interpreted("struct", "sum",
                        [] {
                            return arrays(ka::createStruct({1, 1}, {"a"}));
                        }),
            interpreted("function handle", "sum",
                        [] { return arrays(ka::createFunctionHandle("sin")); }),
            interpreted("string", "sum", [] { return arrays(string(u"12")); }),
            interpreted("int32 row", "sort",
                        [] {
                            return arrays(ka::row<std::int32_t>({3, 1}));
                        }),
            interpreted("2-by-2 matrix", "sort",
                        [] {
                            return arrays(ka::fromRows<double>(2, 2, {4, 3, 2, 1}));
                        }),
            interpreted("single scalar", "inv", [] { return arrays(ka::scalar(2.0f)); }),
            interpreted("int32 scalar", "inv", [] { return arrays(ka::scalar<std::int32_t>(2)); }),
            interpreted("1-by-2 double", "inv",
                        [] {
                            return arrays(ka::row({1.0, 2.0}));
                        }),
            interpreted("complex scalar", "inv", [] { return arrays(ka::scalar(Complex(1, 1))); }),
            interpreted("double", "upper", [] { return arrays(ka::scalar(1.0)); }),
            interpreted("2-by-2 char", "upper",
                        [] {
                            return arrays(ka::createNumeric(kaCHAR_CLASS, {2, 2}));
                        }),
            interpreted("double", "count", [] { return arrays(ka::scalar(1.0)); }),
            interpreted("an object of a class nobody registered", "count",
                        [] {
                            return arrays(ka::createObject<int>(kaClassID(99), "Unknown",
                                                                std::make_shared<int>(1)));
                        }),
            interpreted("an object the array library stores as an object", "count",
                        [] {
                            return arrays(ka::createObject<int>(kaClassID(99), "Unknown",
                                                                std::make_shared<int>(1), {1, 1},
                                                                kaOBJECT_CLASS));
                        }),
            // The class of Counter, but no engine object inside: the class provider refuses to read
            // it, and the argument counts as of no type.
            interpreted("a Counter array without an object", "count",
                        [] {
                            return arrays(
                                ka::createObject<int>(builtinreg::getClassIdByName("Counter"),
                                                      "Counter", std::make_shared<int>(1)));
                        }),
            interpreted("string", "counter", [] { return arrays(string(u"1")); }),
            interpreted("1-by-2 string array", "upper",
                        [] {
                            return arrays(strings({u"a", u"b"}));
                        }),
            interpreted("2.5, 1-by-2 string array", "round",
                        [] {
                            return arrays(ka::scalar(2.5), strings({u"even", u"away"}));
                        }),
            // Only a string of the string class is a flag; a char row is not.
            interpreted("row, char row 'descend'", "sort",
                        [] {
                            return arrays(ka::row({1.0, 2.0}), ka::charArray(u"descend"));
                        }),
            interpreted("string, double", "plus",
                        [] { return arrays(string(u"a"), ka::scalar(1.0)); }),
            interpreted("string, string", "minus",
                        [] { return arrays(string(u"a"), string(u"b")); }),
            interpreted(
                "int8, int16", "plus",
                [] { return arrays(ka::scalar<std::int8_t>(1), ka::scalar<std::int16_t>(1)); }, 1,
                refusal<std::invalid_argument>(
                    "integers of different classes cannot be combined: int8 and int16")),
            interpreted("cell, double", "plus",
                        [] {
                            return arrays(ka::createCell({1, 1}), ka::scalar(1.0));
                        }),
            interpreted(
                "uint64 row, complex double", "times",
                [] {
                    return arrays(ka::row<std::uint64_t>({1, 2}), ka::scalar(Complex(1, 1)));
                },
                1,
                refusal<std::invalid_argument>(
                    "complex values and integers cannot be combined: uint64 and complex double")),
            interpreted("double, a null argument", "plus",
                        [] { return arrays(ka::scalar(1.0), nullptr); }),
            interpreted(
                "double, double to two outputs", "plus",
                [] { return arrays(ka::scalar(1.0), ka::scalar(2.0)); }, 2),
            interpreted(
                "a null argument", "size", [] { return arrays(nullptr); }, 1,
                refusal<std::invalid_argument>("size takes one argument")),
            interpreted(
                "a null argument", "class", [] { return arrays(nullptr); }, 1,
                refusal<std::invalid_argument>("class takes one argument")),
            interpreted(
                "nothing", "size", [] { return arrays(); }, 1,
                refusal<std::invalid_argument>("size takes one argument")),
            interpreted(
                "double, double", "size", [] { return arrays(ka::scalar(1.0), ka::scalar(2.0)); },
                1, refusal<std::invalid_argument>("size takes one argument")),
            interpreted(
                "to -1 outputs", "plus", [] { return arrays(ka::scalar(1.0), ka::scalar(2.0)); },
                -1,
                refusal<std::invalid_argument>(
                    "BuiltinFcn::invoke: negative count of outputs or arguments")),
        });
}

}  // namespace
}  // namespace badinput
