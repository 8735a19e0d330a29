// The values that kcall makes itself: literals, matrices built from other values, and the
// typed conversions int32(...), single(...), logical(...) and their kin. Numbers follow the
// language: a literal is a double; a conversion to an integer class rounds halves away from
// zero and saturates at the class's limits, with NaN becoming 0; a matrix takes the class
// that dominates among its elements (the leftmost integer class, then char, then single,
// then double; logical only if all are logical) and is complex if any element is.
//
// Every failure is a std::invalid_argument whose text a user can act on.
#pragma once

#include <complex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <ka/ka.hpp>

namespace kcall {

ka::ArrayPtr numberValue(std::complex<double> value, bool complex);
// A 1-by-n char row of the UTF-16 form of the UTF-8 text; '' is 0-by-0.
ka::ArrayPtr charRowValue(std::string_view utf8);
// A 1-by-1 string of the string class; needs the StringSupport service.
ka::ArrayPtr stringValue(std::string_view utf8);

// The class that a conversion name stands for ("int32", "logical", ...), if it is one.
std::optional<kaClassID> conversionClass(std::string_view name);
std::vector<std::string> conversionNames();
// The array converted to the class: numeric, logical and char arrays only.
ka::ArrayPtr convertTo(kaClassID target, const kaArray_tag* array);

// Joins the rows of elements: each row side by side, the rows on top of each other. Empty
// (0-by-0) elements are left out; two-dimensional numeric, logical and char arrays only.
ka::ArrayPtr concatenate(const std::vector<std::vector<const kaArray_tag*>>& rows);

}  // namespace kcall
