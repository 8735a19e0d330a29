// Lines of kcall's input: from a terminal with a prompt, line editing and history (libedit),
// otherwise plainly from the stream. A line whose brackets are still open is continued on the
// next one, so a matrix may span lines.
#pragma once

#include <istream>
#include <optional>
#include <string>

namespace kcall {

class LineReader {
public:
    // Interactive when standard input is a terminal.
    explicit LineReader(std::istream& in);
    ~LineReader();

    // The next complete statement's text; none at the end of input.
    std::optional<std::string> next();

private:
    std::optional<std::string> readOne(bool continued);

    std::istream& in_;
    bool interactive_;
};

}  // namespace kcall
