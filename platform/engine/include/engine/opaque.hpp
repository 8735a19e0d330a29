// Types of the execution engine, the language and the class system that the builtin library
// only passes on by pointer or reference. They are declared, never defined, here: code that
// needs their members belongs to the closed libraries that own them. The one exception is
// OrroObject, whose reference count native classes and class providers need: it is defined
// in <engine/OrroObject.hpp>.
#pragma once

namespace Norvane::orro {
class OrroObject;
class OrroObjectDefaultIndexingMethods;
}  // namespace Norvane::orro

namespace Norvane::String {
class String;
}  // namespace Norvane::String

namespace ts {
class iTypeExpression;
}  // namespace ts

namespace zobj {
class ZobjClass;
class MemberAccess;
}  // namespace zobj

class Zfh_KELDOR_fn;
