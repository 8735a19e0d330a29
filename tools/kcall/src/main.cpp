// kcall: call builtins from the command line, and see why a call went where it went.
//
//   kcall 'plus(1, 2)' 'x = [1 2; 3 4]' 'sum(x)'     each argument one line
//   kcall                                           lines from standard input (a prompt on a
//                                                   terminal, with completion of names on Tab)
//   kcall --list | --describe NAME | --explain EXPR | --time EXPR | --lint [MODULE]
//
// It starts the service framework and the builtin service bundles, then every module bundle of
// the builtin services folder and of each --modules folder, and evaluates lines against the
// builtins the modules declare. Lines given beside --explain or --time run first, as setup.
// Exit status: 0, or 1 if a line failed (with arguments, the first failure ends the run) or the
// lint found something, 2 for a bad command line. A module that cannot be loaded is one warning
// on stderr; the others serve.
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <oneapi/tbb/global_control.h>
#include <CLI/CLI.hpp>

#include <builtin/declare/Lint.hpp>
#include <builtin/declare/ModuleDirectory.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <fl/i18n.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include "Describe.hpp"
#include "LineReader.hpp"
#include "Session.hpp"

namespace {

constexpr const char* kVersion = "kcall 0.1.0";

class Directory final : public kcall::BuiltinDirectory {
public:
    explicit Directory(const Norvane::builtin::declare::ModuleDirectory& modules)
        : modules_(modules) {}
    const Norvane::builtin::BuiltinFcn* find(std::string_view name) const override {
        return modules_.find(name);
    }
    const Norvane::builtin::builtinreg::BuiltinVariantLists* lists(
        std::string_view name) const override {
        return modules_.lists(name);
    }
    std::vector<std::string> names() const override {
        std::vector<std::string> all;
        for (const auto& [name, module] : modules_.list()) all.push_back(name);
        return all;
    }

private:
    const Norvane::builtin::declare::ModuleDirectory& modules_;
};

struct Options {
    std::vector<std::string> lines;
    std::vector<std::string> moduleFolders;
    bool json = false;
    bool list = false;
    std::string describe;
    std::string explain;
    std::string time;
    bool types = false;
    int threads = 0;
    bool lint = false;
    std::string lintModule;  // empty: every module
};

// A folder as the user means it: a relative one from the current folder.
fl::filesystem::path folderOf(const std::string& utf8) {
    const std::string absolute = std::filesystem::absolute(utf8).lexically_normal().string();
    const std::u16string text = fl::i18n::utf8_to_ustring(absolute);
    return fl::filesystem::path(fl::filesystem::detail::make_native_form(text, true), true);
}

// Strings show their text, as the language shows them: "abc", or each one quoted in an array.
void showStringsAsText() {
    const auto& strings = Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>();
    if (!strings) return;
    ka::setObjectFormatter(strings->getStringClassId(), [strings](const kaArray_tag* array) {
        std::string text;
        for (std::size_t i = 0, n = strings->getNumberOfStrings(array); i < n; ++i) {
            text += (i == 0 ? "\"" : "    \"") + strings->getStringUtf8(array, i) + "\"";
        }
        return text;
    });
}

int listBuiltins(const Norvane::builtin::declare::ModuleDirectory& modules) {
    for (const auto& [name, module] : modules.list()) std::cout << name << "  (" << module << ")\n";
    return 0;
}

// How the types of signatures are worded: as people read them, or with --types as the
// engine's type expressions.
kcall::TypeWording wordingOf(const Options& options) {
    return options.types ? kcall::TypeWording::ENGINE : kcall::TypeWording::READABLE;
}

int describe(const Norvane::builtin::declare::ModuleDirectory& modules, const Options& options) {
    const std::string& name = options.describe;
    const auto* lists = modules.lists(name);
    if (lists == nullptr) {
        std::cerr << "Error: no builtin named " << name << "\n";
        return 1;
    }
    std::cout << kcall::describeBuiltin(name, modules.moduleOf(name), *lists, wordingOf(options));
    return 0;
}

// Every finding of the lint for the builtins of one module, or of all; 1 if there is any.
int lint(const Norvane::builtin::declare::ModuleDirectory& modules, const Options& options) {
    const std::string& module = options.lintModule;
    std::size_t findings = 0, builtins = 0;
    for (const auto& [name, owner] : modules.list()) {
        if (!module.empty() && owner != module) continue;
        ++builtins;
        for (const auto& finding : Norvane::builtin::declare::lintVariantLists(
                 name, *modules.lists(name), wordingOf(options))) {
            std::cout << owner << ": " << finding.message << "\n";
            ++findings;
        }
    }
    if (builtins == 0 && !module.empty()) {
        std::cerr << "Error: no module named " << module << " is loaded\n";
        return 1;
    }
    std::cout << "lint: " << builtins << (builtins == 1 ? " builtin, " : " builtins, ") << findings
              << (findings == 1 ? " finding\n" : " findings\n");
    return findings == 0 ? 0 : 1;
}

int run(const Options& options, const kcall::BuiltinDirectory& builtins) {
    kcall::Session session(builtins, std::cout, std::cerr, options.json);
    for (const std::string& line : options.lines) {
        if (!session.runLine(line)) return 1;
    }
    if (!options.explain.empty()) {
        session.explainCalls(builtins, std::cout, wordingOf(options));
        return session.runLine(options.explain) ? 0 : 1;
    }
    if (!options.time.empty()) {
        session.timeCalls(std::chrono::seconds(1));
        return session.runLine(options.time) ? 0 : 1;
    }
    if (!options.lines.empty()) return 0;
    kcall::LineReader reader(std::cin, [&session](std::string_view prefix) {
        return session.evaluator().namesStartingWith(prefix);
    });
    while (const std::optional<std::string> line = reader.next()) session.runLine(*line);
    return session.anyFailed() ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App app(
        "Calls KELDOR builtins with values, shows the results, and explains the choice of "
        "variant.");
    app.set_version_flag("--version", kVersion);
    // Lines are taken as they are, not as CLI11 values (which read "[1 2]" as a list): every
    // argument that is not an option is one, and after "--" every argument is.
    app.allow_extras();
    app.footer(
        "Lines to evaluate follow the options, one per argument (after -- if one starts with -);\n"
        "without any, lines come from standard input.");
    app.add_option("--modules", options.moduleFolders,
                   "Another folder of module bundles (repeatable)")
        ->allow_extra_args(false)
        ->check(CLI::ExistingDirectory);
    app.add_flag("--json", options.json,
                 "Results, warnings and errors as JSON objects, one per line");
    app.add_flag("--list", options.list, "List every builtin with its module");
    app.add_option("--describe", options.describe,
                   "Show a builtin's variant lists and the lint's findings");
    CLI::Option* explain =
        app.add_option("--explain", options.explain,
                       "Evaluate a line and show, for each call, how its variant was chosen");
    app.add_option("--time", options.time,
                   "Evaluate a line, run each of its calls again for about a second, and show "
                   "the median time of one call")
        ->excludes(explain);
    app.add_flag("--types", options.types,
                 "In --describe, --explain and --lint, the engine's type expressions rather "
                 "than readable types");
    app.add_option("--lint", options.lintModule,
                   "Lint every loaded builtin, or those of one module; exit 1 on any finding")
        ->expected(0, 1);
    app.add_option("--threads", options.threads, "The most worker threads of element-wise loops")
        ->check(CLI::Range(1, 4096));
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // --help and --version end here too, with CLI11's status 0; a mistake is status 2, not
        // CLI11's own numbers.
        return app.exit(e) == 0 ? 0 : 2;
    }
    options.lint = app.count("--lint") > 0;
    bool afterSeparator = false;
    for (const std::string& argument : app.remaining()) {
        if (!afterSeparator && argument == "--") {
            afterSeparator = true;
        } else if (!afterSeparator && argument.size() > 2 && argument.starts_with("--")) {
            std::cerr << "Error: unknown option " << argument << "; kcall --help lists them\n";
            return 2;
        } else {
            options.lines.push_back(argument);
        }
    }

    std::optional<oneapi::tbb::global_control> threads;
    if (options.threads > 0) {
        threads.emplace(oneapi::tbb::global_control::max_allowed_parallelism,
                        static_cast<std::size_t>(options.threads));
    }
    try {
        foundation::cppmicroservices::createFramework();
        std::vector<fl::filesystem::path> folders{
            Norvane::builtin::declare::builtinServicesFolder()};
        for (const std::string& folder : options.moduleFolders) folders.push_back(folderOf(folder));
        // What could not be loaded is said, one line each; the rest of the modules serve.
        std::vector<std::string> problems;
        const auto modules = Norvane::builtin::declare::ModuleDirectory::start(folders, problems);
        for (const std::string& problem : problems) std::cerr << "Warning: " << problem << "\n";
        showStringsAsText();
        if (options.lint) return lint(modules, options);
        if (options.list) return listBuiltins(modules);
        if (!options.describe.empty()) return describe(modules, options);
        const Directory builtins(modules);
        return run(options, builtins);
    } catch (const std::exception& e) {
        std::cerr << "Error: " << e.what() << "\n";
        return 2;
    }
}
