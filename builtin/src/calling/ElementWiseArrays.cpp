// The steps of a lifted call that do not depend on the element type. They run once per call on
// the calling thread, which is also where all reference counting of the call happens.
#include "ElementWiseArrays.hpp"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <stdexcept>
#include <utility>

#include <boost/variant/get.hpp>

#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

// The descriptor is a member of the variant whose typed entry is running. The variant is not a
// standard-layout type (its comparison bases see to that), but it has no virtual base, which is
// all that GCC needs for offsetof.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
constexpr std::size_t descriptorOffset = offsetof(BuiltinVariant, functionDescriptor);
#pragma GCC diagnostic pop

const BuiltinVariant& enclosingVariant(const OrroFunctionDescriptor* descriptor) noexcept {
    return *reinterpret_cast<const BuiltinVariant*>(reinterpret_cast<const char*>(descriptor) -
                                                    descriptorOffset);
}

std::string shapeText(std::span<const std::size_t> dims) {
    std::ostringstream text;
    for (std::size_t i = 0; i < dims.size(); ++i) {
        text << (i == 0 ? "" : "x") << dims[i];
    }
    return text.str();
}

[[noreturn]] void rejectShapes(std::span<const std::size_t> dims0,
                               std::span<const std::size_t> dims1) {
    throw std::invalid_argument("element-wise inputs of sizes " + shapeText(dims0) + " and " +
                                shapeText(dims1) + " do not broadcast");
}

std::size_t sizeAt(std::span<const std::size_t> dims, std::size_t i) noexcept {
    return i < dims.size() ? dims[i] : 1;
}

bool canOverwrite(const kaArray_tag* array, std::span<const std::size_t> dims) {
    return matrix::isExclusive(array) && !matrix::isDataShared(array) &&
           std::ranges::equal(matrix::dimensions(array), dims);
}

}  // namespace

ka::ArrayPtr claimArray(const Parameter& argument) noexcept {
    kaArray_tag* const* const array = boost::get<kaArray_tag*>(&argument);
    return ka::ArrayPtr(array != nullptr ? *array : nullptr);
}

bool fitsElementClass(const kaArray_tag* array, ElementClass element) noexcept {
    return !matrix::isSparse(array) && matrix::classId(array) == element.id &&
           matrix::isComplex(array) == (element.complexity == kaCOMPLEX);
}

OutputDims outputDims(std::span<const std::size_t> dims) {
    OutputDims out(dims.begin(), dims.end());
    if (out.size() < 2) {
        out.resize(2, 1);
    }
    return out;
}

// Where one size is 1 the other one stands, so 0 against 1 (or against a dimension that the
// other input lacks) gives 0.
OutputDims outputDims(std::span<const std::size_t> dims0, std::span<const std::size_t> dims1) {
    const std::size_t count = std::max({dims0.size(), dims1.size(), std::size_t{2}});
    OutputDims out(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t size0 = sizeAt(dims0, i);
        const std::size_t size1 = sizeAt(dims1, i);
        if (size0 != size1 && size0 != 1 && size1 != 1) {
            rejectShapes(dims0, dims1);
        }
        out[i] = size0 == 1 ? size1 : size0;
    }
    return out;
}

std::size_t elementCount(std::span<const std::size_t> dims) noexcept {
    std::size_t count = 1;
    for (const std::size_t size : dims) {
        count *= size;
    }
    return count;
}

ka::ArrayPtr reuseOrCreate(std::span<const std::size_t> dims, ElementClass element,
                           std::initializer_list<ka::ArrayPtr*> candidates) {
    for (ka::ArrayPtr* candidate : candidates) {
        if (*candidate && canOverwrite(candidate->get(), dims)) {
            return std::move(*candidate);
        }
    }
    return matrix::detail::do_create_uninitnumeric(dims, element.id, element.complexity);
}

bool allowsParallel(const OrroFunctionDescriptor* descriptor) noexcept {
    const BuiltinVariant& variant = enclosingVariant(descriptor);
    return variant.mayHaveSideEffects == BuiltinVariant::HasSideEffects::NO &&
           variant.mayCallIntoKeldor == BuiltinVariant::CallsIntoKeldor::NO &&
           variant.mayRaiseWarnings == BuiltinVariant::HasWarnings::NO;
}

Parameter finish(ka::ArrayPtr output, bool failed, const ParallelEnvironment& environment,
                 bool& pending) {
    if (failed) {
        pending = true;
        if (environment.containsException()) {
            output.reset();
        }
    }
    return Parameter(output.release());
}

}  // namespace Norvane::builtin::builtinreg::detail
