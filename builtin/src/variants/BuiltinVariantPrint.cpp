// The diagnostic form of a variant, as the cleanup and construction logs write it. Readers of
// those logs compare them line by line, so the text is fixed down to the tabs.
#include <builtin/variants/BuiltinVariant.hpp>

#include <ostream>

namespace Norvane::builtin {

namespace {

constexpr const char* kRule = "==================================\n";

// "NULL" for no elements, else "[a], [b]"; a line end either way.
void writeList(std::ostream& os, const std::vector<std::string>& texts) {
    if (texts.empty()) {
        os << "NULL";
    } else {
        const char* separator = "[";
        for (const std::string& text : texts) {
            os << separator << text;
            separator = "], [";
        }
        os << "]";
    }
    os << std::endl;
}

// 0 or 1, whatever the stream's bool format is.
template <class Flag>
int flagDigit(Flag flag) {
    return flag != Flag::NO ? 1 : 0;
}

}  // namespace

std::ostream& operator<<(std::ostream& os, const BuiltinVariant& variant) {
    os << kRule << "BuiltinVariant:\n c++ function name: " << variant.cppFunctionName
       << "\n\t keldor function name: " << variant.keldorFunctionName
       << "\n\t dominant class: " << variant.dominantClass
       << "\n\t developer function pointer: " << variant.developerFunction
       << "\n\t Flags:\n\t\t mayCallIntoKeldor: " << flagDigit(variant.mayCallIntoKeldor)
       << "\n\t\t mayRaiseWarnings: " << flagDigit(variant.mayRaiseWarnings)
       << "\n\t\t mayThrowErrors: " << flagDigit(variant.mayThrowErrors)
       << "\n\t\t mayHaveSideEffects: " << flagDigit(variant.mayHaveSideEffects)
       << "\n\t OrroSupportLevel: " << variant.orroSupportLevel;
    os << "\n\t Input types: ";
    writeList(os, variant.inputTypes);
    os << "\t Output types: ";
    writeList(os, variant.outputTypes);
    if (const auto& original = variant.originalVariant) {
        os << "\t Original Output types: ";
        writeList(os, original->outputTypes);
        os << "\t Original developer function pointer: " << original->developerFunction << '\n';
    }
    return os << kRule;
}

}  // namespace Norvane::builtin
