// The grammar of kcall lines: what each literal form, call and matrix parses to, and the column
// and expectation of each malformed line.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "Parser.hpp"

namespace kcall {
namespace {

// A compact rendering of a tree: 3, (1+2i), 'text', "text", name, f(a, b), [a b; c].
std::string show(const Expr& e) {
    std::ostringstream os;
    switch (e.kind) {
        case Expr::Kind::Number:
            if (e.imaginary) os << "(" << e.number.real() << (e.number.imag() < 0 ? "" : "+") << e.number.imag() << "i)";
            else os << e.number.real();
            break;
        case Expr::Kind::CharRow: os << "'" << e.text << "'"; break;
        case Expr::Kind::String: os << "\"" << e.text << "\""; break;
        case Expr::Kind::Name: os << e.text; break;
        case Expr::Kind::Call: {
            os << e.text << "(";
            const char* separator = "";
            for (const auto& a : e.arguments) os << std::exchange(separator, ", ") << show(*a);
            os << ")";
            break;
        }
        case Expr::Kind::Matrix: {
            os << "[";
            const char* rowSeparator = "";
            for (const auto& row : e.rows) {
                os << std::exchange(rowSeparator, "; ");
                const char* separator = "";
                for (const auto& a : row) os << std::exchange(separator, " ") << show(*a);
            }
            os << "]";
            break;
        }
    }
    return os.str();
}

std::string show(const Statement& s) {
    std::string text = s.target.empty() ? "" : s.target + " = ";
    text += s.value ? show(*s.value) : "<nothing>";
    return s.quiet ? text + ";" : text;
}

TEST(Parser, LiteralsCallsAndMatrices) {
    const struct {
        const char* line;
        const char* tree;
    } cases[] = {
        {"3", "3"},
        {"-2.5e-3", "-0.0025"},
        {"+.5", "0.5"},
        {"1e400", "inf"},
        {"Inf", "inf"},
        {"-Inf", "-inf"},
        {"NaN", "nan"},
        {"2i", "(0+2i)"},
        {"3+4i", "(3+4i)"},
        {"-1.5-2e1j", "(-1.5-20i)"},
        {"'it''s'", "'it's'"},
        {"''", "''"},
        {"\"say \"\"hi\"\"\"", "\"say \"hi\"\""},
        {"x", "x"},
        {"ans", "ans"},
        {"f()", "f()"},
        {"plus(1, minus(2,x))", "plus(1, minus(2, x))"},
        {"f (1)", "f(1)"},
        {"(((7)))", "7"},
        {"[1 2; 3 4]", "[1 2; 3 4]"},
        {"[1 -2]", "[1 -2]"},
        {"[1, 2,3]", "[1 2 3]"},
        {"[3+4i 5]", "[(3+4i) 5]"},
        {"[]", "[]"},
        {"[ ; ]", "[]"},
        {"[1 2\n3 4]", "[1 2; 3 4]"},
        {"[f(1) x; 'a' [2 3]]", "[f(1) x; 'a' [2 3]]"},
        {"y = [1 2];", "y = [1 2];"},
        {"x=3 % a comment", "x = 3"},
        {"", "<nothing>"},
        {"   % only a comment", "<nothing>"},
        {";", "<nothing>;"},
        {"a == 1", "<error>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        std::string tree;
        try {
            tree = show(parseLine(c.line));
        } catch (const ParseError&) {
            tree = "<error>";
        }
        EXPECT_EQ(tree, c.tree);
    }
}

TEST(Parser, MalformedLinesNameTheColumnAndWhatWasExpected) {
    const struct {
        std::string line;
        const char* message;
    } cases[] = {
        {"plus(1, 2", "column 10: expected ',' or ')'"},
        {"plus(1,, 2)", "column 8: expected an expression"},
        {"[1 2", "column 1: expected a closing ] for the bracket that opens here"},
        {"[1 2]]", "column 6: expected end of line"},
        {"1.2.3", "column 4: expected a separator after the number"},
        {"1e+", "column 4: expected the digits of the exponent"},
        {"3+4", "column 2: expected an imaginary part such as 4i (there are no operators)"},
        {"- 3", "column 2: expected a number right after the sign"},
        {"'open", "column 1: expected a closing ' for the text that starts here"},
        {"\"open", "column 1: expected a closing \" for the text that starts here"},
        {"x = ", "column 5: expected an expression"},
        {"f(1) g(2)", "column 6: expected end of line"},
        {"[1, ]", "column 5: expected an element after ','"},
        {"[1'a']", "column 3: expected a blank, ',', ';' or ']'"},
        {"#", "column 1: expected an expression"},
        {std::string(300, '[') + std::string(300, ']'), "column 201: expected at most 200 levels of nesting"},
        {"f(" + std::string(100000, '1') + ")", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line.substr(0, 40));
        try {
            parseLine(c.line);
            EXPECT_STREQ(c.message, "") << "parsed";
        } catch (const ParseError& e) {
            EXPECT_EQ(e.what(), std::string(c.message));
        }
    }
}

TEST(Parser, IncompleteInputWaitsForMoreLines) {
    EXPECT_TRUE(needsMoreInput("[1 2"));
    EXPECT_TRUE(needsMoreInput("plus([1 2], "));
    EXPECT_FALSE(needsMoreInput("[1 2]"));
    EXPECT_FALSE(needsMoreInput("'[' % ["));
    EXPECT_FALSE(needsMoreInput("f(1))"));
}

}  // namespace
}  // namespace kcall
