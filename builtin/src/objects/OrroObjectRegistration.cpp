// The registration core and the five helpers over it. Nothing is kept here: the class id goes
// to the known objects, everything else to the engine's register. No lock of this library is
// held while a service runs.
#include <builtin/objects/OrroObjectRegistration.hpp>

#include <cstdint>
#include <memory>

#include <fl/diag.hpp>
#include <foundation/log/diagnostic_logger.hpp>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg {

namespace {

constexpr const char* kChannel = "builtinservice::registerOrroObject";
constexpr std::uint32_t kMissingServiceSeverity = 256;
constexpr const char* kIndexingSourcePath = "builtin2/interface/builtin/OrroObjectIndexing";

// Where a registration goes; empty (no register) when it is to be skipped.
struct RegistrationTarget {
    kaClassID classId = kaUNKNOWN_CLASS;
    std::shared_ptr<IOrroObjectRegister> objectRegister;
};

void logMissingServices(const char* action, bool providerMissing, bool registerMissing) {
    static const foundation::log::diagnostic_logger logger(kChannel);
    FOUNDATION_LOG(logger, kMissingServiceSeverity)
        << "Unable to " << action
        << ", Details:" << (providerMissing ? " zobj Reg Service not available." : "")
        << (registerMissing ? " orroRegService not available." : "");
}

void logUnknownClass(const char* action, const std::string& className) {
    static const foundation::log::diagnostic_logger logger(kChannel);
    FOUNDATION_LOG(logger, kMissingServiceSeverity)
        << "Unable to " << action << ", Details: unknown class '" << className << "'";
}

// 1. Start the bundles and get both services (each looked up once per process).
// 2. Either missing: log which, skip.
// 3. The provider's class id of the name; unknown: log, skip.
// 4. Mark the class id as a known engine object, whatever the register does next.
RegistrationTarget getRegistrationTarget(const std::string& className, const char* action) {
    ensureBuiltinServicesStarted();
    const auto& objectRegister = getHeldService<IOrroObjectRegister>();
    const auto& provider = getHeldService<IZOBJRegWrapper>();
    if (!provider || !objectRegister) {
        logMissingServices(action, !provider, !objectRegister);
        return {};
    }
    const kaClassID classId = provider->getClassIdByName(className);
    if (classId == kaUNKNOWN_CLASS) {
        logUnknownClass(action, className);
        return {};
    }
    addAsKnownOrroObject(classId);
    return {classId, objectRegister};
}

template <class Operation>
void registerWith(const std::string& className, const char* action, Operation&& operation) {
    const RegistrationTarget target = getRegistrationTarget(className, action);
    if (target.objectRegister) {
        operation(*target.objectRegister, target.classId);
    }
}

}  // namespace

void registerOrroObjectHelper(const std::string& className, std::size_t variantId) {
    registerWith(className, "register OrroObjects",
                 [&](IOrroObjectRegister& objects, kaClassID classId) {
                     objects.registerOrroObject(classId, variantId);
                 });
}

void registerOrroObjectHelper(const std::string& className, std::size_t variantId, bool flag) {
    registerWith(className, "register OrroObjects",
                 [&](IOrroObjectRegister& objects, kaClassID classId) {
                     objects.registerOrroObject(classId, variantId, flag);
                 });
}

void registerOrroObjectDefaultIndexingMethodsHelper(
    const std::string& className, std::size_t variantId, bool flag,
    const Norvane::orro::OrroObjectDefaultIndexingMethods& methods) {
    registerWith(className, "register OrroObject default indexing methods",
                 [&](IOrroObjectRegister& objects, kaClassID classId) {
                     objects.registerOrroObjectDefaultIndexingMethods(classId, variantId, flag,
                                                                      methods);
                 });
}

void registerParenReferenceVariant(const std::string& className, std::size_t variantId,
                                   const OrroFunctionDescriptor& first,
                                   const OrroFunctionDescriptor& second, std::string name,
                                   boost::iterator_range<std::string*> names) {
    registerWith(className, "register OrroObject optimized ParenReference indexing method",
                 [&](IOrroObjectRegister& objects, kaClassID classId) {
                     objects.registerParenReferenceVariant(classId, variantId, first, second,
                                                           std::move(name), names);
                 });
}

void registerParenAssignVariant(const std::string& className, std::size_t variantId,
                                const OrroFunctionDescriptor& first,
                                const OrroFunctionDescriptor& second, std::string name,
                                boost::iterator_range<std::string*> names, bool flag) {
    registerWith(className, "register OrroObject optimized ParenAssign indexing method",
                 [&](IOrroObjectRegister& objects, kaClassID classId) {
                     objects.registerParenAssignVariant(classId, variantId, first, second,
                                                        std::move(name), names, flag);
                 });
}

namespace detail {

void assertInvalidCallingConvention(const std::string& functionName,
                                    const BuiltinVariant& variant) {
    const auto convention = static_cast<std::int32_t>(variant.functionDescriptor.callingConvention);
    foundation::core::diag::terminate("Orro Indexing Function: " + functionName +
                                          " variant was created without an valid jit calling "
                                          "convention: " +
                                          std::to_string(convention),
                                      kIndexingSourcePath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace detail
}  // namespace Norvane::builtin::builtinreg
