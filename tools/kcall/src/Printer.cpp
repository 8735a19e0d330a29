#include "Printer.hpp"

#include <cmath>
#include <cstdint>

#include <boost/json/serialize.hpp>

#include <builtin/services/BuiltinServices.hpp>
#include <fl/i18n.hpp>

namespace kcall {

namespace {

namespace json = boost::json;

json::value number(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x > 0 ? "Inf" : "-Inf";
    return x;
}

template <class T>
json::value element(T x) {
    if constexpr (std::is_same_v<T, bool>) {
        return x;
    } else if constexpr (std::is_floating_point_v<T>) {
        return number(static_cast<double>(x));
    } else if constexpr (std::is_signed_v<T>) {
        return static_cast<std::int64_t>(x);
    } else {
        return static_cast<std::uint64_t>(x);
    }
}

template <class T>
void addNumbers(json::object& object, const kaArray_tag* array) {
    const auto* data = static_cast<const T*>(matrix::data(array));
    const std::size_t n = matrix::numberOfElements(array);
    json::array real, imag;
    const bool complex = matrix::isComplex(array);
    for (std::size_t i = 0; i < n; ++i) {
        real.push_back(element(complex ? data[2 * i] : data[i]));
        if (complex) imag.push_back(element(data[2 * i + 1]));
    }
    object["data"] = std::move(real);
    if (complex) object["imag"] = std::move(imag);
}

bool addPlainData(json::object& object, const kaArray_tag* array) {
    switch (matrix::classId(array)) {
        case kaDOUBLE_CLASS: addNumbers<double>(object, array); return true;
        case kaSINGLE_CLASS: addNumbers<float>(object, array); return true;
        case kaINT8_CLASS: addNumbers<std::int8_t>(object, array); return true;
        case kaUINT8_CLASS: addNumbers<std::uint8_t>(object, array); return true;
        case kaINT16_CLASS: addNumbers<std::int16_t>(object, array); return true;
        case kaUINT16_CLASS: addNumbers<std::uint16_t>(object, array); return true;
        case kaINT32_CLASS: addNumbers<std::int32_t>(object, array); return true;
        case kaUINT32_CLASS: addNumbers<std::uint32_t>(object, array); return true;
        case kaINT64_CLASS: addNumbers<std::int64_t>(object, array); return true;
        case kaUINT64_CLASS: addNumbers<std::uint64_t>(object, array); return true;
        case kaLOGICAL_CLASS: addNumbers<bool>(object, array); return true;
        default: return false;
    }
}

// The text of a char array with one row (or none), else of each element as a number.
void addChars(json::object& object, const kaArray_tag* array) {
    const auto* data = static_cast<const char16_t*>(matrix::data(array));
    const std::size_t n = matrix::numberOfElements(array);
    if (matrix::dimensions(array)[0] <= 1) {
        object["data"] = fl::i18n::ustring_to_utf8(std::u16string_view(data, n));
    } else {
        addNumbers<char16_t>(object, array);
    }
}

}  // namespace

void display(std::ostream& out, const kaArray_tag* value, std::string_view name) {
    ka::print(out, value, name);
}

json::value toJson(const kaArray_tag* value) {
    json::object object;
    const std::string& objectClass = ka::objectClassName(value);
    object["class"] =
        objectClass.empty() ? std::string(ka::className(matrix::classId(value))) : objectClass;
    json::array size;
    for (std::size_t d : matrix::dimensions(value)) size.push_back(d);
    object["size"] = std::move(size);
    if (!objectClass.empty()) {
        const auto& strings = Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>();
        if (strings && strings->isString(value) && matrix::numberOfElements(value) == 1) {
            object["data"] = strings->getStringUtf8(value, 0);
        }
        return object;
    }
    object["complex"] = matrix::isComplex(value);
    if (matrix::isSparse(value)) {
        object["sparse"] = true;
        return object;
    }
    switch (matrix::classId(value)) {
        case kaCHAR_CLASS: addChars(object, value); break;
        case kaCELL_CLASS: {
            json::array elements;
            for (std::size_t i = 0, n = matrix::numberOfElements(value); i < n; ++i) {
                const kaArray_tag* element = ka::cellElement(value, i);
                elements.push_back(element != nullptr ? toJson(element) : json::value(nullptr));
            }
            object["data"] = std::move(elements);
            break;
        }
        case kaSTRUCT_CLASS: {
            json::array names;
            for (const std::string& name : ka::fieldNames(value))
                names.push_back(json::string(name));
            object["fields"] = std::move(names);
            break;
        }
        case kaFUNCTION_CLASS: object["data"] = ka::functionName(value); break;
        default: addPlainData(object, value); break;
    }
    return object;
}

void writeJsonLine(std::ostream& out, const json::value& value) {
    out << json::serialize(value) << '\n';
}

}  // namespace kcall
