// The process's service framework and the start of a folder of bundles.
//
// A process has at most one framework; a process that never set one up has none, and every
// lookup through it finds nothing. The runtime (or a test, or the demo) makes one with
// createFramework or hands one over with setFramework.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/LDAPFilter.h>
#include <fl/filesystem.hpp>

namespace foundation::cppmicroservices {

// The process's framework; null if there is none.
std::shared_ptr<::cppmicroservices::Framework> getFramework();

// Makes `framework` the process's framework (null: none) and returns the one it replaces.
std::shared_ptr<::cppmicroservices::Framework> setFramework(
    std::shared_ptr<::cppmicroservices::Framework> framework);

// A new framework, started and made the process's framework.
std::shared_ptr<::cppmicroservices::Framework> createFramework();

// First: every bundle found in the folder, installed now or before. Second: the bundles that
// the filter selected and that are active after the call.
using InstallAndStartResult =
    std::pair<std::vector<::cppmicroservices::Bundle>, std::vector<::cppmicroservices::Bundle>>;

// Bundles that could not be installed or started. Thrown only after every other bundle of
// the folder has been installed and, if selected, started; it carries what the call would
// have returned and one message per failed bundle, each naming the bundle's folder.
class BundleLoadError : public std::runtime_error {
public:
    BundleLoadError(std::vector<std::string> failures, InstallAndStartResult result);

    const std::vector<std::string>& failures() const noexcept { return failures_; }
    const InstallAndStartResult& result() const noexcept { return result_; }

private:
    std::vector<std::string> failures_;
    InstallAndStartResult result_;
};

// Installs every bundle of `directory` into the process's framework and starts those whose
// manifest the filter selects, in the order of their folder names.
//
// A relative directory lies under the installation root (fl::filesystem::get_install_path).
// Each subfolder with a manifest.json is a bundle; other entries are passed over. Without a
// framework, or with a missing or unreadable directory, nothing is installed and the result is
// empty. A malformed manifest, a shared object that cannot be loaded or an activator that
// fails make a BundleLoadError, raised once the other bundles have started.
InstallAndStartResult installAndStart(fl::filesystem::path directory,
                                      const ::cppmicroservices::LDAPFilter& filter);

}  // namespace foundation::cppmicroservices
