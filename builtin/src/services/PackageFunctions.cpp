#include <builtin/services/PackageFunctions.hpp>

#include <cstdint>

#include <foundation/log/diagnostic_logger.hpp>

#include <builtin/services/BuiltinServices.hpp>

namespace Norvane::builtin::builtinreg {

namespace {

constexpr std::uint32_t kMissingServiceSeverity = 256;

// "a.b.f" for the path a, b and the function f; ".f" for an empty path.
void writeQualifiedName(std::ostream& os, const std::vector<std::string>& packagePath,
                        const std::string& functionName) {
    const char* separator = "";
    for (const std::string& package : packagePath) {
        os << separator << package;
        separator = ".";
    }
    os << '.' << functionName;
}

}  // namespace

void registerPackageFunctionHelper(const std::vector<std::string>& packagePath,
                                   const std::string& functionName, Zfh_KELDOR_fn* function) {
    if (const auto& provider = getHeldService<IZOBJRegWrapper>()) {
        provider->registerPackageFunction(packagePath, functionName, function);
        return;
    }
    static const foundation::log::diagnostic_logger logger("builtinservice::registerpkgfcn");
    logger.write(kMissingServiceSeverity, [&](std::ostream& os) {
        os << "Unable to register ";
        writeQualifiedName(os, packagePath, functionName);
        os << " because IZOBJRegWrapper cppmicroservice could not be found.";
    });
}

}  // namespace Norvane::builtin::builtinreg
