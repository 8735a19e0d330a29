// The identity of an object type: the class id that the class system gives a language-level
// class, and the variant id that tells apart the native classes behind it. Module code that
// exposes a native class (its OrroObjectId and type traits) calls these to hand out variant
// ids, to translate class names and identities through the class provider, and to hold its
// compiled-in identity against what its manifest says.
//
// The assert... functions are fatal checks: a failed one ends the process. Any thread may call
// any of these; each store has its own mutex, held for one find-and-insert, and no service or
// callback is called under it.
#pragma once

#include <cstddef>
#include <string>
#include <typeinfo>
#include <utility>

#include <engine/opaque.hpp>
#include <ka/class_id.hpp>

#include <builtin/config.hpp>

namespace Norvane::builtin::types::detail {

// The next free variant id of the class: 0, 1, 2 and so on, each class by itself, for the
// life of the process.
BUILTIN_API std::size_t getNextCppClassVariant(kaClassID classId);

// Always kaUNKNOWN_CLASS: class ids are the class system's, obtained by name at run time
// (builtinreg::getClassIdByName), never fixed at compile time.
BUILTIN_API kaClassID getOrroObjectClassID(const char* name);

// Stops the process unless classId is kaUNKNOWN_CLASS (and fl_diag_terminate() agrees): a
// compiled-in class id would differ between interpreter instances. `name` is not used.
BUILTIN_API void assertOrroObjectHasExpectedClassID(kaClassID classId, const std::string& name);

// Does nothing; registration goes through the helpers of
// <builtin/objects/OrroObjectRegistration.hpp>.
BUILTIN_API void registerOrroObject(std::pair<kaClassID, std::size_t> objectType);

}  // namespace Norvane::builtin::types::detail

namespace Norvane::builtin::builtinreg::detail {

// The name function of an OrroObjectId.
using NameFunction = const char* (*)();

// Before an OrroObjectId takes a variant id: stops the process (if fl_diag_terminate() agrees)
// unless `current` equals the default or the new value, which are treated alike.
BUILTIN_API void assertIsDefaultVariantIdOrSame(std::size_t defaultOrNew, std::size_t current,
                                                std::size_t newOrDefault);

// The same for a name function.
BUILTIN_API void assertIsDefaultNameFuncPtrOrSame(NameFunction defaultOrNew, NameFunction current,
                                                  NameFunction newOrDefault);

// Holds the variant id that a module's code carries for `type` against the manifest's, which
// manifestId() gives. Each pair of type and id is checked once per process; manifestId runs
// with no lock held. A mismatch always stops the process.
BUILTIN_API void assertOrroVariantIdMatches(std::size_t id, std::size_t (*const manifestId)(),
                                            const std::type_info& type);

}  // namespace Norvane::builtin::builtinreg::detail

namespace Norvane::builtin::builtinreg {

// The class id of a language-level class, as the class provider knows it; kaUNKNOWN_CLASS for
// a name it does not know or without a provider. May start the builtin service bundles.
BUILTIN_API kaClassID getClassIdByName(const std::string& name);

// The engine's type of an object type, as the class provider gives it; null without a provider.
// May start the builtin service bundles.
BUILTIN_API const ts::iTypeExpression* getOrroObjectType(kaClassID classId, std::size_t variantId);

}  // namespace Norvane::builtin::builtinreg
