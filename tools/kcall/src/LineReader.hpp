// Lines of kcall's input: from a terminal with a prompt, line editing, history and completion
// of names on Tab (libedit), otherwise plainly from the stream. A line whose brackets are still
// open is continued on the next one, so a matrix may span lines.
#pragma once

#include <functional>
#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kcall {

// The names that complete a prefix, asked for at each Tab.
using Completer = std::function<std::vector<std::string>(std::string_view prefix)>;

class LineReader {
public:
    // Interactive when standard input is a terminal. One reader at a time completes: libedit
    // keeps its completion in process-wide state.
    explicit LineReader(std::istream& in, Completer completer = {});
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    ~LineReader();

    // The next complete statement's text; none at the end of input.
    std::optional<std::string> next();

private:
    std::optional<std::string> readOne(bool continued);

    std::istream& in_;
    bool interactive_;
    Completer completer_;
};

}  // namespace kcall
