// Full numeric arrays: the factory the library is built around, and what derives from it
// (zeroed arrays, char rows, shared-data copies, hidden dimensions).
#include <array>
#include <cstring>
#include <stdexcept>

#include "array_record.hpp"
#include "data_block.hpp"

namespace ka::detail {
namespace {

struct ClassInfo {
    const char* name;
    std::size_t elementSize;
};

constexpr std::array<ClassInfo, 19> classInfo{{
    {"", 0},
    {"cell", 0},
    {"struct", 0},
    {"logical", 1},
    {"char", 2},
    {"void", 0},
    {"double", 8},
    {"single", 4},
    {"int8", 1},
    {"uint8", 1},
    {"int16", 2},
    {"uint16", 2},
    {"int32", 4},
    {"uint32", 4},
    {"int64", 8},
    {"uint64", 8},
    {"function_handle", 0},
    {"opaque", 0},
    {"object", 0},
}};

}  // namespace
}  // namespace ka::detail

std::size_t ka::elementSize(kaClassID classId) {
    if (classId < 0 || static_cast<std::size_t>(classId) >= detail::classInfo.size()) return 0;
    return detail::classInfo[static_cast<std::size_t>(classId)].elementSize;
}

std::string_view ka::className(kaClassID classId) {
    if (classId <= 0 || static_cast<std::size_t>(classId) >= detail::classInfo.size()) return {};
    return detail::classInfo[static_cast<std::size_t>(classId)].name;
}

ka::ArrayPtr matrix::detail::do_create_uninitnumeric(std::span<const std::size_t> dimensions,
                                                     kaClassID classId, kaComplexity complexity) {
    using namespace ka::detail;
    if (!isNumericClass(classId)) rejectInvalidClassId(classId);
    const bool complex = complexity == kaCOMPLEX;
    if (complex && (classId == kaLOGICAL_CLASS || classId == kaCHAR_CLASS))
        throw std::invalid_argument("a " + std::string(ka::className(classId)) +
                                    " array cannot be complex");
    if (complexity != kaREAL && !complex)
        throw std::invalid_argument("invalid complexity " +
                                    std::to_string(static_cast<int>(complexity)));

    ka::ArrayPtr array = newRecord(classId, Kind::numeric);
    ArrayRecord& r = record(array.get());
    const std::size_t numel = setDimensions(r, dimensions);
    const std::size_t parts = complex ? 2 : 1;
    allocateData(r, checkedProduct(checkedProduct(numel, parts), ka::elementSize(classId)));
    if (complex) r.flags |= flags::complex;
    return array;
}

ka::ArrayPtr ka::createNumeric(kaClassID classId, const Dims& dims, kaComplexity complexity) {
    ArrayPtr array = matrix::detail::do_create_uninitnumeric(dims, classId, complexity);
    const std::size_t parts = complexity == kaCOMPLEX ? 2 : 1;
    std::memset(array->data, 0,
                matrix::numberOfElements(array.get()) * parts * elementSize(classId));
    return array;
}

ka::ArrayPtr ka::charArray(std::u16string_view text) {
    ArrayPtr array =
        matrix::detail::do_create_uninitnumeric(Dims{1, text.size()}, kaCHAR_CLASS, kaREAL);
    std::memcpy(array->data, text.data(), text.size() * sizeof(char16_t));
    return array;
}

ka::ArrayPtr ka::charArray(std::string_view utf8) {
    return charArray(detail::toUtf16(utf8));
}

ka::ArrayPtr ka::sharedDataCopy(const kaArray_tag* source) {
    using namespace detail;
    if (source == nullptr || record(source).kind != Kind::numeric)
        throw std::invalid_argument("only a full numeric array can share its data");
    matrix::completeDimensions(source);
    ArrayPtr copy = newRecord(static_cast<kaClassID>(source->storedClass), Kind::numeric);
    ArrayRecord& r = record(copy.get());
    setDimensions(r, matrix::dimensions(source));
    r.flags |= source->flags & matrix::flags::complex;

    auto& original = const_cast<ArrayRecord&>(record(source));
    if (original.block == nullptr) {
        std::memcpy(r.inlineData(), original.data, inlineBytes);
        return copy;
    }
    ++original.block->users;
    r.block = original.block;
    r.data = original.data;
    r.flags |= matrix::flags::mayShareData;
    original.flags |= matrix::flags::mayShareData;
    return copy;
}

void ka::makeDimensionsOpaque(kaArray_tag* array) {
    using namespace detail;
    matrix::completeDimensions(array);
    ArrayRecord& r = record(array);
    std::span<const std::size_t> dims = matrix::dimensions(array);
    r.ensureExtra().hiddenDims.assign(dims.begin(), dims.end());
    // Values nobody could mistake for real dimensions, should a reader skip the completion.
    r.dims.shape[0] = SIZE_MAX;
    r.dims.shape[1] = SIZE_MAX;
    r.flags |= matrix::flags::opaqueDimensions;
}
