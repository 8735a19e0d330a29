// The life of an array record: creation, dimensions, data, destruction, and the member
// functions that the inline reads call.
#include "array_record.hpp"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "data_block.hpp"

namespace ka::detail {
namespace {

// Relaxed: the counter only has to add up, it orders nothing.
std::atomic<std::size_t> liveArrays{0};

}  // namespace

Extra& ArrayRecord::ensureExtra() {
    if (!extra) extra = std::make_unique<Extra>();
    return *extra;
}

ArrayPtr newRecord(kaClassID stored, Kind kind) {
    // Room for the padding before the inline buffer, whatever malloc's own alignment.
    constexpr std::size_t bytes = sizeof(ArrayRecord) + dataAlignment - 1 + inlineBytes;
    void* memory = std::malloc(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    ArrayPtr array(new (memory) ArrayRecord(stored, kind));
    liveArrays.fetch_add(1, std::memory_order_relaxed);
    return array;
}

std::size_t checkedProduct(std::size_t count, std::size_t size) {
    std::size_t product = 0;
    if (__builtin_mul_overflow(count, size, &product)) throw std::bad_array_new_length();
    return product;
}

std::size_t setDimensions(ArrayRecord& r, std::span<const std::size_t> dims) {
    std::size_t used = dims.size();
    while (used > 2 && dims[used - 1] == 1) --used;
    std::size_t numel = 1;
    for (std::size_t i = 0; i < used; ++i) numel = checkedProduct(numel, dims[i]);

    if (used <= 2) {
        r.ndDims.reset();
        r.dims.shape[0] = used > 0 ? dims[0] : 1;
        r.dims.shape[1] = used > 1 ? dims[1] : 1;
        r.flags |= matrix::flags::twoD;
    } else {
        r.ndDims = std::make_unique<std::size_t[]>(used);
        std::memcpy(r.ndDims.get(), dims.data(), used * sizeof(std::size_t));
        r.dims.nd.list = r.ndDims.get();
        r.dims.nd.count = used;
        r.flags &= ~matrix::flags::twoD;
    }
    return numel;
}

void allocateData(ArrayRecord& r, std::size_t bytes) {
    if (bytes <= inlineBytes) {
        r.data = r.inlineData();
        return;
    }
    r.block = allocateBlock(bytes);
    r.data = blockData(r.block);
}

std::span<kaArray_tag*> heldArrays(const kaArray_tag* a) {
    const ArrayRecord& r = record(a);
    return {static_cast<kaArray_tag**>(r.data), r.heldCount};
}

bool isNumericClass(kaClassID id) {
    return id == kaLOGICAL_CLASS || id == kaCHAR_CLASS ||
           (id >= kaDOUBLE_CLASS && id <= kaUINT64_CLASS);
}

}  // namespace ka::detail

std::size_t ka::liveArrayCount() {
    return detail::liveArrays.load(std::memory_order_relaxed);
}

void matrix::destroyArray(kaArray_tag* array) noexcept {
    using namespace ka::detail;
    if (array == nullptr) return;
    ArrayRecord* r = &record(array);
    for (kaArray_tag* held : heldArrays(array)) matrix::releaseReference(held);
    releaseBlock(r->block);
    r->~ArrayRecord();
    std::free(r);
    liveArrays.fetch_sub(1, std::memory_order_relaxed);
}

kaClassID kaArray_tag::_get_class_id_non_trivial() const {
    const auto& r = ka::detail::record(this);
    if (r.kind == ka::detail::Kind::object) return r.extra->objectClass;
    return static_cast<kaClassID>(storedClass);
}

void kaArray_tag::_complete_opaque_dimensions() const {
    // Completion is what a const reader is entitled to ask for; the record itself is never a
    // const object, since only the library creates records.
    auto& r = const_cast<ka::detail::ArrayRecord&>(ka::detail::record(this));
    if ((r.flags & matrix::flags::opaqueDimensions) == 0) return;
    ka::detail::setDimensions(r, r.extra->hiddenDims);
    r.flags &= ~matrix::flags::opaqueDimensions;
}

bool kaArray_tag::is_data_shared_impl() const {
    const auto* block = ka::detail::record(this).block;
    return block != nullptr && block->users > 1;
}
