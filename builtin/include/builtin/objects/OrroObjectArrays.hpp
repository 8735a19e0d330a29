// Objects as arrays: in the interpreter an engine object lives in an array of its
// language-level class, in the engine and native code it is an OrroObject. These functions
// cross between the two, and let a module fill in the methods of a class, all through the class
// provider (IZOBJRegWrapper); the library keeps no table of its own.
//
// Every function but getGuid reaches the provider through its process-wide holder, so the
// first of them in a process may start the builtin service bundles. What the provider does with
// the arguments is its own affair; its exceptions pass through unchanged.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <boost/intrusive_ptr.hpp>

#include <engine/opaque.hpp>
#include <ka/imports.hpp>

#include <builtin/config.hpp>

namespace Norvane::builtin::orroobject {

using OwnedKaArray = std::unique_ptr<kaArray_tag, matrix::detail::kaDestroy_deleter>;
using ZfhFinder = std::function<Zfh_KELDOR_fn*(const std::string&, std::string)>;

// The array that holds the object, made by the provider; `text` is passed on unread. Null
// without a provider, and `object` is then left as it was.
BUILTIN_API OwnedKaArray toKaArray(boost::intrusive_ptr<const Norvane::orro::OrroObject>&& object,
                                   const char* text);

// The object an array holds, as the provider reads it (checked). Throws std::runtime_error
// "Cannot get OrroObject runtime provider service" without a provider.
BUILTIN_API Norvane::orro::OrroObject& fromKaArray(const kaArray_tag* array);

// Adds a method to a class of the class system. Needs the provider: throws std::runtime_error
// without one.
BUILTIN_API void addMethod(zobj::ZobjClass* cls, const std::string& first,
                           const std::string& second, const zobj::MemberAccess& access, bool flag1,
                           bool flag2, bool flag3);

// Hands the provider a finder of callable function objects. Needs the provider: throws
// std::runtime_error without one.
BUILTIN_API void setZfhFinder(std::string name, ZfhFinder finder);

// "{first}-{second}#", with no other processing; needs no provider.
BUILTIN_API std::string getGuid(const std::string& first, const std::string& second);

}  // namespace Norvane::builtin::orroobject
