#include "LineReader.hpp"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include <unistd.h>

#include <editline/readline.h>

#include "Parser.hpp"

namespace kcall {

namespace {

// libedit asks a plain function for one match at a time, state 0 starting a new completion.
const Completer* activeCompleter = nullptr;

char* nextMatch(const char* text, int state) {
    static std::vector<std::string> matches;
    static std::size_t next = 0;
    if (state == 0) {
        matches = activeCompleter != nullptr && *activeCompleter ? (*activeCompleter)(text)
                                                                 : std::vector<std::string>();
        next = 0;
    }
    // libedit frees what it is given.
    return next < matches.size() ? ::strdup(matches[next++].c_str()) : nullptr;
}

char** completeName(const char* text, int, int) {
    rl_attempted_completion_over = 1;  // names only, never file names
    return rl_completion_matches(text, &nextMatch);
}

}  // namespace

LineReader::LineReader(std::istream& in, Completer completer)
    : in_(in),
      interactive_(::isatty(STDIN_FILENO) != 0 && &in == &std::cin),
      completer_(std::move(completer)) {
    if (interactive_) {
        activeCompleter = &completer_;
        rl_attempted_completion_function = &completeName;
        // A name ends at whatever cannot be part of one, so "plus(x" completes "x".
        rl_basic_word_break_characters = " \t\n()[],;=:~'\"%+-";
        rl_completion_append_character = '\0';
    }
}

LineReader::~LineReader() {
    if (activeCompleter == &completer_) activeCompleter = nullptr;
}

std::optional<std::string> LineReader::readOne(bool continued) {
    if (!interactive_ && &in_ == &std::cin) {
        // Standard input through its C stream, which std::cin, kept in step with it, would read
        // one character at a time: a literal of millions of numbers is one long line.
        char* buffer = nullptr;
        std::size_t capacity = 0;
        const ssize_t length = ::getline(&buffer, &capacity, stdin);
        std::optional<std::string> line;
        if (length >= 0) {
            line.emplace(buffer, static_cast<std::size_t>(length));
            if (!line->empty() && line->back() == '\n') line->pop_back();
        }
        std::free(buffer);
        return line;
    }
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
