// Building arrays of every kind: numeric (real or complex, any class, N-d), char, logical,
// sparse, cell, struct, function handles and instances of class-system classes. Every
// function returns an owning handle with one reference; release() hands that reference on.
// Bad arguments throw std::invalid_argument; out of memory throws std::bad_alloc.
//
// Dimensions follow the language: trailing singleton dimensions beyond the second are
// dropped, one dimension {n} means n-by-1, none means 1-by-1. Element values are given in
// column-major order unless a function says otherwise.
#pragma once

#include <complex>
#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include <ka/imports.hpp>
#include <ka/ops.hpp>
#include <ka/views.hpp>

namespace ka {

using ArrayPtr = std::unique_ptr<kaArray_tag, matrix::detail::kaDestroy_deleter>;
using ConstArrayPtr = std::unique_ptr<const kaArray_tag, matrix::detail::kaDestroy_deleter>;
using Dims = std::vector<std::size_t>;

// Bytes of one element (one part of a complex element); 0 for a class without plain elements.
std::size_t elementSize(kaClassID classId);
// "double", "int8", "cell", ...; empty for ids that name no built-in class.
std::string_view className(kaClassID classId);

// --- numeric, logical and char ------------------------------------------------------------

// Zero-filled. Classes: logical, char, double, single and the integers; complex only for
// double, single and the integers.
ArrayPtr createNumeric(kaClassID classId, const Dims& dims, kaComplexity complexity = kaREAL);

// An array of the class that T stands for (double, float, the <cstdint> integers, bool,
// char16_t, std::complex of those numbers), filled from values in column-major order.
template <class T>
ArrayPtr createFrom(const Dims& dims, std::span<const T> values);

template <class T>
ArrayPtr scalar(T value) {
    return createFrom<T>({1, 1}, std::span<const T>(&value, 1));
}

template <class T>
ArrayPtr row(std::initializer_list<T> values) {
    return createFrom<T>({1, values.size()}, std::span<const T>(values.begin(), values.size()));
}

template <class T>
ArrayPtr column(std::initializer_list<T> values) {
    return createFrom<T>({values.size(), 1}, std::span<const T>(values.begin(), values.size()));
}

// A rows-by-columns array from values written row after row, as one reads a matrix.
template <class T>
ArrayPtr fromRows(std::size_t rows, std::size_t columns, std::initializer_list<T> values);

// A 1-by-n char row; n is the number of UTF-16 code units. The second form takes UTF-8 and
// throws std::invalid_argument "invalid UTF-8 text" for bytes that are not.
ArrayPtr charArray(std::u16string_view text);
ArrayPtr charArray(std::string_view utf8);

// --- sparse -------------------------------------------------------------------------------

struct SparseEntry {
    std::size_t row;     // zero-based
    std::size_t column;  // zero-based
    std::complex<double> value;
};

// A 2-D sparse array of class double, single or logical (complex for double and single),
// stored in compressed columns: values at the data pointer, row indices and column starts
// through matrix::detail::sparseParts. Entries at the same place add up; zeros are dropped.
ArrayPtr createSparse(kaClassID classId, std::size_t rows, std::size_t columns,
                      const std::vector<SparseEntry>& entries, kaComplexity complexity = kaREAL);

// --- cell and struct ----------------------------------------------------------------------

// A cell array; its data is the list of element arrays, each holding one reference. A null
// element stands for an empty double array. elements is empty (all null) or has numel items.
ArrayPtr createCell(const Dims& dims, std::vector<ArrayPtr> elements = {});
const kaArray_tag* cellElement(const kaArray_tag* cell, std::size_t index);
void setCellElement(kaArray_tag* cell, std::size_t index, ArrayPtr element);

// A struct array. values is empty (all null) or has numel * fieldNames.size() items, field
// after field for element 0, then element 1, and so on. Field names must be distinct.
ArrayPtr createStruct(const Dims& dims, std::vector<std::string> fieldNames,
                      std::vector<ArrayPtr> values = {});
std::span<const std::string> fieldNames(const kaArray_tag* structArray);
// Null for a field that holds no value; std::out_of_range for an unknown field or index.
const kaArray_tag* field(const kaArray_tag* structArray, std::size_t index, std::string_view name);

// --- function handles ---------------------------------------------------------------------

ArrayPtr createFunctionHandle(std::string_view name);
const std::string& functionName(const kaArray_tag* handle);

// --- instances of class-system classes ----------------------------------------------------

// An instance of the class classId (above kaOBJECT_CLASS). The array's stored class is
// storedClass: kaOPAQUE_CLASS or kaOBJECT_CLASS (the class id is then asked for through
// _get_class_id_non_trivial), or kaSTRUCT_CLASS for an object that looks like a struct to
// anyone who does not ask the class system. The payload is the class's own data; the data
// pointer of the array points at it.
struct ObjectDescription {
    kaClassID classId = kaUNKNOWN_CLASS;
    std::string className;
    kaClassID storedClass = kaOPAQUE_CLASS;
    Dims dims{1, 1};
    std::shared_ptr<void> payload;
    const std::type_info* payloadType = nullptr;  // checked by payloadAs
};
ArrayPtr createObject(ObjectDescription description);

template <class P>
ArrayPtr createObject(kaClassID classId, std::string className, std::shared_ptr<P> payload,
                      Dims dims = {1, 1}, kaClassID storedClass = kaOPAQUE_CLASS) {
    return createObject(ObjectDescription{classId, std::move(className), storedClass,
                                          std::move(dims), std::move(payload), &typeid(P)});
}

// The class id the class system knows the array by: the object's class for an instance
// (whatever its stored class), else matrix::classId.
kaClassID objectClassId(const kaArray_tag* array);
// The class name of an instance; empty for other arrays.
const std::string& objectClassName(const kaArray_tag* array);
// The payload of an instance; null for other arrays.
const std::shared_ptr<void>& objectPayload(const kaArray_tag* array);
const std::type_info* objectPayloadType(const kaArray_tag* array);

// The payload as a P, or null if the array holds no payload of that type.
template <class P>
P* payloadAs(const kaArray_tag* array) {
    const std::type_info* type = objectPayloadType(array);
    if (type == nullptr || *type != typeid(P)) return nullptr;
    return static_cast<P*>(objectPayload(array).get());
}

// --- special states -----------------------------------------------------------------------

// Hides the array's dimensions behind matrix::flags::opaqueDimensions, as for an array
// whose size is worked out only when somebody asks. The next dimension read completes them;
// since completion writes the record, read such an array on one thread at a time, as its
// reference counts are.
void makeDimensionsOpaque(kaArray_tag* array);

// A new array that shares the data of a full numeric array; both carry
// matrix::flags::mayShareData. The data stays shared until one of them dies. An array of
// one small element keeps its data in the record, so its copy gets a copy of the data and no
// shared flag. Writing through either array changes both: copy before writing.
ArrayPtr sharedDataCopy(const kaArray_tag* source);

}  // namespace ka

#include <ka/detail/create_impl.hpp>
