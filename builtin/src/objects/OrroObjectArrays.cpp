// Objects as arrays: thin forwarding to the class provider, with the answer to its absence
// that each operation has.
#include <builtin/objects/OrroObjectArrays.hpp>

#include <stdexcept>
#include <utility>

#include <builtin/services/BuiltinServices.hpp>

namespace Norvane::builtin::orroobject {

namespace {

// addMethod and setZfhFinder hold a reference on the provider for their call, so that it
// cannot go while they run.
std::shared_ptr<IZOBJRegWrapper> requiredProvider(const char* attempted) {
    std::shared_ptr<IZOBJRegWrapper> provider = getHeldService<IZOBJRegWrapper>();
    if (!provider) {
        throw std::runtime_error(std::string("Cannot ") + attempted +
                                 " without the OrroObject runtime provider service");
    }
    return provider;
}

}  // namespace

OwnedKaArray toKaArray(boost::intrusive_ptr<const Norvane::orro::OrroObject>&& object,
                       const char* text) {
    const auto& provider = getHeldService<IZOBJRegWrapper>();
    if (!provider) {
        return nullptr;
    }
    return provider->toKaArray(std::move(object), text);
}

Norvane::orro::OrroObject& fromKaArray(const kaArray_tag* array) {
    const auto& provider = getHeldService<IZOBJRegWrapper>();
    if (!provider) {
        throw std::runtime_error("Cannot get OrroObject runtime provider service");
    }
    return provider->fromKaArray(array, true);
}

void addMethod(zobj::ZobjClass* cls, const std::string& first, const std::string& second,
               const zobj::MemberAccess& access, bool flag1, bool flag2, bool flag3) {
    requiredProvider("add a method")->addMethod(cls, first, second, access, flag1, flag2, flag3);
}

void setZfhFinder(std::string name, ZfhFinder finder) {
    requiredProvider("set a Zfh finder")->setZfhFinder(std::move(name), std::move(finder));
}

std::string getGuid(const std::string& first, const std::string& second) {
    return first + "-" + second + "#";
}

}  // namespace Norvane::builtin::orroobject
