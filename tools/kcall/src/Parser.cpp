// A recursive-descent parser over the bytes of one line. Columns count bytes from 1.
#include "Parser.hpp"

#include <charconv>
#include <complex>
#include <limits>
#include <vector>

namespace kcall {

namespace {

constexpr std::size_t kMaxDepth = 200;  // nesting of calls, brackets and parentheses

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isNameStart(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isNameChar(char c) {
    return isNameStart(c) || isDigit(c);
}
bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

class Parser {
public:
    explicit Parser(std::string_view line) : text_(line) {}

    Statement statement() {
        Statement result;
        skipBlanks();
        if (!atEndOfStatement() && peek() != ';') {
            result.targets = targets();
            skipBlanks();
            result.value = expression(false);
            skipBlanks();
        }
        if (peek() == ';') {
            ++pos_;
            result.quiet = true;
            skipBlanks();
        }
        if (!atEndOfStatement()) fail(result.value ? "end of line" : "an expression");
        return result;
    }

private:
    // --- the cursor ----------------------------------------------------------------------

    char peek(std::size_t ahead = 0) const {
        return pos_ + ahead < text_.size() ? text_[pos_ + ahead] : '\0';
    }
    bool atEnd() const { return pos_ >= text_.size(); }
    bool atEndOfStatement() const { return atEnd() || peek() == '%'; }
    std::size_t column() const { return pos_ + 1; }
    [[noreturn]] void fail(const std::string& expected) const {
        throw ParseError(column(), expected);
    }
    [[noreturn]] void failAt(std::size_t position, const std::string& expected) const {
        throw ParseError(position + 1, expected);
    }

    // Blanks, and inside parentheses (not brackets, where a newline ends a row) newlines.
    bool skipBlanks(bool newlines = false) {
        const std::size_t start = pos_;
        while (isBlank(peek()) || (newlines && peek() == '\n')) ++pos_;
        return pos_ != start;
    }

    std::string readName() {
        const std::size_t start = pos_;
        while (isNameChar(peek())) ++pos_;
        return std::string(text_.substr(start, pos_ - start));
    }

    // --- targets -------------------------------------------------------------------------

    // The names before '=' if the line starts with them, else none with the cursor where it
    // was: "[a, b]" is a matrix unless an '=' follows it.
    std::vector<std::string> targets() {
        const std::size_t start = pos_;
        std::vector<std::string> names;
        if (isNameStart(peek())) {
            names.push_back(readName());
        } else if (peek() == '[') {
            ++pos_;
            skipBlanks();
            while (peek() != ']') {
                if (peek() == '~') {
                    ++pos_;
                    names.emplace_back(kDropped);
                } else if (isNameStart(peek())) {
                    names.push_back(readName());
                } else {
                    pos_ = start;
                    return {};
                }
                skipBlanks();
                if (peek() == ',') {
                    ++pos_;
                    skipBlanks();
                }
            }
            ++pos_;
        }
        skipBlanks();
        if (!names.empty() && peek() == '=' && peek(1) != '=') {
            ++pos_;
            return names;
        }
        pos_ = start;
        return {};
    }

    // --- expressions ---------------------------------------------------------------------

    ExprPtr expression(bool inBrackets) {
        if (depth_ == kMaxDepth)
            fail("at most " + std::to_string(kMaxDepth) + " levels of nesting");
        ++depth_;
        ExprPtr result = rangeFrom(primary(inBrackets), inBrackets);
        --depth_;
        return result;
    }

    // Whether a ':' comes next, blanks aside.
    bool colonNext() const {
        std::size_t ahead = 0;
        while (isBlank(peek(ahead))) ++ahead;
        return peek(ahead) == ':';
    }

    // The range a:b or a:s:b that starts with `first`, as a call of colon; `first` itself if no
    // ':' follows it.
    ExprPtr rangeFrom(ExprPtr first, bool inBrackets) {
        if (!colonNext()) return first;
        auto range = std::make_unique<Expr>(Expr::Kind::Call, first->column);
        range->text = "colon";
        range->arguments.push_back(std::move(first));
        while (colonNext()) {
            skipBlanks();
            if (range->arguments.size() == 3) fail("end of the range (a range is a:b or a:s:b)");
            ++pos_;
            skipBlanks();
            range->arguments.push_back(primary(inBrackets));
        }
        return range;
    }

    ExprPtr primary(bool inBrackets) {
        const char c = peek();
        if (isDigit(c) || c == '.' || ((c == '-' || c == '+') && startsNumber(1))) return number();
        if (isNameStart(c)) return nameOrCall(inBrackets);
        if (c == '\'') return quoted(Expr::Kind::CharRow, '\'');
        if (c == '"') return quoted(Expr::Kind::String, '"');
        if (c == '[') return matrix();
        if (c == '(') {
            ++pos_;
            skipBlanks(true);
            ExprPtr inner = expression(false);
            skipBlanks(true);
            if (peek() != ')') fail("')'");
            ++pos_;
            return inner;
        }
        if (c == '-' || c == '+') {
            ++pos_;
            fail("a number right after the sign");
        }
        fail("an expression");
    }

    // Whether a number (digits, a point and a digit, Inf or NaN) starts `ahead` bytes on.
    bool startsNumber(std::size_t ahead) const {
        const char c = peek(ahead);
        if (isDigit(c)) return true;
        if (c == '.') return isDigit(peek(ahead + 1));
        return wordAt(ahead, "Inf") || wordAt(ahead, "NaN");
    }

    bool wordAt(std::size_t ahead, std::string_view word) const {
        return text_.substr(pos_ + ahead, word.size()) == word &&
               !isNameChar(peek(ahead + word.size()));
    }

    // One real or imaginary literal with its sign; sets `imaginary` if it ends in i or j.
    double literal(bool& imaginary) {
        const std::size_t start = pos_;
        double sign = 1;
        if (peek() == '-' || peek() == '+') {
            sign = peek() == '-' ? -1 : 1;
            ++pos_;
        }
        double value = 0;
        if (wordAt(0, "Inf") || wordAt(0, "NaN")) {
            value = peek() == 'I' ? std::numeric_limits<double>::infinity()
                                  : std::numeric_limits<double>::quiet_NaN();
            pos_ += 3;
        } else {
            value = decimal(start);
        }
        imaginary = (peek() == 'i' || peek() == 'j') && !isNameChar(peek(1));
        if (imaginary) ++pos_;
        if (isNameChar(peek()) || peek() == '.') fail("a separator after the number");
        return sign * value;
    }

    double decimal(std::size_t start) {
        const std::size_t digits = pos_;
        while (isDigit(peek())) ++pos_;
        if (peek() == '.') {
            ++pos_;
            while (isDigit(peek())) ++pos_;
        }
        bool negativeExponent = false;
        if (peek() == 'e' || peek() == 'E') {
            ++pos_;
            negativeExponent = peek() == '-';
            if (peek() == '+' || peek() == '-') ++pos_;
            if (!isDigit(peek())) fail("the digits of the exponent");
            while (isDigit(peek())) ++pos_;
        }
        double value = 0;
        const auto [end, error] =
            std::from_chars(text_.data() + digits, text_.data() + pos_, value);
        if (error == std::errc::result_out_of_range) {
            // Beyond the range of a double: the zero or infinity that the language reads.
            return negativeExponent ? 0.0 : std::numeric_limits<double>::infinity();
        }
        if (error != std::errc() || end != text_.data() + pos_) failAt(start, "a number");
        return value;
    }

    // A real or complex literal: 3, 2i, 3+4i; `imaginary` if it has an imaginary part.
    std::complex<double> numberLiteral(bool& imaginary) {
        const double first = literal(imaginary);
        if (imaginary) return {0, first};
        // "3+4i": a real and an imaginary number joined without blanks.
        if ((peek() == '+' || peek() == '-') && startsNumber(1)) {
            const std::size_t sign = pos_;
            const double imaginaryPart = literal(imaginary);
            if (!imaginary) failAt(sign, "an imaginary part such as 4i (there are no operators)");
            return {first, imaginaryPart};
        }
        return first;
    }

    ExprPtr number() {
        auto node = std::make_unique<Expr>(Expr::Kind::Number, column());
        node->number = numberLiteral(node->imaginary);
        return node;
    }

    // A number as an element of a matrix row. A real one that starts no range joins the run of
    // numbers right before it, without a node of its own.
    void numberElement(std::vector<ExprPtr>& row) {
        const std::size_t start = column();
        bool imaginary = false;
        const std::complex<double> value = numberLiteral(imaginary);
        if (!imaginary && !colonNext()) {
            if (row.empty() || row.back()->kind != Expr::Kind::Numbers)
                row.push_back(std::make_unique<Expr>(Expr::Kind::Numbers, start));
            row.back()->values.push_back(value.real());
            return;
        }
        auto node = std::make_unique<Expr>(Expr::Kind::Number, start);
        node->number = value;
        node->imaginary = imaginary;
        row.push_back(rangeFrom(std::move(node), true));
    }

    ExprPtr nameOrCall(bool inBrackets) {
        const std::size_t start = column();
        if (wordAt(0, "Inf") || wordAt(0, "NaN")) return number();
        std::string name = readName();
        // Outside brackets "f (x)" is a call too; inside, a blank separates elements.
        const std::size_t afterName = pos_;
        if (!inBrackets) skipBlanks();
        if (peek() != '(') {
            pos_ = afterName;
            auto node = std::make_unique<Expr>(Expr::Kind::Name, start);
            node->text = std::move(name);
            return node;
        }
        ++pos_;
        auto node = std::make_unique<Expr>(Expr::Kind::Call, start);
        node->text = std::move(name);
        skipBlanks(true);
        if (peek() == ')') {
            ++pos_;
            return node;
        }
        while (true) {
            node->arguments.push_back(expression(false));
            skipBlanks(true);
            if (peek() == ')') {
                ++pos_;
                return node;
            }
            if (peek() != ',') fail("',' or ')'");
            ++pos_;
            skipBlanks(true);
        }
    }

    ExprPtr quoted(Expr::Kind kind, char quote) {
        const std::size_t open = pos_;
        auto node = std::make_unique<Expr>(kind, column());
        ++pos_;
        while (true) {
            if (atEnd() || peek() == '\n') {
                failAt(open, std::string("a closing ") + quote + " for the text that starts here");
            }
            if (peek() == quote) {
                if (peek(1) != quote) break;
                ++pos_;  // a doubled quote stands for one
            }
            node->text += peek();
            ++pos_;
        }
        ++pos_;
        return node;
    }

    ExprPtr matrix() {
        const std::size_t open = pos_;
        auto node = std::make_unique<Expr>(Expr::Kind::Matrix, column());
        ++pos_;
        std::vector<ExprPtr> row;
        const auto endRow = [&] {
            if (!row.empty()) node->rows.push_back(std::move(row));
            row.clear();
        };
        skipBlanks();
        while (true) {
            if (atEnd()) failAt(open, "a closing ] for the bracket that opens here");
            const char c = peek();
            if (c == ']') {
                ++pos_;
                break;
            }
            if (c == ';' || c == '\n') {
                ++pos_;
                endRow();
                skipBlanks();
                continue;
            }
            if (c == '%') fail("']' before a comment");
            if (startsNumber(0) || ((c == '-' || c == '+') && startsNumber(1))) {
                numberElement(row);
            } else {
                row.push_back(expression(true));
            }
            const bool blank = skipBlanks();
            const char next = peek();
            if (next == ',') {
                ++pos_;
                skipBlanks();
                if (peek() == ']' || peek() == ';' || peek() == '\n' || atEnd())
                    fail("an element after ','");
            } else if (!blank && next != ']' && next != ';' && next != '\n' && !atEnd()) {
                fail("a blank, ',', ';' or ']'");
            }
        }
        endRow();
        return node;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
    std::size_t depth_ = 0;
};

}  // namespace

Statement parseLine(std::string_view line) {
    return Parser(line).statement();
}

bool needsMoreInput(std::string_view text) {
    long depth = 0;
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote != 0) {
            if (c == '\n')
                quote = 0;  // an unterminated text ends with its line
            else if (c == quote)
                quote = 0;
            continue;
        }
        if (c == '%') {
            while (i < text.size() && text[i] != '\n') ++i;
        } else if (c == '\'' || c == '"') {
            quote = c;
        } else if (c == '[' || c == '(') {
            ++depth;
        } else if (c == ']' || c == ')') {
            --depth;
        }
    }
    return depth > 0;
}

}  // namespace kcall
