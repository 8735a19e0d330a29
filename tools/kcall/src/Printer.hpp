// How kcall shows values: as the language displays them, or as one JSON object per value for
// scripts:
//
//   {"class": "double", "size": [2, 3], "complex": false, "data": [...]}
//
// Data are in column-major order; a complex value has "imag" beside "data"; logicals are
// true and false; a char row and a string are one JSON string; Inf and NaN are the strings
// "Inf", "-Inf" and "NaN". A cell holds its elements as such objects; a struct lists its
// field names; a function handle gives its name; an instance of another class only its class
// and size.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include <boost/json/value.hpp>

#include <ka/ka.hpp>

namespace kcall {

void display(std::ostream& out, const kaArray_tag* value, std::string_view name);

boost::json::value toJson(const kaArray_tag* value);

// One line: the JSON text and a newline.
void writeJsonLine(std::ostream& out, const boost::json::value& value);

}  // namespace kcall
