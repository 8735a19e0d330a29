#include "Session.hpp"

#include <exception>

#include <boost/json/object.hpp>

#include <fl/i18n.hpp>

#include "Parser.hpp"
#include "Printer.hpp"

namespace kcall {

Session::Session(const BuiltinDirectory& builtins, std::ostream& out, std::ostream& err, bool json)
    : evaluator_(builtins), out_(out), err_(err), json_(json) {
    previousHandler_ = ka::setWarningHandler([this](const std::u16string& text) { warn(text); });
}

Session::~Session() {
    ka::setWarningHandler(std::move(previousHandler_));
}

bool Session::runLine(std::string_view line) {
    try {
        const Statement statement = parseLine(line);
        const std::vector<Outcome> outcomes = evaluator_.run(statement);
        for (const Outcome& outcome : outcomes) {
            if (statement.quiet) break;
            if (json_) {
                writeJsonLine(out_, toJson(outcome.value));
            } else {
                display(out_, outcome.value, outcome.name);
            }
        }
        showTimings();
        out_.flush();
        return true;
    } catch (const std::exception& e) {
        reportError(e.what());
    } catch (...) {
        reportError("an unknown exception");
    }
    // The calls timed before the failure were timed all the same.
    showTimings();
    anyFailed_ = true;
    return false;
}

void Session::explainCalls(const BuiltinDirectory& builtins, std::ostream& out,
                           TypeWording wording) {
    evaluator_.observeCalls([&builtins, &out, wording](const std::string& name,
                                                       std::span<kaArray_tag* const> arguments,
                                                       int nlhs, const std::string& note) {
        if (const auto* fcn = builtins.find(name)) {
            out << note
                << explainCall(name, *fcn, arguments, static_cast<std::size_t>(nlhs), wording);
        }
    });
}

void Session::showTimings() {
    for (const CallTiming& timing : evaluator_.takeTimings()) {
        if (json_) {
            writeJsonLine(out_, boost::json::object{{"time", boost::json::object{
                                                                 {"call", timing.call},
                                                                 {"seconds", timing.seconds},
                                                                 {"calls", timing.runs},
                                                             }}});
        } else {
            out_ << "time: " << timing.call << ": " << durationText(timing.seconds)
                 << " per call (median of " << timing.runs
                 << (timing.runs == 1 ? " call)\n" : " calls)\n");
        }
    }
}

void Session::warn(std::u16string_view text) {
    const std::string utf8 = fl::i18n::ustring_to_utf8(text);
    out_.flush();  // what came before the warning shows before it
    if (json_) {
        writeJsonLine(out_, boost::json::object{{"warning", utf8}});
    } else {
        err_ << "Warning: " << utf8 << '\n';
    }
}

void Session::reportError(std::string_view text) {
    if (json_) {
        writeJsonLine(out_, boost::json::object{{"error", text}});
    } else {
        err_ << "Error: " << text << '\n';
    }
}

}  // namespace kcall
