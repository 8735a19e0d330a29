// The checks on the outputs of a developer's array function. The source paths are those under
// which the code that makes and wraps a default implementation has always reported.
#include <builtin/invoke/DefaultImplementationChecks.hpp>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>

#include <fl/diag.hpp>
#include <ka/ka.hpp>

#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/types/NativeArgTypes.hpp>

namespace Norvane::builtin {

namespace {

using types::KaArrayTypes;

constexpr const char* kDefaultImplementationPath =
    "builtin2/interface/builtin/getDefaultImplementationVariant";
constexpr const char* kDescriptorPath = "builtin2/interface/builtin/getFunctionDescriptor";

// "KELDOR Builtin: "<name>" of dominant class "<class>" implemented by "<function>" ".
std::string lhsTextOpening(const BuiltinVariant& variant) {
    return "KELDOR Builtin: \"" + variant.keldorFunctionName + "\" of dominant class \"" +
           variant.dominantClass + "\" implemented by \"" + variant.cppFunctionName + "\" ";
}

}  // namespace

void throwIfUnassignedOutputs(const std::u16string& functionName, int nlhs, kaArray_tag** plhs) {
    if (nlhs <= 0) {
        return;
    }
    kaArray_tag** const end = plhs + nlhs;
    if (std::find(plhs, end, nullptr) == end) {
        return;
    }
    for (kaArray_tag** output = plhs; output != end; ++output) {
        if (*output != nullptr) {
            matrix::destroyArray(*output);
            *output = nullptr;
        }
    }
    throw UnassignedOutputsException(KELDOR::legacy_two_part::unassignedOutputs(functionName));
}

namespace builtinreg::detail {

void assertLhsIsNotNull(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant) {
    const std::string text = lhsTextOpening(variant) + "did not populate plhs[" +
                             std::to_string(index) + "] but nlhs is " + std::to_string(nlhs);
    foundation::core::diag::terminate(text, kDefaultImplementationPath, __LINE__,
                                      __PRETTY_FUNCTION__);
}

void assertLhsOverflow(std::int64_t nlhs, std::int64_t index, const BuiltinVariant& variant) {
    const std::string text = lhsTextOpening(variant) + "wrote to plhs[" + std::to_string(index) +
                             "] but nlhs is " + std::to_string(nlhs);
    foundation::core::diag::terminate(text, kDefaultImplementationPath, __LINE__,
                                      __PRETTY_FUNCTION__);
}

// The plain array type is tested before the array is classified: it needs no classification.
void assertLhsWrongType(const BuiltinVariant& variant, const kaArray_tag* array) {
    if (variant.outputArgTypes.empty()) {
        throw std::out_of_range("invalid vector subscript");
    }
    const ArgType& expected = variant.outputArgTypes.front();
    if (expected == types::plainArrayArgType(0)) {
        return;
    }
    const ArgType actual = types::getArgTypeOfKaArray(array);
    if (types::isAcceptable(expected, actual) || !fl_diag_terminate()) {
        return;
    }
    std::ostringstream text;
    text << "incorrect type returned from builtin: \"" << variant.cppFunctionName
         << "\"\nExpected: " << expected << "\nActual: " << actual;
    foundation::core::diag::terminate(text.str(), kDescriptorPath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace builtinreg::detail
}  // namespace Norvane::builtin
