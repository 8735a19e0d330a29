// kcall's parts: the grammar of lines (each literal, call and matrix, and the column and
// expectation of each malformed line), conversions and matrices of values, and sessions over
// declared builtins.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>

#include <ArrayValues.hpp>
#include <LiveArrays.hpp>

#include <builtin/builtin.hpp>
#include <builtin/declare/declare.hpp>

#include "Parser.hpp"
#include "Session.hpp"
#include "Values.hpp"

namespace kcall {
namespace {

// A tree as 3, (1+2i), 'text', "text", name, f(a, b), [a b; c], a run of numbers as 1 2 3.
std::string show(const Expr& e) {
    std::ostringstream os;
    switch (e.kind) {
        case Expr::Kind::Number:
            if (e.imaginary)
                os << "(" << e.number.real() << (e.number.imag() < 0 ? "" : "+") << e.number.imag()
                   << "i)";
            else
                os << e.number.real();
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
        case Expr::Kind::Numbers: {
            const char* separator = "";
            for (const double v : e.values) os << std::exchange(separator, " ") << v;
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
    std::string text;
    for (const std::string& name : s.targets) text += (text.empty() ? "" : ", ") + name;
    if (s.targets.size() > 1) text = "[" + text + "]";
    if (!s.targets.empty()) text += " = ";
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
        {"1:3", "colon(1, 3)"},
        {"x = -1 : 0.5 : f(2);", "x = colon(-1, 0.5, f(2));"},
        {"[1:3 4 5; (2:n) x]", "[colon(1, 3) 4 5; colon(2, n) x]"},
        {"[1 2 3 2+1i 4]", "[1 2 3 (2+1i) 4]"},
        {"[a, ~] = f(x)", "[a, ~] = f(x)"},
        {"[a b] = f(x)", "[a, b] = f(x)"},
        {"[y] = f(x)", "y = f(x)"},
        {"[a b]", "[a b]"},
    };
    for (const auto& c : cases) {
        std::string tree;
        try {
            tree = show(parseLine(c.line));
        } catch (const ParseError&) {
            tree = "<error>";
        }
        EXPECT_EQ(tree, c.tree) << c.line;
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
        {"1:2:3:4", "column 6: expected end of the range (a range is a:b or a:s:b)"},
        {"x = 1:", "column 7: expected an expression"},
        {"[a, 1] = f(x)", "column 8: expected end of line"},
        {std::string(300, '[') + std::string(300, ']'),
         "column 201: expected at most 200 levels of nesting"},
        {"f(" + std::string(100000, '1') + ")", ""},
    };
    for (const auto& c : cases) {
        std::string message;
        try {
            parseLine(c.line);
        } catch (const ParseError& e) {
            message = e.what();
        }
        EXPECT_EQ(message, c.message) << c.line.substr(0, 40);
    }
}

TEST(Parser, IncompleteInputWaitsForMoreLines) {
    EXPECT_TRUE(needsMoreInput("[1 2") && needsMoreInput("plus([1 2], "));
    EXPECT_FALSE(needsMoreInput("[1 2]") || needsMoreInput("'[' % [") || needsMoreInput("f(1))"));
}

using Values = testsupport::LiveArrayTest;
using testsupport::elementsOf;

TEST_F(Values, ConversionsRoundSaturateAndRefuse) {
    const ka::ArrayPtr numbers = ka::row({-2.5, 2.5, 300.0, -1e20, std::nan("")});
    EXPECT_EQ(elementsOf<std::int8_t>(convertTo(kaINT8_CLASS, numbers.get())),
              (std::vector<std::int8_t>{-3, 3, 127, -128, 0}));
    EXPECT_EQ(elementsOf<std::uint8_t>(convertTo(kaUINT8_CLASS, numbers.get())),
              (std::vector<std::uint8_t>{0, 3, 255, 0, 0}));
    EXPECT_EQ(elementsOf<std::uint64_t>(convertTo(kaUINT64_CLASS, ka::scalar(1e30).get())),
              std::vector<std::uint64_t>{std::numeric_limits<std::uint64_t>::max()});
    const ka::ArrayPtr big =
        ka::scalar<std::int64_t>(std::numeric_limits<std::int64_t>::max() - 1);  // all digits kept
    EXPECT_EQ(elementsOf<std::int64_t>(convertTo(kaINT64_CLASS, big.get()))[0],
              std::numeric_limits<std::int64_t>::max() - 1);
    EXPECT_EQ(elementsOf<bool>(convertTo(kaLOGICAL_CLASS, ka::row({0.0, 2.0}).get())),
              (std::vector<bool>{false, true}));
    EXPECT_EQ(elementsOf<char16_t>(convertTo(kaCHAR_CLASS, ka::row({72.0, 105.0}).get())),
              (std::vector<char16_t>{u'H', u'i'}));
    EXPECT_EQ(conversionClass("int32"), kaINT32_CLASS);
    EXPECT_EQ(conversionClass("plus"), std::nullopt);

    EXPECT_THROW(convertTo(kaLOGICAL_CLASS, ka::scalar(std::nan("")).get()), std::invalid_argument);
    EXPECT_THROW(convertTo(kaLOGICAL_CLASS, numberValue({1, 2}, true).get()),
                 std::invalid_argument);
    EXPECT_THROW(convertTo(kaDOUBLE_CLASS, ka::createCell({1, 1}).get()), std::invalid_argument);
}

TEST_F(Values, MatricesTakeTheDominantClass) {
    const ka::ArrayPtr one = ka::scalar(1.0), i8 = ka::scalar<std::int8_t>(5),
                       i16 = ka::scalar<std::int16_t>(300), s = ka::scalar(2.0f),
                       t = ka::scalar(true), a = ka::charArray("a"), z = numberValue({0, 1}, true),
                       empty = ka::createNumeric(kaDOUBLE_CLASS, {0, 0});
    const struct {
        const char* name;
        std::vector<std::vector<const kaArray_tag*>> rows;
        kaClassID id;
        bool complex;
        ka::Dims dims;
    } cases[] = {
        {"doubles",
         {{one.get(), one.get()}, {one.get(), one.get()}},
         kaDOUBLE_CLASS,
         false,
         {2, 2}},
        {"leftmost integer", {{one.get(), i16.get(), i8.get()}}, kaINT16_CLASS, false, {1, 3}},
        {"char over double", {{one.get(), a.get()}}, kaCHAR_CLASS, false, {1, 2}},
        {"single over double", {{one.get(), s.get()}}, kaSINGLE_CLASS, false, {1, 2}},
        {"logical alone", {{t.get(), t.get()}}, kaLOGICAL_CLASS, false, {1, 2}},
        {"logical with double", {{t.get(), one.get()}}, kaDOUBLE_CLASS, false, {1, 2}},
        {"complex if any", {{one.get()}, {z.get()}}, kaDOUBLE_CLASS, true, {2, 1}},
        {"empties left out",
         {{empty.get(), one.get()}, {empty.get()}},
         kaDOUBLE_CLASS,
         false,
         {1, 1}},
        {"nothing", {}, kaDOUBLE_CLASS, false, {0, 0}},
    };
    for (const auto& c : cases) {
        const ka::ArrayPtr m = concatenate(c.rows);
        EXPECT_EQ(
            std::tuple(matrix::classId(m.get()), matrix::isComplex(m.get()),
                       testsupport::dimsOf(m)),
            std::tuple(c.id, c.complex, std::vector<std::size_t>(c.dims.begin(), c.dims.end())))
            << c.name;
    }
    // Blocks placed column-major.
    const ka::ArrayPtr r1 = ka::row({1.0, 2.0}), r2 = ka::row({3.0, 4.0});
    EXPECT_EQ(elementsOf<double>(concatenate({{r1.get()}, {r2.get()}})),
              (std::vector<double>{1, 3, 2, 4}));
    EXPECT_EQ(elementsOf<double>(concatenate({{one.get()}, {z.get()}})),
              (std::vector<double>{1, 0, 0, 1}));

    EXPECT_THROW(concatenate({{r1.get()}, {one.get()}}), std::invalid_argument);  // widths
    EXPECT_THROW(concatenate({{r1.get(), ka::column({1.0, 2.0}).get()}}),
                 std::invalid_argument);                                     // heights
    EXPECT_THROW(concatenate({{a.get(), z.get()}}), std::invalid_argument);  // complex char
}

using namespace Norvane::builtin;
using declare::Builtin;
using declare::DeclaredBuiltin;

double twice(double x) {
    return 2 * x;
}
void noisy(int, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs, OrroFunctionDescriptor*) {
    matrix::handleWarning(u"careful");
    matrix::takeReference(prhs[0]);
    plhs[0] = nrhs > 0 ? prhs[0] : nullptr;
}
void broken(int, kaArray_tag**, int, kaArray_tag**, OrroFunctionDescriptor*) {
    throw std::runtime_error("it broke");
}

class Directory final : public BuiltinDirectory {
public:
    const BuiltinFcn* find(std::string_view name) const override {
        for (const DeclaredBuiltin* b : {&twice_, &noisy_, &broken_}) {
            if (b->function().getName() == name) return &b->function();
        }
        return nullptr;
    }
    std::vector<std::string> names() const override { return {"twice", "noisy", "broken"}; }

private:
    DeclaredBuiltin twice_{std::move(Builtin("twice").def(&twice, declare::pure))};
    DeclaredBuiltin noisy_{std::move(Builtin("noisy").fallback(&noisy))};
    DeclaredBuiltin broken_{std::move(Builtin("broken").fallback(&broken))};
};

class SessionTest : public testsupport::LiveArrayTest {
protected:
    std::string run(std::initializer_list<const char*> lines, bool json = false) {
        std::ostringstream out, err;
        {
            Session session(directory_, out, err, json);
            for (const char* line : lines) failures_ += session.runLine(line) ? 0 : 1;
        }
        return out.str() + "|" + err.str();
    }
    Directory directory_;
    int failures_ = 0;
};

TEST_F(SessionTest, ResultsWarningsAndErrorsInBothForms) {
    EXPECT_EQ(run({"x = twice(2);", "y = twice(x)", "twice(y);", "twice(ans)", "% nothing", ""}),
              "y =\n\n     8\n\nans =\n\n    32\n\n|");
    EXPECT_EQ(failures_, 0);
    EXPECT_EQ(
        run({"noisy(1);", "broken(1)", "twice(1, 2)", "nope(1)", "x = y", "f(1", "twice(int8(1))"}),
        "|Warning: careful\nError: it broke\n"
        "Error: column 1: no variant of twice takes (double 1x1, double 1x1); kcall --describe "
        "twice lists "
        "its variants\n"
        "Error: column 1: unknown function 'nope'\nError: column 5: 'y' is not defined\n"
        "Error: column 4: expected ',' or ')'\n"
        "Error: column 1: no variant of twice takes (int8 1x1); kcall --describe twice lists its "
        "variants\n");
    EXPECT_EQ(failures_, 6);
    EXPECT_EQ(
        run({"[1 2.5; Inf 4]", "'hi'", "noisy(true)", "broken(1)"}, true),
        "{\"class\":\"double\",\"size\":[2,2],\"complex\":false,\"data\":[1E0,\"Inf\",2.5E0,4E0]}\n"
        "{\"class\":\"char\",\"size\":[1,2],\"complex\":false,\"data\":\"hi\"}\n"
        "{\"warning\":\"careful\"}\n"
        "{\"class\":\"logical\",\"size\":[1,1],\"complex\":false,\"data\":[true]}\n"
        "{\"error\":\"it broke\"}\n|");
}

TEST_F(SessionTest, CompletesBuiltinsConversionsAndVariables) {
    std::ostringstream out, err;
    Session session(directory_, out, err, false);
    session.runLine("tx = 1;");
    EXPECT_EQ(session.evaluator().namesStartingWith("t"),
              (std::vector<std::string>{"true", "twice", "tx"}));
    EXPECT_EQ(session.evaluator().namesStartingWith("int3"), std::vector<std::string>{"int32"});
}

TEST_F(SessionTest, LargeLiteralsAreOneArray) {
    // Two rows of half a million numbers: x(r, j) is 1000 r + j mod 1000.
    std::string line = "x = [";
    for (int row = 0; row < 2; ++row) {
        for (int j = 0; j < 500'000; ++j)
            line += std::to_string(row * 1000 + j % 1000) + (j % 7 ? " " : ", ");
        line += row == 0 ? "; " : "];";
    }
    std::ostringstream out, err;
    Session session(directory_, out, err, false);
    ASSERT_TRUE(session.runLine(line)) << err.str();
    const kaArray_tag* x = session.evaluator().variable("x");
    EXPECT_EQ(testsupport::dimsOf(x), (std::vector<std::size_t>{2, 500'000}));
    const std::vector<double> values = elementsOf<double>(x);
    EXPECT_EQ(std::tuple(values[0], values[1], values[2], values.back()),
              std::tuple(0.0, 1000.0, 1.0, 1999.0));
}

}  // namespace
}  // namespace kcall
