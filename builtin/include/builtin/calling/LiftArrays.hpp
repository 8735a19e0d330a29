// The steps of a lifted call around its loop that do not depend on the element types: taking
// over the references of the arguments, the classes of the elements, reusing an input as the
// output or creating it, whether the loop may use workers, and the finish. They run once per
// call on the calling thread, which is also where all reference counting of the call happens.
// The typed entries (LiftedEntry.hpp) do only the typed part themselves.
#pragma once

#include <cstddef>

#include <boost/variant/get.hpp>

#include <builtin/calling/LiftPlan.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>
#include <builtin/config.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin::builtinreg::detail {

// The class and complexity of the arrays of a numeric Parameter alternative.
struct ElementClass {
    kaClassID id;
    kaComplexity complexity;
};

inline constexpr std::size_t liftedTypeCount = 13;
inline constexpr ElementClass elementClasses[liftedTypeCount] = {
    {kaUINT64_CLASS, kaREAL},   {kaDOUBLE_CLASS, kaREAL}, {kaSINGLE_CLASS, kaREAL},
    {kaLOGICAL_CLASS, kaREAL},  {kaINT8_CLASS, kaREAL},   {kaINT16_CLASS, kaREAL},
    {kaINT32_CLASS, kaREAL},    {kaINT64_CLASS, kaREAL},  {kaUINT8_CLASS, kaREAL},
    {kaUINT16_CLASS, kaREAL},   {kaUINT32_CLASS, kaREAL}, {kaDOUBLE_CLASS, kaCOMPLEX},
    {kaSINGLE_CLASS, kaCOMPLEX}};

// The elements that are lifted: the numeric alternatives of Parameter, and characters, whose
// arrays are char arrays and whose unboxed values travel as unsigned short (alternative 9).
template <class T>
struct Lifted {
    static_assert(parameterIndexOf<T> < liftedTypeCount, "only numbers are lifted");
    using Unboxed = T;
    static constexpr ElementClass element = elementClasses[parameterIndexOf<T>];
};
template <>
struct Lifted<char16_t> {
    using Unboxed = unsigned short;
    static constexpr ElementClass element = {kaCHAR_CLASS, kaREAL};
};

template <class T>
constexpr ElementClass elementClassOf() {
    return Lifted<T>::element;
}

// Whether an argument holds an unboxed value of T, and that value.
template <class T>
bool holdsUnboxed(const Parameter& argument) noexcept {
    return argument.which() == static_cast<int>(parameterIndexOf<typename Lifted<T>::Unboxed>);
}
template <class T>
T unboxed(const Parameter& argument) {
    return static_cast<T>(boost::get<typename Lifted<T>::Unboxed>(argument));
}

// The reference that an array argument carries, now owned by the caller; empty for any other
// alternative.
BUILTIN_API ka::ArrayPtr claimArray(const Parameter& argument) noexcept;

// Whether an array may be viewed as elements of this class: full, of the class, complex exactly
// when the class is.
BUILTIN_API bool fitsElementClass(const kaArray_tag* array, ElementClass element) noexcept;

// Whether the array may be overwritten as the output of the plan: nobody else holds it, its data
// is not shared, and its dimensions are the output's.
BUILTIN_API bool canBecomeOutput(const kaArray_tag* array, const LiftPlan& plan) noexcept;

// A new output of the plan's dimensions, elements uninitialised.
BUILTIN_API ka::ArrayPtr createOutput(const LiftPlan& plan, ElementClass element);

// Whether the kernel of the variant around `descriptor` may run on worker threads: it has no
// side effects, never calls back into the interpreter and never warns. A kernel that may fail
// may run in parallel.
BUILTIN_API bool allowsParallel(const OrroFunctionDescriptor* descriptor) noexcept;

// The result of a loop: the output as alternative 13, or null in it if a kernel failed and
// reported an exception. `failed` sets `pending`; the ParallelEnvironment sets it anew when it
// hands over.
BUILTIN_API Parameter finishLift(ka::ArrayPtr output, bool failed,
                                 const ParallelEnvironment& environment, bool& pending);

}  // namespace Norvane::builtin::builtinreg::detail
