// The process's framework, and the start of a folder of bundles into it.
#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/cppmicroservices/manifest.hpp>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/FrameworkFactory.h>
#include <fl/filesystem.hpp>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <system_error>

namespace foundation::cppmicroservices {

namespace {

using ::cppmicroservices::Bundle;
using ::cppmicroservices::Framework;

struct ProcessFramework {
    std::mutex mutex;
    std::shared_ptr<Framework> framework;
};

ProcessFramework& processFramework() {
    static ProcessFramework instance;
    return instance;
}

std::string joinFailures(const std::vector<std::string>& failures) {
    std::string text = "Some bundles could not be installed or started:";
    for (const auto& failure : failures) {
        text += "\n  " + failure;
    }
    return text;
}

// The bundle folders of the directory, sorted by name; none if it cannot be listed.
std::vector<std::filesystem::path> bundleFolders(const std::filesystem::path& directory) {
    std::vector<std::filesystem::path> folders;
    std::error_code error;
    std::filesystem::directory_iterator entries(directory, error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        std::error_code ignored;
        if (entries->is_directory(ignored) &&
            std::filesystem::exists(entries->path() / "manifest.json", ignored)) {
            folders.push_back(entries->path());
        }
    }
    std::sort(folders.begin(), folders.end());
    return folders;
}

std::filesystem::path resolve(const fl::filesystem::path& directory) {
    if (directory.is_absolute() || directory.empty()) {
        return fl::filesystem::to_utf8(directory);
    }
    fl::filesystem::path root(fl::filesystem::get_install_path(), true);
    root /= directory.text();
    return fl::filesystem::to_utf8(root);
}

}  // namespace

std::shared_ptr<Framework> getFramework() {
    auto& process = processFramework();
    std::lock_guard lock(process.mutex);
    return process.framework;
}

std::shared_ptr<Framework> setFramework(std::shared_ptr<Framework> framework) {
    auto& process = processFramework();
    std::lock_guard lock(process.mutex);
    return std::exchange(process.framework, std::move(framework));
}

std::shared_ptr<Framework> createFramework() {
    auto framework =
        std::make_shared<Framework>(::cppmicroservices::FrameworkFactory().NewFramework());
    framework->Start();
    setFramework(framework);
    return framework;
}

BundleLoadError::BundleLoadError(std::vector<std::string> failures, InstallAndStartResult result)
    : std::runtime_error(joinFailures(failures)),
      failures_(std::move(failures)),
      result_(std::move(result)) {}

InstallAndStartResult installAndStart(fl::filesystem::path directory,
                                      const ::cppmicroservices::LDAPFilter& filter) {
    InstallAndStartResult result;
    auto framework = getFramework();
    if (!framework) {
        return result;
    }
    auto context = framework->GetBundleContext();
    std::vector<std::string> failures;
    for (const auto& folder : bundleFolders(resolve(directory))) {
        try {
            for (auto& bundle : context.InstallBundles(
                     folder.string(), readManifest((folder / "manifest.json").string()))) {
                result.first.push_back(std::move(bundle));
            }
        } catch (const std::exception& error) {
            failures.push_back("Bundle " + folder.string() + ": " + error.what());
        }
    }
    for (auto& bundle : result.first) {
        if (!filter.Match(bundle)) {
            continue;
        }
        try {
            bundle.Start();
            result.second.push_back(bundle);
        } catch (const std::exception& error) {
            failures.push_back(error.what());  // names the bundle's folder already
        }
    }
    if (!failures.empty()) {
        throw BundleLoadError(std::move(failures), std::move(result));
    }
    return result;
}

}  // namespace foundation::cppmicroservices
