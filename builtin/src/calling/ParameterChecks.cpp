// The fatal checks on Parameters. The texts name types in their readable form; the source paths
// are those under which these checks have always reported.
#include <builtin/calling/ParameterChecks.hpp>

#include <array>
#include <sstream>
#include <string>
#include <utility>

#include <fl/diag.hpp>

#include <builtin/types/ClassifyKaArray.hpp>

#include "ReadableTypeName.hpp"

namespace Norvane::builtin {

// A type name that cannot be demangled is shown as it is: the text is for a person, and the
// mangled name still tells the type.
std::string detail::readableTypeName(const std::type_info& type) {
    try {
        return foundation::core::diag::detail::demangle_typeid_name(type.name(), false);
    } catch (...) {
        return type.name();
    }
}

namespace {

using detail::readableTypeName;

constexpr const char* conversionSourcePath = "builtin2/interface/builtin/ParameterConversion";
constexpr const char* descriptorSourcePath = "builtin2/interface/builtin/getFunctionDescriptor";

template <std::size_t... Index>
std::array<const std::type_info*, parameterTypeCount> makeTypeTable(std::index_sequence<Index...>) {
    return {&typeid(ParameterAlternative<Index>)...};
}

}  // namespace

namespace types::detail {

const std::type_info& parameterTypeInfo(const Parameter& parameter) {
    static const auto table = makeTypeTable(std::make_index_sequence<parameterTypeCount>());
    return *table[static_cast<std::size_t>(parameter.which())];
}

void assertFromParameterType(const std::type_info& expected, const kaArray_tag* const array) {
    std::ostringstream text;
    text << "expected kaArray to be " << readableTypeName(expected) << " but was "
         << getArgTypeOfKaArray(array);
    foundation::core::diag::terminate(text.str(), conversionSourcePath, __LINE__,
                                      __PRETTY_FUNCTION__);
}

void assertOrroObjectFromParameterType(const std::type_info& expected, const Parameter& parameter) {
    const std::string text = "expected Parameter to contain " + readableTypeName(expected) +
                             " but actually contains " +
                             readableTypeName(parameterTypeInfo(parameter));
    foundation::core::diag::terminate(text, conversionSourcePath, __LINE__, __PRETTY_FUNCTION__);
}

void assertParameterContainsType(const std::type_info& expected, const Parameter& parameter) {
    const std::type_info& actual = parameterTypeInfo(parameter);
    if (actual == expected || !fl_diag_terminate()) {
        return;
    }
    const std::string text =
        "Parameter created with incorrect type.\nExpected: " + readableTypeName(expected) +
        "\nActual: " + readableTypeName(actual);
    foundation::core::diag::terminate(text, conversionSourcePath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace types::detail

namespace builtinreg::detail {

void assertParameterWrongType(const std::type_info& expected, const Parameter& parameter,
                              const types::ArgType& expectedArgType) {
    std::ostringstream text;
    text << "expected Parameter containing: " << readableTypeName(expected)
         << "\nactual Parameter containing: "
         << readableTypeName(types::detail::parameterTypeInfo(parameter))
         << "\nExpected ArgType: " << expectedArgType;
    foundation::core::diag::terminate(text.str(), descriptorSourcePath, __LINE__,
                                      __PRETTY_FUNCTION__);
}

}  // namespace builtinreg::detail
}  // namespace Norvane::builtin
