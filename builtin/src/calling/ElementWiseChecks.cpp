// The checks that go with element-wise lifting: the scalar dimensions, the rule of shapes that
// the templates of modules assert, and the refusal of an argument of the wrong alternative.
#include <builtin/calling/ElementWise.hpp>

#include <stdexcept>
#include <string>

#include <fl/diag.hpp>

#include "ReadableTypeName.hpp"

namespace Norvane::builtin::builtinreg::detail {

namespace {
using Norvane::builtin::detail::readableTypeName;
constexpr const char* sourcePath = "builtin2/interface/builtin/elementWise";
}  // namespace

const std::span<std::size_t>& getScalarDims() {
    static std::size_t dims[2] = {1, 1};
    static const std::span<std::size_t> scalarDims(dims);
    return scalarDims;
}

void assertElementwiseDimensions(const std::size_t* first, const std::size_t* last) {
    std::size_t common = 1;
    for (const std::size_t* size = first; size != last; ++size) {
        if (*size == 1) {
            continue;
        }
        if (common != 1 && *size != common && fl_diag_terminate()) {
            foundation::core::diag::terminate(
                "the ith dim of each input array should be equal or 1", sourcePath, __LINE__,
                __PRETTY_FUNCTION__);
        }
        common = *size;
    }
}

void assertOrThrowWrongElementWiseArg(const std::type_info& expected, const std::type_info& actual,
                                      bool mayStop) {
    const std::string text = "Parameter should contain " + readableTypeName(expected) +
                             " but actually contained " + readableTypeName(actual);
    if (mayStop && fl_diag_terminate()) {
        foundation::core::diag::terminate(text, sourcePath, __LINE__, __PRETTY_FUNCTION__);
    }
    throw std::logic_error(text);
}

}  // namespace Norvane::builtin::builtinreg::detail
