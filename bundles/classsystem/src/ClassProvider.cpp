#include "ClassProvider.hpp"

#include <memory>
#include <stdexcept>
#include <typeinfo>
#include <utility>

#include <fl/diag.hpp>
#include <ka/ka.hpp>

#include <builtin/objects/OrroObjectRuntimeInfo.hpp>

namespace classbundle {

namespace {

using Norvane::orro::OrroObject;

// What an object array of the bundle holds: a reference on the object, and the variant id of
// its native class.
struct HeldObject {
    boost::intrusive_ptr<OrroObject> object;
    std::size_t variantId = 0;
};

const HeldObject& heldObject(const kaArray_tag* array) {
    const HeldObject* held = array != nullptr ? ka::payloadAs<HeldObject>(array) : nullptr;
    if (held == nullptr) {
        throw std::invalid_argument("the array holds no engine object");
    }
    return *held;
}

}  // namespace

kaClassID ClassProvider::defineClass(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto next = static_cast<kaClassID>(kFirstClassId + static_cast<int>(classIds_.size()));
    return classIds_.try_emplace(name, next).first->second;
}

std::string ClassProvider::getClassName(kaClassID classId) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [name, id] : classIds_) {
        if (id == classId) return name;
    }
    return {};
}

kaClassID ClassProvider::getClassIdByName(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = classIds_.find(name);
    return found != classIds_.end() ? found->second : kaUNKNOWN_CLASS;
}

// The class of an object is the one its native class stands for in the runtime information
// table, found by the object's dynamic type.
ClassProvider::OwnedArray ClassProvider::box(boost::intrusive_ptr<OrroObject> object) const {
    if (!object) {
        throw std::invalid_argument("no engine object to put into an array");
    }
    const OrroObject& native = *object;  // typeid of a plain reference: no call inside typeid
    const std::string nativeClass =
        foundation::core::diag::detail::demangle_typeid_name(typeid(native).name(), false);
    const auto info = Norvane::builtin::types::getOrroObjectRuntimeInfo(nativeClass);
    const kaClassID classId = getClassIdByName(info.kaClassName);
    if (classId == kaUNKNOWN_CLASS) {
        throw std::invalid_argument("the class " + info.kaClassName + " of " + nativeClass +
                                    " is not defined");
    }
    auto held = std::make_shared<HeldObject>(HeldObject{std::move(object), info.variantId});
    return ka::createObject(classId, info.kaClassName, std::move(held));
}

ClassProvider::OwnedArray ClassProvider::toKaArray(OrroObject* object, unsigned options) const {
    if (options != 0) {
        throw std::invalid_argument("the only conversion of an engine object is the plain one (0)");
    }
    return box(boost::intrusive_ptr<OrroObject>(object));
}

ClassProvider::OwnedArray ClassProvider::toKaArray(boost::intrusive_ptr<const OrroObject>&& object,
                                                   const char* /*text*/) const {
    // The array hands the object out for change (fromKaArray), as the engine does.
    return box(boost::const_pointer_cast<OrroObject>(std::move(object)));
}

// Checked or not, an array without an object is refused: reading one is never cheaper here.
OrroObject& ClassProvider::fromKaArray(const kaArray_tag* array, bool /*checked*/) const {
    return *heldObject(array).object;
}

kaClassID ClassProvider::getClassId(const kaArray_tag* array) const {
    return ka::objectClassId(array);
}

std::size_t ClassProvider::getVariantId(const kaArray_tag* array) const {
    return heldObject(array).variantId;
}

// The reference class system has no engine types and no typed objects.
const ts::iTypeExpression* ClassProvider::getOrroObjectType(kaClassID, std::size_t) const {
    return nullptr;
}

bool ClassProvider::getObjectTypeFlag(const kaArray_tag* array) const {
    heldObject(array);
    return false;
}

void ClassProvider::registerPackageFunction(const std::vector<std::string>& packagePath,
                                            const std::string& functionName,
                                            Zfh_KELDOR_fn* function) {
    std::string qualifiedName;
    for (const std::string& package : packagePath) {
        qualifiedName += (qualifiedName.empty() ? "" : ".") + package;
    }
    qualifiedName += "." + functionName;
    const std::lock_guard lock(mutex_);
    packageFunctions_[qualifiedName] = function;
}

void ClassProvider::setZfhFinder(std::string name, ZfhFinder finder) {
    const std::lock_guard lock(mutex_);
    finders_[std::move(name)] = std::move(finder);
}

void ClassProvider::addMethod(zobj::ZobjClass* cls, const std::string& first,
                              const std::string& second, const zobj::MemberAccess& /*access*/, bool,
                              bool, bool) {
    const std::lock_guard lock(mutex_);
    methods_[cls].push_back(first + "." + second);
}

Zfh_KELDOR_fn* ClassProvider::packageFunction(const std::string& qualifiedName) const {
    const std::lock_guard lock(mutex_);
    const auto found = packageFunctions_.find(qualifiedName);
    return found != packageFunctions_.end() ? found->second : nullptr;
}

ClassProvider::ZfhFinder ClassProvider::zfhFinder(const std::string& name) const {
    const std::lock_guard lock(mutex_);
    const auto found = finders_.find(name);
    return found != finders_.end() ? found->second : ZfhFinder();
}

std::vector<std::string> ClassProvider::methods(const zobj::ZobjClass* cls) const {
    const std::lock_guard lock(mutex_);
    const auto found = methods_.find(cls);
    return found != methods_.end() ? found->second : std::vector<std::string>();
}

}  // namespace classbundle
