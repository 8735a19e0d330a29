// The syntax of one kcall line: an optional assignment of one expression to one name or to a
// list of names, where an expression is a literal, a name, a call, a range or a matrix of
// expressions. Each node keeps the column at which it starts (from 1), so that errors of
// evaluation can point at it as parse errors do.
#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace kcall {

// A mistake at a column (from 1) of a line, said as "column N: message".
class LineError : public std::runtime_error {
public:
    LineError(std::size_t column, const std::string& message)
        : std::runtime_error("column " + std::to_string(column) + ": " + message),
          column_(column) {}
    std::size_t column() const { return column_; }

private:
    std::size_t column_;
};

struct Expr;
using ExprPtr = std::unique_ptr<Expr>;

struct Expr {
    enum class Kind {
        Number,   // a real or complex double: 3, -2.5e-3, Inf, 2i, 3+4i
        CharRow,  // 'it''s'
        String,   // "abc"
        Name,     // a variable
        Call,     // f(a, b); a range a:b or a:s:b is the call colon(a, b) or colon(a, s, b)
        Matrix,   // [a b; c d]
        Numbers,  // real numbers side by side in a row of a matrix, kept as plain values, so
                  // that a literal of millions of elements costs 8 bytes for each
    };

    Kind kind;
    std::size_t column = 0;
    std::complex<double> number{};
    bool imaginary = false;                  // the literal has an imaginary part, even if it is 0
    std::string text;                        // the name, or the UTF-8 text of a char row or string
    std::vector<ExprPtr> arguments;          // of a call
    std::vector<std::vector<ExprPtr>> rows;  // of a matrix
    std::vector<double> values;              // of a run of numbers

    Expr(Kind k, std::size_t c) : kind(k), column(c) {}
};

// The name that keeps no output in a list of names: [~, i] = f(x).
inline constexpr const char* kDropped = "~";

struct Statement {
    // The names the outputs go to, in order: none means one value to ans; a list in brackets
    // asks the call for as many outputs as it has names.
    std::vector<std::string> targets;
    ExprPtr value;       // null for a line with nothing to evaluate
    bool quiet = false;  // ended in ';'
};

}  // namespace kcall
