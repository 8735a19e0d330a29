// The reference class provider: a small class system over the class-system instances of the
// array library. An engine object lives in a 1-by-1 opaque array of its class, which holds a
// reference on it.
#pragma once

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <classbundle/ClassSystem.hpp>

namespace classbundle {

class ClassProvider final : public Norvane::builtin::IZOBJRegWrapper, public ClassSystem {
public:
    // Defines a class by name, or gives the id it was defined with before.
    kaClassID defineClass(const std::string& name);

    std::string getClassName(kaClassID classId) const override;
    void registerPackageFunction(const std::vector<std::string>& packagePath,
                                 const std::string& functionName, Zfh_KELDOR_fn* function) override;
    kaClassID getClassIdByName(const std::string& name) const override;
    Norvane::orro::OrroObject& fromKaArray(const kaArray_tag* array, bool checked) const override;
    OwnedArray toKaArray(Norvane::orro::OrroObject* object, unsigned options) const override;
    OwnedArray toKaArray(boost::intrusive_ptr<const Norvane::orro::OrroObject>&& object,
                         const char* text) const override;
    kaClassID getClassId(const kaArray_tag* array) const override;
    std::size_t getVariantId(const kaArray_tag* array) const override;
    const ts::iTypeExpression* getOrroObjectType(kaClassID classId,
                                                 std::size_t variantId) const override;
    bool getObjectTypeFlag(const kaArray_tag* array) const override;
    void setZfhFinder(std::string name, ZfhFinder finder) override;
    void addMethod(zobj::ZobjClass* cls, const std::string& first, const std::string& second,
                   const zobj::MemberAccess& access, bool flag1, bool flag2, bool flag3) override;

    Zfh_KELDOR_fn* packageFunction(const std::string& qualifiedName) const override;
    ZfhFinder zfhFinder(const std::string& name) const override;
    std::vector<std::string> methods(const zobj::ZobjClass* cls) const override;

private:
    OwnedArray box(boost::intrusive_ptr<Norvane::orro::OrroObject> object) const;

    mutable std::mutex mutex_;
    std::unordered_map<std::string, kaClassID> classIds_;
    std::unordered_map<std::string, Zfh_KELDOR_fn*> packageFunctions_;
    std::unordered_map<std::string, ZfhFinder> finders_;
    std::unordered_map<const zobj::ZobjClass*, std::vector<std::string>> methods_;
};

}  // namespace classbundle
