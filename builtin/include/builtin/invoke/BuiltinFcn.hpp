// BuiltinFcn: one builtin of the language as the runtime holds it. It views the sorted variant
// lists that its module keeps (so those must outlive it), owns its name and its default
// implementation, and takes interpreted calls through `invoke`: choose a list, find the first
// variant that accepts the arguments, call it with unboxed values, deliver its warnings and
// error, and hand back the result as an array. Calls that no variant takes go to the default
// implementation, an array function.
//
// Modules derive from it. It is immutable after construction and read without locks, but for
// its memo of the variant that took each combination of argument types, which invoke reads
// without locks and fills as calls come (see VariantMemo.hpp); a copy starts with an empty one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include <capabilities/CapabilityList.hpp>
#include <engine/opaque.hpp>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>
#include <builtin/invoke/VariantMemo.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

struct kaArray_tag;

namespace Norvane::builtin {

namespace builtinreg {
struct BuiltinVariantLists;
}

// What invoke throws when no variant takes a call and the builtin has no default
// implementation, with the text "builtin function implementation is nullptr". Callers that
// catch std::logic_error still do; a host that explains the refusal catches this type.
class BUILTIN_API NoVariantTakesCall : public std::logic_error {
public:
    NoVariantTakesCall();
};

class BUILTIN_API BuiltinFcn {
public:
    // Which lists `invoke` searches. Any value other than InvokeNoOrro counts as InvokeAfterOrro.
    enum class VariantsToConsider : int {
        InvokeNoOrro = 0,     // the interpreter calls without the engine
        InvokeAfterOrro = 1,  // the engine has passed the call on
    };

    // The variant arrays that a builtin views, by name; an empty one is null and 0. Each must be
    // in the order of BuiltinVariant::operator< and outlive the builtin.
    struct VariantArrays {
        VariantArray all = {};
        VariantArray searchedByOrro = {};
        VariantArray searchedByInvokeNoOrro = {};
        VariantArray searchedByInvokeAfterOrro = {};
        VariantArray searchedByInvokeAfterOrroComplexScalar = {};
    };

    // The form of a default implementation's native entry; it receives the address of the
    // default variant's descriptor.
    using ArrayFunction = void (*)(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                                   OrroFunctionDescriptor* descriptor);

    // Copies every field; the variant arrays are shared, the default variant copied, the memo
    // not: the copy starts with an empty one.
    BuiltinFcn(const BuiltinFcn& other);
    BuiltinFcn& operator=(const BuiltinFcn&) = delete;
    virtual ~BuiltinFcn();

    // The interpreter's entry into the builtin; a derived class decides which lists to search
    // and calls invoke.
    virtual void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const = 0;
    // A copy of the derived object, owned by the caller.
    virtual BuiltinFcn* clone() const = 0;
    // Empty unless a derived class says otherwise; the same string object every time. For the
    // runtime's help, which asks every builtin; nothing in this library does.
    virtual const std::string& getHelpContent() const;

    const std::string& getName() const { return name_; }
    const VariantArray& getAllVariants() const { return allVariants_; }
    // The runtime's callable object of the builtin, handed in at construction; for the runtime,
    // which keeps it with the builtin. invoke does not use it.
    Zfh_KELDOR_fn* getDecoratedFn() const { return decoratedFn_; }

    // Calls the builtin with arrays. Fills plhs[0] when nlhs is 1, or when nlhs is 0, plhs is
    // not null and the chosen variant has an output; otherwise a result is released. Lets
    // through what the builtin throws, after its warnings have gone to matrix::handleWarning.
    // Throws NoVariantTakesCall when no variant takes the call and there is no default
    // implementation, and std::invalid_argument for a negative count.
    void invoke(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                VariantsToConsider variantsToConsider) const;

    // The list that invoke searches, in order, for a call with these arguments: the one without
    // the engine, or the one after it, which with a complex scalar among the arguments may
    // hold more.
    VariantArray searchedByInvoke(VariantsToConsider variantsToConsider, int nrhs,
                                  kaArray_tag* const* prhs) const;

protected:
    // No name, no variants and no default implementation.
    BuiltinFcn();
    // Views the arrays, named, as the code of this project builds builtins.
    BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
               const VariantArrays& arrays, BuiltinVariant defaultVariant,
               Zfh_KELDOR_fn* decoratedFn = nullptr);
    // The same positionally, for derived classes in other modules of the runtime: after Orro
    // before no Orro, and the complex-scalar list last.
    BuiltinFcn(std::string name, capabilities::CapabilityList capabilities, VariantArray all,
               VariantArray searchedByOrro, VariantArray searchedByInvokeAfterOrro,
               VariantArray searchedByInvokeNoOrro, BuiltinVariant defaultVariant,
               Zfh_KELDOR_fn* decoratedFn, VariantArray searchedByInvokeAfterOrroComplexScalar);
    // Views the five lists, which must outlive this object and stay where they are.
    BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
               const builtinreg::BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
               Zfh_KELDOR_fn* decoratedFn);

private:
    // The list that invoke searches, and its place among the three (0 without the engine, 1
    // after it, 2 after it with a complex scalar), by which the memo tells the lists apart.
    VariantArray chooseList(VariantsToConsider variantsToConsider, int nrhs,
                            kaArray_tag* const* prhs, std::uint64_t& place) const;
    void invokeDefaultImplementation(int nlhs, kaArray_tag** plhs, int nrhs,
                                     kaArray_tag** prhs) const;
    void logConstruction() const;

    // Fields in their stored order, which derived classes in other modules build on.
    std::string name_;
    capabilities::CapabilityList capabilities_;

public:
    // The variants the engine searches; it reads them directly.
    const BuiltinVariant* variants = nullptr;
    std::size_t numVariants = 0;

private:
    BuiltinVariant defaultVariant_;
    VariantArray allVariants_;
    VariantArray searchedByInvokeNoOrro_;
    VariantArray searchedByInvokeAfterOrro_;
    VariantArray searchedByInvokeAfterOrroComplexScalar_;
    Zfh_KELDOR_fn* decoratedFn_ = nullptr;
    // Added after the fields above, whose order derived classes rely on.
    detail::VariantMemo memo_;
};

}  // namespace Norvane::builtin
