// The cross product of a declaration's possible parameter types.
#include <builtin/variants/ArgTypes.hpp>

#include <algorithm>
#include <limits>
#include <ostream>
#include <stdexcept>

#include <boost/container/small_vector.hpp>

#include <fl/diag.hpp>

namespace Norvane::builtin::builtinreg {

namespace {

constexpr const char* kSourcePath = "builtin2/interface/builtin/getArgTypes";

// The number of signatures, or a length error if a vector of them cannot exist.
std::size_t signatureCount(const std::initializer_list<const std::size_t>& counts, std::size_t n,
                           std::size_t maxSize) {
    std::size_t product = 1;
    for (auto count = counts.begin(); count != counts.begin() + n; ++count) {
        if (*count != 0 && product > maxSize / *count) {
            throw std::length_error("vector too long");
        }
        product *= *count;
    }
    return product;
}

// Moves the odometer on by one, first position fastest. False once every position has wrapped.
bool nextCombination(boost::container::small_vector_base<std::size_t>& counter,
                     const std::initializer_list<const std::size_t>& counts) {
    for (std::size_t j = 0; j < counter.size(); ++j) {
        if (++counter[j] < counts.begin()[j]) {
            return true;
        }
        counter[j] = 0;
    }
    return false;
}

std::ostream& writeList(std::ostream& os, const std::vector<ArgType>& types) {
    if (types.empty()) {
        return os << "nil";
    }
    os << "[ ";
    const char* separator = "";
    for (const ArgType& type : types) {
        os << separator << type;
        separator = ", ";
    }
    return os << " ]";
}

}  // namespace

ArgTypes getArgTypes(types::SignatureTolerance tolerance,
                     const std::initializer_list<const std::size_t>& numArgTypes,
                     const std::initializer_list<ArgTypeGetter>& getArgType,
                     ArgTypeGetter outputGetArgType) {
    if (numArgTypes.size() != getArgType.size() && fl_diag_terminate()) {
        foundation::core::diag::terminate("numArgTypes.size() == getArgType.size()", kSourcePath,
                                          __LINE__, __PRETTY_FUNCTION__);
    }
    // Told to go on after a mismatch, read no further than the shorter list.
    const std::size_t n = std::min(numArgTypes.size(), getArgType.size());

    ArgTypes result;
    const std::size_t total = signatureCount(numArgTypes, n, result.inputs.max_size());
    if (total != 0) {
        result.inputs.reserve(total);
    }
    if (n == 0) {
        result.inputs.emplace_back();
    } else if (total != 0) {
        boost::container::small_vector<std::size_t, 8> counter(n, 0);
        do {
            std::vector<ArgType>& signature = result.inputs.emplace_back();
            signature.reserve(n);
            for (std::size_t j = 0; j < n; ++j) {
                signature.push_back(
                    types::setSignatureTolerance(getArgType.begin()[j](counter[j]), tolerance));
            }
        } while (nextCombination(counter, numArgTypes));
    }
    if (outputGetArgType != nullptr) {
        result.outputs.push_back(types::setSignatureTolerance(outputGetArgType(0), tolerance));
    }
    return result;
}

std::ostream& operator<<(std::ostream& os, const ArgTypes& argTypes) {
    os << "outputs: ";
    writeList(os, argTypes.outputs) << "\ninputs: [";
    const char* separator = "";
    for (const std::vector<ArgType>& signature : argTypes.inputs) {
        os << separator << "  ";
        writeList(os, signature);
        separator = ",\n";
    }
    return os << "\n]\n";
}

}  // namespace Norvane::builtin::builtinreg
