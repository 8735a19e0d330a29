// Broken bundles in the folder of builtin services, as a host starts its modules from there under
// the installation root: a manifest that is no JSON object or lacks an entry, a library that is
// no shared object or has no activator, an activator that fails. The start names the bundle and
// the fault, after every other bundle has started, and a failed bundle leaves no service behind.
#include <cppmicroservices/BundleContext.h>
#include <fl/filesystem.hpp>
#include <fl/i18n.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "BadInput.hpp"
#include "Greeter.hpp"

namespace badinput {
namespace {

namespace fs = std::filesystem;
using foundation::cppmicroservices::BundleLoadError;

std::size_t greeters() {
    return foundation::cppmicroservices::getFramework()
        ->GetBundleContext()
        .GetServiceReferences<testbundle::IGreeter>()
        .size();
}

// One bundle folder "broken" of the services folder under a fresh installation root. In the
// manifest, @ stands for the bundle's folder; `library` is written to lib.so there if given.
struct BrokenBundle {
    std::string manifest;
    std::optional<std::string> library = std::nullopt;
    bool manifestIsAFolder = false;
    std::string copyOf = {};  // a shared object to copy to lib.so, so that it loads once more
};

// The text with each @ replaced by the bundle's folder.
std::string placed(std::string text, const std::string& folder) {
    for (std::size_t at = text.find('@'); at != std::string::npos;
         at = text.find('@', at + folder.size())) {
        text.replace(at, 1, folder);
    }
    return text;
}

// Stops what a row started, so that its modules and services do not reach the next row.
void stopBundlesUnder(const fs::path& root) {
    for (auto& bundle :
         foundation::cppmicroservices::getFramework()->GetBundleContext().GetBundles()) {
        if (bundle.GetLocation().starts_with(root.string())) bundle.Stop();
    }
}

void start(const BrokenBundle& bundle, const fs::path& root) {
    const fs::path folder = root / "bin/linux64/builtinservices/broken";
    fs::create_directories(folder);
    if (bundle.manifestIsAFolder) {
        fs::create_directories(folder / "manifest.json");
    } else {
        std::ofstream(folder / "manifest.json") << placed(bundle.manifest, folder.string());
    }
    if (bundle.library) std::ofstream(folder / "lib.so") << *bundle.library;
    if (!bundle.copyOf.empty()) fs::copy_file(bundle.copyOf, folder / "lib.so");

    const auto before = directory().list();
    const std::size_t greetersBefore = greeters();
    setenv("KELDOR_INSTALL_ROOT", root.c_str(), 1);
    struct Restore {
        const fs::path& root;
        ~Restore() {
            unsetenv("KELDOR_INSTALL_ROOT");
            stopBundlesUnder(root);
        }
    } restore{root};
    try {
        declare::ModuleDirectory::start({declare::builtinServicesFolder()});
    } catch (const BundleLoadError& error) {
        EXPECT_EQ(error.failures().size(), 1u);
        EXPECT_EQ(declare::ModuleDirectory().list(), before)
            << "a module of the broken bundle stayed";
        EXPECT_EQ(greeters(), greetersBefore) << "the broken bundle left its service";
        throw;
    }
    EXPECT_EQ(declare::ModuleDirectory().list(), before);
}

class Bundles : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "badinput-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        roots_ = pattern;
    }
    void TearDown() override { fs::remove_all(roots_); }

    // A bundle that starts, and with it a second module that declares the sample's builtins.
    Row secondSample() {
        const fs::path root = roots_ / std::to_string(rows_++);
        return {"a second copy of the sample module",
                [root] {
                    const std::string manifest =
                        R"({"bundle.symbolic_name": "sample_copy", "bundle.library": "lib.so",
                                                     "builtin-module": "sample"})";
                    start({manifest, std::nullopt, false, SAMPLE_MODULE_LIBRARY}, root);
                },
                refusal<std::runtime_error>(
                    "the builtin abs is declared by two modules: sample and sample")};
    }

    // Each row has an installation root of its own, so that every start sees one new bundle.
    Row row(std::string input, BrokenBundle bundle, const std::string& failure) {
        const fs::path root = roots_ / std::to_string(rows_++);
        const std::string folder = (root / "bin/linux64/builtinservices/broken").string();
        const Outcome expected =
            failure.empty() ? taken
                            : refusal<BundleLoadError>(
                                  "Some bundles could not be installed or started:\n  Bundle " +
                                  folder + ": " + placed(failure, folder));
        return {std::move(input), [bundle = std::move(bundle), root] { start(bundle, root); },
                expected};
    }

    fs::path roots_;
    int rows_ = 0;
};

const std::string greeter = TEST_BUNDLE_LIBRARY;
const std::string classSystem = CLASS_SYSTEM_LIBRARY;
const std::string noActivator = LIBRARY_WITHOUT_ACTIVATOR;

std::string module(const std::string& library, const std::string& more = {}) {
    return R"({"bundle.symbolic_name": "broken", "bundle.library": ")" + library +
           R"(", "builtin-module": "broken", "greeting": "hello")" + more + "}";
}

TEST_F(Bundles, BrokenBundles) {
    const std::string notJson = "the manifest is not valid JSON: ";
    const std::string needs = "the manifest needs \"";
    runTable(
        "broken bundles",
        {
            row("manifest not JSON", {"{ not json"}, notJson + "syntax error"),
            row("empty manifest", {""}, notJson + "incomplete JSON"),
            row("manifest an array", {R"([{"bundle.symbolic_name": "broken"}])"},
                "the manifest is not a JSON object"),
            row("manifest a folder", {"", std::nullopt, true}, "cannot read @/manifest.json"),
            row("no symbolic name", {R"({"bundle.library": "lib.so", "builtin-module": "broken"})"},
                needs + "bundle.symbolic_name\" as a non-empty string"),
            row("empty symbolic name",
                {R"({"bundle.symbolic_name": "", "bundle.library": "lib.so"})"},
                needs + "bundle.symbolic_name\" as a non-empty string"),
            row("symbolic name a number",
                {R"({"bundle.symbolic_name": 7, "bundle.library": "lib.so"})"},
                needs + "bundle.symbolic_name\" as a non-empty string"),
            row("no library", {R"({"bundle.symbolic_name": "broken", "builtin-module": "broken"})"},
                needs + "bundle.library\" as a non-empty string"),
            row("library a list",
                {R"({"bundle.symbolic_name": "broken", "bundle.library": ["lib.so"]})"},
                needs + "bundle.library\" as a non-empty string"),
            row("library not a shared object", {module("lib.so"), std::string(200, 'x')},
                "cannot load @/lib.so: @/lib.so: invalid ELF header"),
            row("library a short file", {module("lib.so"), "MZ"},
                "cannot load @/lib.so: @/lib.so: file too short"),
            row("library missing", {module("absent.so")},
                "cannot load @/absent.so: @/absent.so: cannot open shared object file: No such "
                "file or directory"),
            row("library without an activator", {module(noActivator)},
                noActivator + " has no bundle activator"),
            row("activator that fails", {module(greeter, R"(, "fail-start": true)")},
                "refusing to start"),
            row("class system with orro_objects a number",
                {module(classSystem, R"(, "orro_objects": 5)")},
                "Bad any_cast: cannot cast from int to cppmicroservices::AnyMap"),
            row("class system with a bad class",
                {module(classSystem,
                        R"(, "orro_objects": {"N1b1XE": {"kaClassName": "X", "variantId": -3}})")},
                "Unable to cast variant id for N1b1XE to size_t.\nVariant id must be a value "
                "greater than or equal to 0."),
            secondSample(),
            // Without the start property the bundle is installed and never started.
            row("no start property",
                {R"({"bundle.symbolic_name": "broken", "bundle.library": ")" + greeter +
                 R"(", "greeting": "hi"})"},
                ""),
        });
}

// What a host is told of module folders that load nothing or not all: the reporting start goes
// on, and each problem is one line that names the folder or bundle. The lines come back as the
// text of one exception, so that the rows read as the others do.
struct ModuleProblems : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void loadModules(const fs::path& folder) {
    const auto before = directory().list();
    std::vector<std::string> problems;
    const auto modules = declare::ModuleDirectory::start(
        {fl::filesystem::path(fl::i18n::utf8_to_ustring(folder.string()), true)}, problems);
    stopBundlesUnder(folder.parent_path());
    EXPECT_EQ(modules.list(), before) << "a module of a bad folder stayed";
    std::string text;
    for (const std::string& line : problems) text += (text.empty() ? "" : "\n") + line;
    if (!text.empty()) throw ModuleProblems(text);
}

TEST_F(Bundles, ModuleFolders) {
    const fs::path root = roots_ / "folders";
    const auto bundle = [&](const std::string& name, const std::string& manifest,
                            const std::string& library = {}) {
        fs::create_directories(root / name / "b");
        std::ofstream(root / name / "b/manifest.json") << manifest;
        if (!library.empty()) fs::copy_file(library, root / name / "b/lib.so");
        return root / name;
    };
    const std::string sample = SAMPLE_MODULE_LIBRARY;
    const fs::path empty = root / "empty",
                   notModule = bundle("plain", R"({"bundle.symbolic_name": "p",
        "bundle.library": "lib.so"})"),
                   missing = bundle("missing", module("absent.so")),
                   renamed = bundle("renamed", R"({"bundle.symbolic_name": "s", "bundle.library":
        "lib.so", "builtin-module": "other"})",
                                    sample),
                   twice = bundle("twice", R"({"bundle.symbolic_name": "s2", "bundle.library":
        "lib.so", "builtin-module": "sample"})",
                                  sample);
    fs::create_directories(empty);
    const auto problems = [](const std::string& text) { return refusal<ModuleProblems>(text); };
    const std::string clash =
        "the builtin abs is declared by two modules: sample and sample; the second is left out";
    runTable(
        "module folders",
        {
            {"no such folder", [&] { loadModules(root / "absent"); },
             problems((root / "absent").string() + ": no such folder")},
            {"no bundle in the folder", [&] { loadModules(empty); },
             problems(empty.string() +
                      ": no module bundle here (no subfolder with a manifest.json)")},
            {"a bundle that is no module", [&] { loadModules(notModule); },
             problems((notModule / "b").string() +
                      ": its manifest has no \"builtin-module\", so it is not a module bundle")},
            {"a library that does not load", [&] { loadModules(missing); },
             problems("Bundle " + (missing / "b").string() + ": cannot load " +
                      (missing / "b/absent.so").string() + ": " +
                      (missing / "b/absent.so").string() +
                      ": cannot open shared object file: No such file or directory")},
            {"a module named otherwise in its manifest", [&] { loadModules(renamed); },
             problems("Bundle " + (renamed / "b").string() +
                      ": module sample: its manifest names the module \"other\" "
                      "(\"builtin-module\"), the code \"sample\"")},
            {"a second sample, by its folder of modules", [&] { loadModules(twice); },
             problems(clash)},
            {"a second sample, by its own folder", [&] { loadModules(twice / "b"); },
             problems(clash)},
        });
}

}  // namespace
}  // namespace badinput
