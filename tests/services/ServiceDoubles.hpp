// In-process doubles of the services the library looks up, for tests that register them with
// the process framework themselves; most answer with neutral values.
#pragma once

#include <builtin/services/services.hpp>

#include <cppmicroservices/BundleContext.h>
#include <foundation/cppmicroservices/framework.hpp>
#include <ka/ka.hpp>

#include <memory>
#include <string>

namespace servicedoubles {

using namespace Norvane::builtin;

// Answers the string class id it was given and counts the questions.
class StubStringSupport final : public StringSupport {
public:
    explicit StubStringSupport(std::int32_t classId = 77)
        : classId_(static_cast<kaClassID>(classId)) {}
    mutable int classIdCalls = 0;

    kaClassID getStringClassId() const override {
        ++classIdCalls;
        return classId_;
    }
    bool isString(const kaArray_tag*) const override { return false; }
    std::size_t getNumberOfStrings(const kaArray_tag*) const override { return 0; }
    std::string getStringUtf8(const kaArray_tag*, std::size_t) const override { return {}; }
    const std::u16string& getString(const kaArray_tag*, std::size_t) const override {
        return text_;
    }
    OwnedArray createEmptyStrings(std::span<const std::size_t>) const override { return nullptr; }
    OwnedArray createString(std::span<const std::size_t>,
                            std::vector<std::u16string>) const override {
        return nullptr;
    }
    std::optional<std::u16string_view> getStringFlag(const kaArray_tag*) const override {
        return std::nullopt;
    }
    std::vector<std::u16string> getStrings(const kaArray_tag*) const override { return {}; }
    OwnedArray stringToKaArray(Norvane::String::String*, unsigned) const override {
        return nullptr;
    }

private:
    kaClassID classId_;
    std::u16string text_;
};

// What the class provider double reads from an object array; the payload's address stands for
// the engine object.
struct ObjectPayload {
    std::size_t variantId;
    bool typeFlag;
};

// Reads object arrays made with an ObjectPayload; boxes engine objects as its class.
class StubClassProvider final : public IZOBJRegWrapper {
public:
    explicit StubClassProvider(std::int32_t boxedClass = 40)
        : boxedClass_(static_cast<kaClassID>(boxedClass)) {}

    static Norvane::orro::OrroObject* objectOf(const kaArray_tag* array) {
        return static_cast<Norvane::orro::OrroObject*>(ka::objectPayload(array).get());
    }
    kaClassID getClassId(const kaArray_tag* array) const override {
        return ka::objectClassId(array);
    }
    std::size_t getVariantId(const kaArray_tag* array) const override {
        return ka::payloadAs<ObjectPayload>(array)->variantId;
    }
    bool getObjectTypeFlag(const kaArray_tag* array) const override {
        return ka::payloadAs<ObjectPayload>(array)->typeFlag;
    }
    Norvane::orro::OrroObject& fromKaArray(const kaArray_tag* array, bool) const override {
        return *objectOf(array);
    }
    OwnedArray toKaArray(Norvane::orro::OrroObject* object, unsigned) const override {
        return ka::createObject(ka::ObjectDescription{boxedClass_,
                                                      "Known",
                                                      kaOPAQUE_CLASS,
                                                      {1, 1},
                                                      std::shared_ptr<void>(object, [](void*) {}),
                                                      nullptr});
    }
    OwnedArray toKaArray(boost::intrusive_ptr<const Norvane::orro::OrroObject>&&,
                         const char*) const override {
        return nullptr;
    }
    std::string getClassName(kaClassID) const override { return {}; }
    void registerPackageFunction(const std::vector<std::string>&, const std::string&,
                                 Zfh_KELDOR_fn*) override {}
    kaClassID getClassIdByName(const std::string&) const override { return kaUNKNOWN_CLASS; }
    const ts::iTypeExpression* getOrroObjectType(kaClassID, std::size_t) const override {
        return nullptr;
    }
    void setZfhFinder(std::string, ZfhFinder) override {}
    void addMethod(zobj::ZobjClass*, const std::string&, const std::string&,
                   const zobj::MemberAccess&, bool, bool, bool) override {}

private:
    kaClassID boxedClass_;
};

class StubObjectRegister final : public IOrroObjectRegister {
public:
    bool isOrroObjectRegistered(kaClassID, std::size_t) const override { return false; }
    void registerOrroObject(kaClassID, std::size_t, bool) override {}
    void registerOrroObject(kaClassID, std::size_t) override {}
    void registerOrroObjectDefaultIndexingMethods(
        kaClassID, std::size_t, bool,
        const Norvane::orro::OrroObjectDefaultIndexingMethods&) override {}
    void registerParenReferenceVariant(kaClassID, std::size_t, const OrroFunctionDescriptor&,
                                       const OrroFunctionDescriptor&, std::string,
                                       NameRange) override {}
    void registerParenAssignVariant(kaClassID, std::size_t, const OrroFunctionDescriptor&,
                                    const OrroFunctionDescriptor&, std::string, NameRange,
                                    bool) override {}
};

// A module manager that answers with the name it is published under.
struct NamedModule final : builtinreg::IOrroObjectModuleMgr {
    explicit NamedModule(std::string published) : name(std::move(published)) {}
    std::string getModuleName() const override { return name; }
    void registerOrroObjects() override {}
    std::string name;
};

// Registers `service` under I with the process framework and returns it.
template <class I, class Impl>
std::shared_ptr<Impl> registerDouble(std::shared_ptr<Impl> service,
                                     const cppmicroservices::ServiceProperties& properties = {}) {
    foundation::cppmicroservices::getFramework()->GetBundleContext().RegisterService<I>(service,
                                                                                        properties);
    return service;
}

inline void registerModule(const std::string& name) {
    registerDouble<builtinreg::IOrroObjectModuleMgr>(std::make_shared<NamedModule>(name),
                                                     {{"cppMangledTypeName", name}});
}

}  // namespace servicedoubles
