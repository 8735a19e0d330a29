// The builtins of the modules running in the process, as a host (kcall, a test) finds them:
// every IBuiltinModule service of the process's framework, with their builtins by name.
//
// Two modules that declare one builtin name make the directory fail with both names: a host
// cannot tell which one a call means.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fl/filesystem.hpp>

#include <builtin/config.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/services/IBuiltinModule.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>

namespace Norvane::builtin::declare {

class BUILTIN_API ModuleDirectory {
public:
    // Starts the builtin service bundles, then the module bundles of each folder (a relative
    // folder lies under the installation root), then collects the modules. Throws what the
    // start of a bundle throws, and std::runtime_error for a builtin name declared twice.
    static ModuleDirectory start(const std::vector<fl::filesystem::path>& folders);

    // The same for a host that goes on whatever it cannot load. Each folder is a folder of
    // module bundles or one module bundle's own folder. A missing folder, a folder without
    // module bundles, a bundle whose manifest has no "builtin-module", a library that fails to
    // load and a module whose start fails (a mistake in a declaration) each add one line to
    // `problems`, naming the folder or bundle and the reason, and a record on the channel
    // "builtin2::ModuleDirectory"; so does a module that declares a builtin of a module found
    // before it, which is left out. The other modules load.
    static ModuleDirectory start(const std::vector<fl::filesystem::path>& folders,
                                 std::vector<std::string>& problems);

    // The modules whose services are registered now.
    ModuleDirectory();

    const BuiltinFcn* find(std::string_view name) const;
    const builtinreg::BuiltinVariantLists* lists(std::string_view name) const;
    // The module that declares the builtin; empty if none does.
    std::string moduleOf(std::string_view name) const;
    // Every builtin with its module, sorted by builtin.
    std::vector<std::pair<std::string, std::string>> list() const;

private:
    // With `problems`, a module that declares a builtin of a module before it is left out and
    // said there; without, it fails the directory.
    explicit ModuleDirectory(std::vector<std::string>* problems);
    // What makes the module clash with those collected so far; empty if nothing does.
    std::string firstClash(const IBuiltinModule& module) const;

    std::vector<std::shared_ptr<IBuiltinModule>> modules_;  // keeps the services alive
    std::map<std::string, const IBuiltinModule*, std::less<>> byBuiltin_;
};

// The folder of the builtin service bundles, where module bundles are installed too.
BUILTIN_API fl::filesystem::path builtinServicesFolder();

}  // namespace Norvane::builtin::declare
