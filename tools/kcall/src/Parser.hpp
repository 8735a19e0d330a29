// The parser of kcall lines. One line is one statement:
//
//   line       := [ [targets '='] expr ] [';'] ['%' comment]
//   targets    := name | '[' target {[','] target} ']'        target := name | '~'
//   expr       := operand [':' operand [':' operand]]
//   operand    := number | char-row | string | name | name '(' [expr {',' expr}] ')'
//               | '[' [row {(';' | newline) row}] ']' | '(' expr ')'
//   row        := expr {[','] expr}
//
// Numbers are decimal with an optional exponent, Inf or NaN, with an optional sign, and an
// i or j behind for an imaginary number; a real number and an imaginary one joined by + or -
// without blanks ("3+4i") are one complex number. Inside brackets a blank separates elements,
// so [1 -2] has two. 'text' is a char row, with '' for a quote; "text" a string, with "" for
// a double quote. a:b and a:s:b are ranges, calls of colon. A newline inside brackets separates
// rows; a line whose brackets are still open is incomplete (needsMoreInput).
//
// The real numbers of a matrix row are read straight into plain values, so that a literal of
// n elements takes time and memory in proportion to n, with a small constant.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "Syntax.hpp"

namespace kcall {

// A line that is not in the grammar: what was expected at the column.
class ParseError : public LineError {
public:
    ParseError(std::size_t column, const std::string& expected)
        : LineError(column, "expected " + expected) {}
};

Statement parseLine(std::string_view line);

// True if the text ends inside brackets or parentheses (outside quotes and comments), so that
// an interactive reader should append the next line before parsing.
bool needsMoreInput(std::string_view text);

}  // namespace kcall
