// Arrays that hold more than plain elements: sparse arrays with their compressed columns,
// and cell and struct arrays with the arrays they own.
#include <algorithm>
#include <set>
#include <stdexcept>

#include "array_record.hpp"

namespace ka::detail {
namespace {

template <class T>
void storeValue(void* data, std::size_t index, std::complex<double> v, bool complex) {
    auto* out = static_cast<T*>(data);
    if (complex) {
        out[2 * index] = static_cast<T>(v.real());
        out[2 * index + 1] = static_cast<T>(v.imag());
    } else {
        out[index] = static_cast<T>(v.real());
    }
}

void storeSparseValue(kaClassID id, void* data, std::size_t index, std::complex<double> v,
                      bool complex) {
    if (id == kaDOUBLE_CLASS) storeValue<double>(data, index, v, complex);
    if (id == kaSINGLE_CLASS) storeValue<float>(data, index, v, complex);
    if (id == kaLOGICAL_CLASS) static_cast<bool*>(data)[index] = v != 0.0;
}

// Sorts the entries into column order and adds up those at the same place.
std::vector<SparseEntry> compressEntries(std::vector<SparseEntry> entries, std::size_t rows,
                                         std::size_t columns) {
    for (const SparseEntry& e : entries)
        if (e.row >= rows || e.column >= columns)
            throw std::invalid_argument("sparse entry (" + std::to_string(e.row) + "," +
                                        std::to_string(e.column) + ") lies outside the array");
    std::sort(entries.begin(), entries.end(), [](const SparseEntry& a, const SparseEntry& b) {
        return a.column != b.column ? a.column < b.column : a.row < b.row;
    });
    std::vector<SparseEntry> merged;
    for (const SparseEntry& e : entries) {
        if (!merged.empty() && merged.back().row == e.row && merged.back().column == e.column)
            merged.back().value += e.value;
        else
            merged.push_back(e);
    }
    std::erase_if(merged, [](const SparseEntry& e) { return e.value == 0.0; });
    return merged;
}

ArrayPtr newHolder(kaClassID stored, Kind kind, const Dims& dims, std::size_t perElement) {
    ArrayPtr array = newRecord(stored, kind);
    ArrayRecord& r = record(array.get());
    const std::size_t slots = checkedProduct(setDimensions(r, dims), perElement);
    allocateData(r, checkedProduct(slots, sizeof(kaArray_tag*)));
    std::fill_n(static_cast<kaArray_tag**>(r.data), slots, nullptr);
    r.heldCount = slots;
    return array;
}

const ArrayRecord& expectKind(const kaArray_tag* a, Kind kind, const char* what) {
    if (a == nullptr || record(a).kind != kind)
        throw std::invalid_argument(std::string("not a ") + what + " array");
    return record(a);
}

std::size_t checkIndex(const kaArray_tag* a, std::size_t index) {
    const std::size_t numel = matrix::numberOfElements(a);
    if (index >= numel)
        throw std::out_of_range("index " + std::to_string(index) + " out of range for " +
                                std::to_string(numel) + " elements");
    return index;
}

}  // namespace
}  // namespace ka::detail

ka::ArrayPtr ka::createSparse(kaClassID classId, std::size_t rows, std::size_t columns,
                              const std::vector<SparseEntry>& entries, kaComplexity complexity) {
    using namespace detail;
    if (classId != kaDOUBLE_CLASS && classId != kaSINGLE_CLASS && classId != kaLOGICAL_CLASS)
        matrix::detail::rejectInvalidClassId(classId);
    const bool complex = complexity == kaCOMPLEX;
    if (complex && classId == kaLOGICAL_CLASS)
        throw std::invalid_argument("a logical array cannot be complex");

    std::vector<SparseEntry> merged = compressEntries(entries, rows, columns);
    ArrayPtr array = newRecord(classId, Kind::sparse);
    ArrayRecord& r = record(array.get());
    const Dims dims{rows, columns};
    setDimensions(r, dims);
    r.flags |= matrix::flags::sparse | (complex ? matrix::flags::complex : 0u);
    allocateData(r, checkedProduct(merged.size() * (complex ? 2 : 1), elementSize(classId)));

    Extra& extra = r.ensureExtra();
    extra.columnStarts.assign(columns + 1, 0);
    extra.rowIndices.reserve(merged.size());
    for (std::size_t k = 0; k < merged.size(); ++k) {
        extra.rowIndices.push_back(merged[k].row);
        ++extra.columnStarts[merged[k].column + 1];
        storeSparseValue(classId, r.data, k, merged[k].value, complex);
    }
    for (std::size_t c = 0; c < columns; ++c) extra.columnStarts[c + 1] += extra.columnStarts[c];
    return array;
}

matrix::detail::SparseParts matrix::detail::sparseParts(const kaArray_tag* array) {
    const auto& r = ka::detail::expectKind(array, ka::detail::Kind::sparse, "sparse");
    return {r.extra->columnStarts.data(), r.extra->rowIndices.data(), r.extra->rowIndices.size()};
}

ka::ArrayPtr ka::createCell(const Dims& dims, std::vector<ArrayPtr> elements) {
    using namespace detail;
    ArrayPtr cell = newHolder(kaCELL_CLASS, Kind::cell, dims, 1);
    std::span<kaArray_tag*> slots = heldArrays(cell.get());
    if (!elements.empty() && elements.size() != slots.size())
        rejectValueCount(elements.size(), slots.size());
    for (std::size_t i = 0; i < elements.size(); ++i) slots[i] = elements[i].release();
    return cell;
}

const kaArray_tag* ka::cellElement(const kaArray_tag* cell, std::size_t index) {
    detail::expectKind(cell, detail::Kind::cell, "cell");
    return detail::heldArrays(cell)[detail::checkIndex(cell, index)];
}

void ka::setCellElement(kaArray_tag* cell, std::size_t index, ArrayPtr element) {
    detail::expectKind(cell, detail::Kind::cell, "cell");
    kaArray_tag*& slot = detail::heldArrays(cell)[detail::checkIndex(cell, index)];
    matrix::releaseReference(slot);
    slot = element.release();
}

ka::ArrayPtr ka::createStruct(const Dims& dims, std::vector<std::string> names,
                              std::vector<ArrayPtr> values) {
    using namespace detail;
    std::set<std::string_view> seen;
    for (const std::string& name : names)
        if (name.empty() || !seen.insert(name).second)
            throw std::invalid_argument("invalid or repeated field name '" + name + "'");

    ArrayPtr array = newHolder(kaSTRUCT_CLASS, Kind::structure, dims, names.size());
    ArrayRecord& r = record(array.get());
    r.ensureExtra().fieldNames = std::move(names);
    const std::size_t slots = r.heldCount;
    if (!values.empty() && values.size() != slots) rejectValueCount(values.size(), slots);
    for (std::size_t i = 0; i < values.size(); ++i) heldArrays(&r)[i] = values[i].release();
    return array;
}

std::span<const std::string> ka::fieldNames(const kaArray_tag* structArray) {
    return detail::expectKind(structArray, detail::Kind::structure, "struct").extra->fieldNames;
}

const kaArray_tag* ka::field(const kaArray_tag* structArray, std::size_t index,
                             std::string_view name) {
    std::span<const std::string> names = fieldNames(structArray);
    auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end()) throw std::out_of_range("no field '" + std::string(name) + "'");
    const std::size_t slot = detail::checkIndex(structArray, index) * names.size() +
                             static_cast<std::size_t>(found - names.begin());
    return detail::heldArrays(structArray)[slot];
}
