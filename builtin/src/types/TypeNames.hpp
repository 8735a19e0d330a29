// Names of element classes shared by the printed forms of the type language. Internal.
#pragma once

#include <string_view>

#include <ka/ka.hpp>

namespace Norvane::builtin::types::detail {

// "boolean", "kaChar", "double", "single", "int8" ... "uint64" for the numeric element
// classes; the empty text for every other class.
std::string_view numericElementName(kaClassID element) noexcept;

// The enumerator name of a class from kaUNKNOWN_CLASS to kaOPAQUE_CLASS; empty otherwise.
std::string_view classIdName(kaClassID element) noexcept;

}  // namespace Norvane::builtin::types::detail
