// The fallback of binary arithmetic: the pairs of classes that the class rules refuse, named.
#include <builtin/declare/Arithmetic.hpp>

#include <stdexcept>
#include <string>

#include <ka/ka.hpp>

namespace Norvane::builtin::declare::arithmetic {

namespace {

bool isIntegerClass(kaClassID id) {
    return id >= kaINT8_CLASS && id <= kaUINT64_CLASS;
}

std::string classText(const kaArray_tag* array) {
    const std::string name(ka::className(matrix::classId(array)));
    return matrix::isComplex(array) ? "complex " + name : name;
}

}  // namespace

void refuseClasses(int, kaArray_tag**, int nrhs, kaArray_tag** prhs, OrroFunctionDescriptor*) {
    if (nrhs == 2 && prhs[0] != nullptr && prhs[1] != nullptr) {
        const kaClassID left = matrix::classId(prhs[0]);
        const kaClassID right = matrix::classId(prhs[1]);
        if (isIntegerClass(left) && isIntegerClass(right) && left != right) {
            throw std::invalid_argument("integers of different classes cannot be combined: " +
                                        classText(prhs[0]) + " and " + classText(prhs[1]));
        }
        const bool complexWithInteger = (matrix::isComplex(prhs[0]) && isIntegerClass(right)) ||
                                        (matrix::isComplex(prhs[1]) && isIntegerClass(left));
        if (complexWithInteger) {
            throw std::invalid_argument("complex values and integers cannot be combined: " +
                                        classText(prhs[0]) + " and " + classText(prhs[1]));
        }
    }
    throw NoVariantTakesCall();
}

}  // namespace Norvane::builtin::declare::arithmetic
