// Shows an array as the language displays a value: "name =", a blank line, the body, a blank
// line. Numbers are right-aligned in columns, char arrays quoted, cells and structs
// summarised element by element, sparse arrays as (row,column) value lines.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <string_view>

#include <ka/array.hpp>

namespace ka {

void print(std::ostream& out, const kaArray_tag* array, std::string_view name);
std::string toDisplayString(const kaArray_tag* array, std::string_view name);

// How instances of one class-system class show themselves (one line, no name). Without a
// formatter an instance shows as its size, class name and class id. An empty function
// removes the formatter.
// The UTF-8 form of UTF-16 text, for formatters that show a class's strings.
std::string toUtf8(std::u16string_view text);

using ObjectFormatter = std::function<std::string(const kaArray_tag*)>;
void setObjectFormatter(kaClassID classId, ObjectFormatter formatter);

}  // namespace ka
