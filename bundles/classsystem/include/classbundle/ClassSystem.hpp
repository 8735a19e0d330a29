// What the reference class-system bundle shows beyond the services of the library: its own
// native class, and the ClassSystem service, through which one reads what the class provider
// was handed (package functions, finders, methods), which IZOBJRegWrapper has no way to ask.
//
// The bundle's classes are those that the "orro_objects" section of its manifest names; they
// get class ids from kFirstClassId on. An engine object crosses into an array of the class that
// its native class stands for, looked up by its dynamic type in the runtime information table.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include <engine/OrroObject.hpp>
#include <ka/class_id.hpp>

#include <builtin/services/IZOBJRegWrapper.hpp>

namespace classbundle {

// Ids of the bundle's classes start here, above the string class (19).
inline constexpr kaClassID kFirstClassId = static_cast<kaClassID>(20);

// The bundle's native class, declared in its manifest as the language-level class "Counter",
// variant 0: an engine object holding one number.
inline constexpr const char* kCounterClassName = "Counter";

class Counter final : public Norvane::orro::OrroObject {
public:
    explicit Counter(long value) : value_(value) { ++liveCounters(); }
    Counter(const Counter& other) : OrroObject(other), value_(other.value_) { ++liveCounters(); }
    Counter& operator=(const Counter&) = delete;
    ~Counter() override { --liveCounters(); }

    long value() const noexcept { return value_; }

    // Counters alive, as counted by the shared object that creates and deletes them (both
    // happen in code compiled with this header: the bundle itself makes none).
    static std::atomic<long>& liveCounters() {
        static std::atomic<long> count{0};
        return count;
    }

private:
    long value_;
};

// Offered by the bundle beside IZOBJRegWrapper, by the same object. Safe to call from any thread.
class ClassSystem {
public:
    virtual ~ClassSystem() = default;

    // The function registered under its printed path ("a.b.f"; ".f" for no package); null if
    // none.
    virtual Zfh_KELDOR_fn* packageFunction(const std::string& qualifiedName) const = 0;

    // The finder installed under the name; empty if none.
    virtual Norvane::builtin::IZOBJRegWrapper::ZfhFinder zfhFinder(
        const std::string& name) const = 0;

    // "first.second" of each method added to the class, in the order added.
    virtual std::vector<std::string> methods(const zobj::ZobjClass* cls) const = 0;
};

}  // namespace classbundle
