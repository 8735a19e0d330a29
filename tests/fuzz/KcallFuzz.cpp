// Fuzz target: bytes as the input of a kcall session over the module bundles, read as kcall
// reads standard input (a line whose brackets are still open goes on with the next one), each
// statement parsed and run. Parse errors and failed calls are a session's daily bread and end
// as its error messages; a crash, a sanitizer report or an array left alive once the session
// is over is a finding.
//
//   byte 0     bit 0 JSON output, bit 1 explain each call as kcall --explain does (the
//              hand-written inputs start with ' ', '!', '"' or '#', which read as text)
//   then       the lines
//
// Inputs are kept from growing values without bound ("x = [x x]" again and again): once a
// statement leaves a value of more than kMaxElements elements, the rest of the input is not run.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>

#include <builtin/services/BuiltinServices.hpp>
#include <ka/ka.hpp>

#include "FuzzInput.hpp"
#include "Parser.hpp"
#include "SampleModules.hpp"
#include "Session.hpp"

namespace {

constexpr std::size_t kMaxElements = 4096;
constexpr std::size_t kMaxStatements = 64;

class Directory final : public kcall::BuiltinDirectory {
public:
    const Norvane::builtin::BuiltinFcn* find(std::string_view name) const override {
        return fuzz::sampleModules().find(name);
    }
    const Norvane::builtin::builtinreg::BuiltinVariantLists* lists(
        std::string_view name) const override {
        return fuzz::sampleModules().lists(name);
    }
};

// Strings show their text, as kcall shows them.
void showStringsAsText() {
    const auto& strings = Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>();
    if (!strings) fuzz::fail("no string support");
    ka::setObjectFormatter(strings->getStringClassId(), [strings](const kaArray_tag* array) {
        std::string text;
        for (std::size_t i = 0, n = strings->getNumberOfStrings(array); i < n; ++i) {
            text += (i == 0 ? "\"" : "    \"") + strings->getStringUtf8(array, i) + "\"";
        }
        return text;
    });
}

// The statements of the text: a line with open brackets takes the next line with it.
class Statements {
public:
    explicit Statements(std::string_view text) : text_(text) {}

    bool next(std::string& statement) {
        if (pos_ > text_.size()) return false;
        statement = line();
        while (kcall::needsMoreInput(statement) && pos_ <= text_.size()) statement += '\n' + line();
        return true;
    }

private:
    std::string line() {
        const std::size_t end = std::min(text_.find('\n', pos_), text_.size());
        std::string result(text_.substr(pos_, end - pos_));
        pos_ = end + 1;
        return result;
    }

    std::string_view text_;
    std::size_t pos_ = 0;
};

// The variable the statement assigns first, if it parses: its first target, or ans.
std::string targetOf(const std::string& statement) {
    try {
        const kcall::Statement parsed = kcall::parseLine(statement);
        return parsed.targets.empty() ? "ans" : parsed.targets.front();
    } catch (const kcall::ParseError&) {
        return {};
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::sampleModules();
    showStringsAsText();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Directory directory;
    fuzz::Input in(data, size);
    const std::uint8_t mode = in.byte();
    const std::size_t before = ka::liveArrayCount();
    {
        std::ostringstream out, err;
        kcall::Session session(directory, out, err, (mode & 1) != 0);
        if ((mode & 2) != 0) session.explainCalls(directory, out);
        Statements statements(in.rest());
        std::string statement;
        for (std::size_t n = 0; n < kMaxStatements && statements.next(statement); ++n) {
            session.runLine(statement);
            const kaArray_tag* value = session.evaluator().variable(targetOf(statement));
            if (value != nullptr && matrix::numberOfElements(value) > kMaxElements) break;
        }
    }
    if (ka::liveArrayCount() != before)
        fuzz::fail("the session left arrays alive, or freed some twice");
    return 0;
}
