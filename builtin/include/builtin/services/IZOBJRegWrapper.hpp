// The class provider: the bridge between this library and the class system. It turns class
// names into class ids, moves engine objects in and out of arrays and takes package functions
// and methods. A process may run without it; each caller says what its absence means.
// Reach it through getHeldService<IZOBJRegWrapper>() (<builtin/services/BuiltinServices.hpp>).
// Queries are const; what changes the class system is not.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <boost/intrusive_ptr.hpp>

#include <engine/opaque.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin {

class IZOBJRegWrapper {
public:
    using OwnedArray = std::unique_ptr<kaArray_tag, matrix::detail::kaDestroy_deleter>;
    // Gives a callable function object for two strings; the provider's contract says which.
    using ZfhFinder = std::function<Zfh_KELDOR_fn*(const std::string&, std::string)>;

    virtual ~IZOBJRegWrapper() = default;

    // The name of a class of the class system, empty for an unknown id. Not called by this
    // library.
    virtual std::string getClassName(kaClassID classId) const = 0;

    // Announces a function under its package path (outermost package first).
    virtual void registerPackageFunction(const std::vector<std::string>& packagePath,
                                         const std::string& functionName,
                                         Zfh_KELDOR_fn* function) = 0;

    // The class id of a class name; kaUNKNOWN_CLASS for an unknown name.
    virtual kaClassID getClassIdByName(const std::string& name) const = 0;

    // The engine object held by an array of a class-system class.
    virtual Norvane::orro::OrroObject& fromKaArray(const kaArray_tag* array,
                                                   bool checked) const = 0;

    // An array holding the object. `options` is 0 for the plain conversion.
    virtual OwnedArray toKaArray(Norvane::orro::OrroObject* object, unsigned options) const = 0;

    // An array holding the shared object; `text` is passed on from the caller unread.
    virtual OwnedArray toKaArray(boost::intrusive_ptr<const Norvane::orro::OrroObject>&& object,
                                 const char* text) const = 0;

    // The true class id of any array.
    virtual kaClassID getClassId(const kaArray_tag* array) const = 0;

    // The variant id of the native class behind an object array.
    virtual std::size_t getVariantId(const kaArray_tag* array) const = 0;

    // The engine's type of an object type, null if there is none.
    virtual const ts::iTypeExpression* getOrroObjectType(kaClassID classId,
                                                         std::size_t variantId) const = 0;

    // The flag of an object array's type.
    virtual bool getObjectTypeFlag(const kaArray_tag* array) const = 0;

    // Installs the finder of callable function objects under a name.
    virtual void setZfhFinder(std::string name, ZfhFinder finder) = 0;

    // Adds a method to a class of the class system.
    virtual void addMethod(zobj::ZobjClass* cls, const std::string& first,
                           const std::string& second, const zobj::MemberAccess& access, bool flag1,
                           bool flag2, bool flag3) = 0;
};

}  // namespace Norvane::builtin
