#include "LineReader.hpp"

#include <cstdio>
#include <cstdlib>
#include <iostream>

#include <unistd.h>

#include <editline/readline.h>

#include "Parser.hpp"

namespace kcall {

LineReader::LineReader(std::istream& in)
    : in_(in), interactive_(::isatty(STDIN_FILENO) != 0 && &in == &std::cin) {}

LineReader::~LineReader() = default;

std::optional<std::string> LineReader::readOne(bool continued) {
    if (!interactive_) {
        std::string line;
        if (!std::getline(in_, line)) return std::nullopt;
        return line;
    }
    char* line = ::readline(continued ? "...   " : ">> ");
    if (line == nullptr) return std::nullopt;
    std::string text(line);
    std::free(line);
    if (!text.empty()) ::add_history(text.c_str());
    return text;
}

std::optional<std::string> LineReader::next() {
    std::optional<std::string> text = readOne(false);
    while (text && needsMoreInput(*text)) {
        const std::optional<std::string> more = readOne(true);
        if (!more) break;  // the parser reports what is missing
        *text += '\n';
        *text += *more;
    }
    return text;
}

}  // namespace kcall
