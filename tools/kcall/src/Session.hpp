// A kcall session: lines in, results, warnings and errors out. Each line is parsed and run on
// its own; a failed line leaves the variables as they were before it and does not stop the
// session. Results go to `out` as the language shows them, or as JSON lines; warnings and
// errors go to `err` as "Warning: ..." and "Error: ...", or in JSON mode to `out` as
// {"warning": "..."} and {"error": "..."}. Timings of calls (kcall --time) follow the results
// of their line on `out`, as "time: plus(double 1x3, double 1x1): 812 ns per call (median of
// 1200000 calls)", or as {"time": {"call": "...", "seconds": ..., "calls": ...}}.
#pragma once

#include <chrono>
#include <ostream>
#include <string_view>

#include "Describe.hpp"
#include "Evaluator.hpp"

namespace kcall {

class Session {
public:
    Session(const BuiltinDirectory& builtins, std::ostream& out, std::ostream& err, bool json);
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    // Runs one line, which may hold newlines inside brackets. False if it failed.
    bool runLine(std::string_view line);

    // Whether any line so far failed.
    bool anyFailed() const { return anyFailed_; }

    const Evaluator& evaluator() const { return evaluator_; }

    // Before each call of a builtin, writes how invoke chooses its variant (kcall --explain).
    void explainCalls(const BuiltinDirectory& builtins, std::ostream& out,
                      TypeWording wording = TypeWording::READABLE);

    // Times each call of a builtin for about the budget, and shows the median time of one
    // call after the line's results (kcall --time).
    void timeCalls(std::chrono::nanoseconds budget) { evaluator_.timeCalls(budget); }

private:
    void warn(std::u16string_view text);
    void showTimings();
    void reportError(std::string_view text);

    Evaluator evaluator_;
    std::ostream& out_;
    std::ostream& err_;
    bool json_;
    bool anyFailed_ = false;
    ka::WarningHandler previousHandler_;
};

}  // namespace kcall
