// Manifests: text that is no JSON object, and "orro_objects" sections whose entries are not what
// the table of native classes takes. An entry's error names its mangled key and why it failed.
#include <climits>

#include <cppmicroservices/Any.h>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
#include <foundation/cppmicroservices/manifest.hpp>

#include "BadInput.hpp"

namespace badinput {
namespace {

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using types::SaveOrroObjectRuntimeInfoError;

// Stores the "orro_objects" section of the manifest {"orro_objects": <section>}.
void store(const std::string& section) {
    const AnyMap manifest =
        foundation::cppmicroservices::parseManifest(R"({"orro_objects": )" + section + "}");
    types::addOrroObjectRuntimeInfo(
        cppmicroservices::ref_any_cast<AnyMap>(manifest.at("orro_objects")));
}

// The failed cast of a held value to To, as the service framework words it.
template <class To>
std::string castText(const Any& held) {
    try {
        cppmicroservices::any_cast<To>(held);
    } catch (const cppmicroservices::BadAnyCastException& e) {
        return e.what();
    }
    return "(no failure)";
}

std::string head(const std::string& key) {
    return "Error while trying to save " + key + " runtime info. Details: ";
}
Refusal castFailure(const std::string& key, const std::string& what) {
    return refusal<SaveOrroObjectRuntimeInfoError>(
        head(key) + what +
        "\nEach value in the orro_objects object must be an object containing 'kaClassName' and "
        "'variantId' keys'. "
        "'kaClassName' must be a type castable to std::string and 'variantId' must be a type "
        "castable to size_t for "
        "each and every orro_object");
}
Refusal missingKeys(const std::string& key) {
    return refusal<SaveOrroObjectRuntimeInfoError>(
        head(key) +
        "missing 'kaClassName' and/or 'variantId' as keys\n'kaClassName' and 'variantId' MUST be "
        "present for each "
        "orro_object");
}
Refusal negativeId(const std::string& key) {
    return refusal<SaveOrroObjectRuntimeInfoError>(
        "Unable to cast variant id for " + key +
        " to size_t.\nVariant id must be a value greater than or equal to 0.");
}
Refusal notAClassName(const std::string& key) {
    return refusal<SaveOrroObjectRuntimeInfoError>(
        head(key) + "found cppClassName '" + key +
        "', but this is not a demangelable typename.\nEach key within "
        "orro_objects MUST be a mangled c++ class name.");
}
Refusal conflict(const std::string& key, const std::string& cppClassName) {
    return refusal<SaveOrroObjectRuntimeInfoError>(
        head(key) + "Attempted to insert " + cppClassName +
        ", but the class already exists with different orro runtime "
        "information.");
}

Row manifestText(std::string json, std::string why) {
    return {"manifest " + json, [json] { foundation::cppmicroservices::parseManifest(json); },
            refusal<std::invalid_argument>(std::move(why))};
}
Row section(std::string json, Outcome expected) {
    return {"orro_objects " + json, [json] { store(json); }, std::move(expected)};
}

TEST(BadInput, Manifests) {
    const std::string notJson = "the manifest is not valid JSON: ";
    runTable(
        "manifests",
        {
            manifestText("{ not json", notJson + "syntax error"),
            manifestText("", notJson + "incomplete JSON"),
            manifestText(R"({"a": 1)", notJson + "incomplete JSON"),
            manifestText(R"({"a": 1} {"b": 2})", notJson + "extra data"),
            manifestText(R"({"a": 1,})", notJson + "syntax error"),
            manifestText("{\"name\": \"caf\xe9\"}",
                         notJson + "syntax error"),  // Latin-1, not UTF-8
            manifestText(R"([{"a": 1}])", "the manifest is not a JSON object"),
            manifestText(R"("orro_objects")", "the manifest is not a JSON object"),

            section(R"({"N1a1AE": 5})", castFailure("N1a1AE", castText<AnyMap>(5))),
            section(R"({"N1a1BE": null})", castFailure("N1a1BE", castText<AnyMap>(Any()))),
            section(R"({"N1a1CE": [{"kaClassName": "C", "variantId": 0}]})",
                    castFailure("N1a1CE", castText<AnyMap>(std::vector<Any>{AnyMap{}}))),
            section(R"({"N1a1DE": {"kaClassName": 3, "variantId": 0}})",
                    castFailure("N1a1DE", castText<std::string>(3))),
            section(R"({"N1a1EE": {"kaClassName": null, "variantId": 0}})",
                    castFailure("N1a1EE", castText<std::string>(Any()))),
            section(R"({"N1a1FE": {"kaClassName": "F", "variantId": "1"}})",
                    castFailure("N1a1FE", castText<int>(std::string("1")))),
            section(R"({"N1a1GE": {"kaClassName": "G", "variantId": 1.0}})",
                    castFailure("N1a1GE", castText<int>(1.0))),
            section(R"({"N1a1HE": {"kaClassName": "H", "variantId": true}})",
                    castFailure("N1a1HE", castText<int>(true))),
            section(R"({"N1a1IE": {"kaClassName": "I", "variantId": 5000000000}})",
                    castFailure("N1a1IE", castText<int>(5000000000LL))),
            section(R"({"N1a1JE": {"kaClassName": "J", "variantId": null}})",
                    castFailure("N1a1JE", castText<int>(Any()))),
            section(R"({"N1a1KE": {"kaClassName": "K", "variantId": [0]}})",
                    castFailure("N1a1KE", castText<int>(std::vector<Any>{0}))),
            section(R"({"N1a1LE": {"kaClassName": "L"}})", missingKeys("N1a1LE")),
            section(R"({"N1a1ME": {"variantId": 0}})", missingKeys("N1a1ME")),
            section(R"({"N1a1NE": {}})", missingKeys("N1a1NE")),
            // A wrong type beside a missing key: the failed cast is what counts.
            section(R"({"N1a1OE": {"kaClassName": 4}})",
                    castFailure("N1a1OE", castText<std::string>(4))),
            section(R"({"N1a1PE": {"kaClassName": "P", "variantId": -1}})", negativeId("N1a1PE")),
            section(
                R"({"N1a1QE": {"kaClassName": "Q", "variantId": )" + std::to_string(INT_MIN) + "}}",
                negativeId("N1a1QE")),
            section(R"({"not a class": {"kaClassName": "R", "variantId": 0}})",
                    notAClassName("not a class")),
            section(R"({"": {"kaClassName": "S", "variantId": 0}})", notAClassName("")),
            section(R"({"N1a1T": {"kaClassName": "T", "variantId": 0}})", notAClassName("N1a1T")),
            // The class system's own manifest stored Counter with variant id 0.
            section(R"({"N11classbundle7CounterE": {"kaClassName": "Counter", "variantId": 1}})",
                    conflict("N11classbundle7CounterE", "classbundle::Counter")),
            section(R"({"N11classbundle7CounterE": {"kaClassName": "Tally", "variantId": 0}})",
                    conflict("N11classbundle7CounterE", "classbundle::Counter")),
            // Two keys of one class that disagree: the first is stored, the second conflicts with
            // it.
            section(
                R"({"1U": {"kaClassName": "U", "variantId": 0}, "N1UE": {"kaClassName": "U", "variantId": 1}})",
                conflict("N1UE", "U")),
        });
    // Nothing of a refused entry was stored, and Counter kept its information.
    EXPECT_EQ(types::getOrroObjectRuntimeInfo("classbundle::Counter"),
              (types::OrroObjectRuntimeInfo{"Counter", 0}));
    EXPECT_THROW(types::getOrroObjectRuntimeInfo("a::P"), types::GetOrroObjectRuntimeInfoError);
}

}  // namespace
}  // namespace badinput
