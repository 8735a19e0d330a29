// Literals, conversions and concatenation. Values move between classes through one complex
// double per element, except between arrays of the same class, which are copied as they are
// (so that 64-bit integers keep every digit).
#include "Values.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringTraits.hpp>
#include <fl/i18n.hpp>

namespace kcall {

namespace {

using Complex = std::complex<double>;

constexpr struct {
    std::string_view name;
    kaClassID id;
} kConversions[] = {
    {"double", kaDOUBLE_CLASS}, {"single", kaSINGLE_CLASS},   {"int8", kaINT8_CLASS},
    {"uint8", kaUINT8_CLASS},   {"int16", kaINT16_CLASS},     {"uint16", kaUINT16_CLASS},
    {"int32", kaINT32_CLASS},   {"uint32", kaUINT32_CLASS},   {"int64", kaINT64_CLASS},
    {"uint64", kaUINT64_CLASS}, {"logical", kaLOGICAL_CLASS}, {"char", kaCHAR_CLASS},
};

bool isInteger(kaClassID id) {
    return id >= kaINT8_CLASS && id <= kaUINT64_CLASS;
}
bool isPlain(kaClassID id) {
    return id == kaLOGICAL_CLASS || id == kaCHAR_CLASS ||
           (id >= kaDOUBLE_CLASS && id <= kaUINT64_CLASS);
}

std::string nameOf(const kaArray_tag* array) {
    const std::string& object = ka::objectClassName(array);
    return object.empty() ? std::string(ka::className(matrix::classId(array))) : object;
}

void requirePlain(const kaArray_tag* array, std::string_view what) {
    if (!isPlain(matrix::classId(array)) || matrix::isSparse(array)) {
        throw std::invalid_argument(std::string(what) + " takes numbers, logicals and chars, not " +
                                    (matrix::isSparse(array) ? "sparse " : "") + nameOf(array));
    }
}

template <class F>
decltype(auto) withElementType(kaClassID id, F&& f) {
    switch (id) {
        case kaDOUBLE_CLASS: return f(double{});
        case kaSINGLE_CLASS: return f(float{});
        case kaINT8_CLASS: return f(std::int8_t{});
        case kaUINT8_CLASS: return f(std::uint8_t{});
        case kaINT16_CLASS: return f(std::int16_t{});
        case kaUINT16_CLASS: return f(std::uint16_t{});
        case kaINT32_CLASS: return f(std::int32_t{});
        case kaUINT32_CLASS: return f(std::uint32_t{});
        case kaINT64_CLASS: return f(std::int64_t{});
        case kaUINT64_CLASS: return f(std::uint64_t{});
        case kaLOGICAL_CLASS: return f(bool{});
        case kaCHAR_CLASS: return f(char16_t{});
        default: throw std::logic_error("not a plain class");
    }
}

// Element i of a plain array as a complex double.
Complex read(const kaArray_tag* array, std::size_t i) {
    return withElementType(matrix::classId(array), [&](auto zero) -> Complex {
        using T = decltype(zero);
        const auto* data = static_cast<const T*>(matrix::data(array));
        if (matrix::isComplex(array)) {
            return {static_cast<double>(data[2 * i]), static_cast<double>(data[2 * i + 1])};
        }
        return static_cast<double>(data[i]);
    });
}

// The part of a value as an element of class T: integers round halves away from zero and
// saturate, NaN becomes 0.
template <class T>
T toElement(double part) {
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(part);
    } else if constexpr (std::is_same_v<T, bool>) {
        return part != 0;
    } else {
        if (std::isnan(part)) return T{0};
        const double rounded = std::round(part);
        if (rounded <= static_cast<double>(std::numeric_limits<T>::min()))
            return std::numeric_limits<T>::min();
        if (rounded >= static_cast<double>(std::numeric_limits<T>::max()))
            return std::numeric_limits<T>::max();
        return static_cast<T>(rounded);
    }
}

void write(kaArray_tag* array, std::size_t i, Complex value) {
    withElementType(matrix::classId(array), [&](auto zero) {
        using T = decltype(zero);
        auto* data = static_cast<T*>(matrix::data(array));
        if (matrix::isComplex(array)) {
            data[2 * i] = toElement<T>(value.real());
            data[2 * i + 1] = toElement<T>(value.imag());
        } else {
            data[i] = toElement<T>(value.real());
        }
    });
}

void copyElement(const kaArray_tag* from, std::size_t i, kaArray_tag* to, std::size_t j) {
    if (matrix::classId(from) == matrix::classId(to) &&
        matrix::isComplex(from) == matrix::isComplex(to)) {
        const std::size_t size =
            ka::elementSize(matrix::classId(from)) * (matrix::isComplex(from) ? 2 : 1);
        std::memcpy(static_cast<char*>(matrix::data(to)) + j * size,
                    static_cast<const char*>(matrix::data(from)) + i * size, size);
    } else {
        write(to, j, read(from, i));
    }
}

ka::ArrayPtr create(kaClassID id, const ka::Dims& dims, bool complex) {
    if (complex && (id == kaLOGICAL_CLASS || id == kaCHAR_CLASS)) {
        throw std::invalid_argument(std::string("a ") + std::string(ka::className(id)) +
                                    " array cannot hold complex values");
    }
    return ka::createNumeric(id, dims, complex ? kaCOMPLEX : kaREAL);
}

// The class that the elements of a matrix take.
kaClassID dominantClass(const std::vector<const kaArray_tag*>& elements) {
    bool anyChar = false, allLogical = true, anySingle = false;
    std::optional<kaClassID> integer;
    for (const kaArray_tag* element : elements) {
        const kaClassID id = matrix::classId(element);
        anyChar = anyChar || id == kaCHAR_CLASS;
        allLogical = allLogical && id == kaLOGICAL_CLASS;
        anySingle = anySingle || id == kaSINGLE_CLASS;
        if (!integer && isInteger(id)) integer = id;
    }
    if (integer) return *integer;
    if (anyChar) return kaCHAR_CLASS;
    if (anySingle) return kaSINGLE_CLASS;
    return allLogical && !elements.empty() ? kaLOGICAL_CLASS : kaDOUBLE_CLASS;
}

std::size_t rowsOf(const kaArray_tag* a) {
    return matrix::dimensions(a)[0];
}
std::size_t columnsOf(const kaArray_tag* a) {
    return matrix::dimensions(a)[1];
}

}  // namespace

ka::ArrayPtr numberValue(Complex value, bool complex) {
    ka::ArrayPtr array = ka::createNumeric(kaDOUBLE_CLASS, {1, 1}, complex ? kaCOMPLEX : kaREAL);
    write(array.get(), 0, value);
    return array;
}

ka::ArrayPtr charRowValue(std::string_view utf8) {
    if (utf8.empty()) return ka::createNumeric(kaCHAR_CLASS, {0, 0});
    return ka::charArray(utf8);
}

ka::ArrayPtr stringValue(std::string_view utf8) {
    if (!Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>()) {
        throw std::invalid_argument("strings need the string service, which is not running");
    }
    return ka::ArrayPtr(Norvane::builtin::types::TypeTraitsImpl<std::string>()(std::string(utf8)));
}

std::optional<kaClassID> conversionClass(std::string_view name) {
    for (const auto& conversion : kConversions) {
        if (conversion.name == name) return conversion.id;
    }
    return std::nullopt;
}

std::vector<std::string> conversionNames() {
    std::vector<std::string> names;
    for (const auto& conversion : kConversions) names.emplace_back(conversion.name);
    return names;
}

ka::ArrayPtr convertTo(kaClassID target, const kaArray_tag* array) {
    requirePlain(array, ka::className(target));
    const bool complex = matrix::isComplex(array);
    if (target == kaLOGICAL_CLASS || target == kaCHAR_CLASS) {
        if (complex)
            throw std::invalid_argument(std::string("complex values cannot become ") +
                                        std::string(ka::className(target)));
    }
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    ka::ArrayPtr result = create(target, ka::Dims(dims.begin(), dims.end()), complex);
    for (std::size_t i = 0, n = matrix::numberOfElements(array); i < n; ++i) {
        if (target == kaLOGICAL_CLASS && std::isnan(read(array, i).real())) {
            throw std::invalid_argument("NaN cannot become logical");
        }
        copyElement(array, i, result.get(), i);
    }
    return result;
}

ka::ArrayPtr concatenate(const std::vector<std::vector<const kaArray_tag*>>& rows) {
    std::vector<const kaArray_tag*> all;
    std::vector<std::vector<const kaArray_tag*>> kept;
    for (const auto& row : rows) {
        std::vector<const kaArray_tag*>& keptRow = kept.emplace_back();
        for (const kaArray_tag* element : row) {
            requirePlain(element, "a matrix");
            if (matrix::numberOfDimensions(element) != 2) {
                throw std::invalid_argument("a matrix takes two-dimensional elements only");
            }
            if (rowsOf(element) == 0 && columnsOf(element) == 0) continue;
            keptRow.push_back(element);
            all.push_back(element);
        }
        if (keptRow.empty()) kept.pop_back();
    }
    const kaClassID id = dominantClass(all);
    const bool complex = std::any_of(all.begin(), all.end(),
                                     [](const kaArray_tag* a) { return matrix::isComplex(a); });

    // Heights within a row must agree, and the widths of the rows.
    std::size_t columns = 0, height = 0;
    std::vector<std::size_t> heights;
    for (std::size_t r = 0; r < kept.size(); ++r) {
        std::size_t width = 0;
        for (const kaArray_tag* element : kept[r]) {
            if (rowsOf(element) != rowsOf(kept[r][0])) {
                throw std::invalid_argument(
                    "the elements of a row of a matrix must have the same number of rows");
            }
            width += columnsOf(element);
        }
        if (r == 0) columns = width;
        if (width != columns) {
            throw std::invalid_argument(
                "the rows of a matrix must have the same number of columns");
        }
        heights.push_back(rowsOf(kept[r][0]));
        height += heights.back();
    }
    ka::ArrayPtr result = create(id, {height, columns}, complex);
    const std::size_t size = ka::elementSize(id) * (complex ? 2 : 1);
    auto* const to = static_cast<char*>(matrix::data(result.get()));
    std::size_t top = 0;
    for (std::size_t r = 0; r < kept.size(); ++r) {
        std::size_t left = 0;
        for (const kaArray_tag* element : kept[r]) {
            const std::size_t h = rowsOf(element);
            if (matrix::classId(element) == id && matrix::isComplex(element) == complex) {
                // The same layout: each column of the element is a run of the result's column,
                // and all of them one run when the element is as high as the result.
                const auto* from = static_cast<const char*>(matrix::data(element));
                const std::size_t runs = h == height ? 1 : columnsOf(element);
                const std::size_t run = h == height ? matrix::numberOfElements(element) : h;
                for (std::size_t c = 0; c < runs; ++c) {
                    std::memcpy(to + ((left + c) * height + top) * size, from + c * run * size,
                                run * size);
                }
            } else {
                for (std::size_t c = 0; c < columnsOf(element); ++c) {
                    for (std::size_t e = 0; e < h; ++e) {
                        copyElement(element, c * h + e, result.get(),
                                    (left + c) * height + top + e);
                    }
                }
            }
            left += columnsOf(element);
        }
        top += heights[r];
    }
    return result;
}

}  // namespace kcall
