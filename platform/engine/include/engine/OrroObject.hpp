// The engine's object: the native side of a value of an object type of the language. Native
// classes that the engine is to know derive from it. An object counts its own references, so
// that the engine, native code and the arrays that hold it share it through
// boost::intrusive_ptr<const OrroObject>; the last reference deletes it through the virtual
// destructor.
//
// The count is atomic: an object may be shared by threads that each hold a reference. A
// plain OrroObject* (as a Parameter carries one) holds none.
#pragma once

#include <atomic>
#include <cstddef>

#include <boost/intrusive_ptr.hpp>

#include <engine/opaque.hpp>

namespace Norvane::orro {

class OrroObject {
public:
    OrroObject() = default;
    // A copy is a new object, with no references of its own yet.
    OrroObject(const OrroObject&) noexcept {}
    OrroObject& operator=(const OrroObject&) noexcept { return *this; }
    virtual ~OrroObject() = default;

    // The references held now; for tests and diagnostics.
    std::size_t useCount() const noexcept { return references_.load(std::memory_order_relaxed); }

    friend void intrusive_ptr_add_ref(const OrroObject* object) noexcept {
        object->references_.fetch_add(1, std::memory_order_relaxed);
    }
    friend void intrusive_ptr_release(const OrroObject* object) noexcept {
        if (object->references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            delete object;
        }
    }

private:
    mutable std::atomic<std::size_t> references_{0};
};

}  // namespace Norvane::orro
