// The steps of a lifted call that do not depend on the element type. They run once per call on
// the calling thread, which is also where all reference counting of the call happens.
#include <builtin/calling/LiftArrays.hpp>

#include <algorithm>
#include <cstddef>
#include <utility>

#include <boost/variant/get.hpp>

#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

ka::ArrayPtr claimArray(const Parameter& argument) noexcept {
    kaArray_tag* const* const array = boost::get<kaArray_tag*>(&argument);
    return ka::ArrayPtr(array != nullptr ? *array : nullptr);
}

bool fitsElementClass(const kaArray_tag* array, ElementClass element) noexcept {
    return !matrix::isSparse(array) && matrix::classId(array) == element.id &&
           matrix::isComplex(array) == (element.complexity == kaCOMPLEX);
}

bool allowsParallel(const OrroFunctionDescriptor* descriptor) noexcept {
    const BuiltinVariant& variant = enclosingVariant(descriptor);
    return variant.mayHaveSideEffects == BuiltinVariant::HasSideEffects::NO &&
           variant.mayCallIntoKeldor == BuiltinVariant::CallsIntoKeldor::NO &&
           variant.mayRaiseWarnings == BuiltinVariant::HasWarnings::NO;
}

bool canBecomeOutput(const kaArray_tag* array, const LiftPlan& plan) noexcept {
    return matrix::isExclusive(array) && !matrix::isDataShared(array) &&
           std::ranges::equal(matrix::dimensions(array), plan.outDims);
}

ka::ArrayPtr createOutput(const LiftPlan& plan, ElementClass element) {
    return matrix::detail::do_create_uninitnumeric(plan.outDims, element.id, element.complexity);
}

Parameter finishLift(ka::ArrayPtr output, bool failed, const ParallelEnvironment& environment,
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
