// The type-independent steps of a lifted call around its loop: taking over the references of
// the arguments, the output dimensions, reusing an input or creating the output, whether the
// loop may use workers, and the finish. The lifted entries (LiftedEntry.hpp) do only the typed
// part themselves.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>

#include <boost/container/small_vector.hpp>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Output dimensions; five need no allocation.
using OutputDims = boost::container::small_vector<std::size_t, 5>;

// The class and complexity of the arrays of a numeric type index k, 0 to 12.
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

// The reference that an array argument carries, now owned by the caller; empty for any other
// alternative.
ka::ArrayPtr claimArray(const Parameter& argument) noexcept;

// Whether an array may be viewed as elements of this class: full, of the class, complex exactly
// when the class is.
bool fitsElementClass(const kaArray_tag* array, ElementClass element) noexcept;

// One input: its dimensions, at least two.
OutputDims outputDims(std::span<const std::size_t> dims);
// Two inputs: as many as the longer, at least two; in each the size that is not 1, or 1. Throws
// std::invalid_argument where the two sizes are different and neither is 1.
OutputDims outputDims(std::span<const std::size_t> dims0, std::span<const std::size_t> dims1);

std::size_t elementCount(std::span<const std::size_t> dims) noexcept;

// The first candidate that may be overwritten as the output (nobody else holds it, its data is
// not shared, its dimensions are the output's) moves out of its holder; else a new array with
// uninitialised elements.
ka::ArrayPtr reuseOrCreate(std::span<const std::size_t> dims, ElementClass element,
                           std::initializer_list<ka::ArrayPtr*> candidates);

// Whether the kernel of the variant around `descriptor` may run on worker threads: it has no
// side effects, never calls back into the interpreter and never warns.
bool allowsParallel(const OrroFunctionDescriptor* descriptor) noexcept;

// The result of a loop: the output, or null if a kernel failed and reported an exception.
// `failed` sets `pending`; the ParallelEnvironment sets it anew when it hands over.
Parameter finish(ka::ArrayPtr output, bool failed, const ParallelEnvironment& environment,
                 bool& pending);

}  // namespace Norvane::builtin::builtinreg::detail
