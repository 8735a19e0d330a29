// The search lists of one builtin. A module hands over the variants of a builtin as
// declaration and boxing made them, in no useful order, with duplicates and with variants the
// system cannot serve; the lists clean that set once, at load time, and split it by support
// level into the list the engine searches and the three lists of BuiltinFcn::invoke.
//
// Cleanup, in order: sort; drop variants with an unsupported type; drop boxing variants that a
// variant ahead of them makes unreachable (same output count and input types, unless both box
// one source); lower to NO_SUPPORT every variant that a NO_SUPPORT variant ahead of it shadows
// (same input count, and it would take all of that variant's input types); drop boxing
// variants that ended at NO_SUPPORT. Every list stays in the total order of variants.
//
// The lists own their variants, and a BuiltinFcn made from them only points into them: keep
// the lists alive, and unmoved, as long as the BuiltinFcn.
#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg {

struct BUILTIN_API BuiltinVariantLists {
    std::vector<BuiltinVariant> all;             // everything that survived cleanup
    std::vector<BuiltinVariant> searchedByOrro;  // EQUIVALENT, ORRO_ONLY, NO_SUPPORT_SCALAR_COMPLEX
    std::vector<BuiltinVariant> searchedByInvokeAfterOrro;  // NO_SUPPORT
    // NO_SUPPORT, and copies, at NO_SUPPORT_SCALAR_COMPLEX, of the engine's variants that can
    // take a complex scalar.
    std::vector<BuiltinVariant> searchedByInvokeAfterOrroComplexScalarRhs;
    std::vector<BuiltinVariant> searchedByInvokeNoOrro;  // all levels but ORRO_ONLY

    BuiltinVariantLists();
    // Cleans, distributes and logs the variants.
    BuiltinVariantLists(std::vector<BuiltinVariant>&& variants);
    // The variants of all lists, copied in order, then as above.
    BuiltinVariantLists(const std::initializer_list<std::vector<BuiltinVariant>>& lists);
    BuiltinVariantLists(BuiltinVariantLists&&);
    BuiltinVariantLists& operator=(BuiltinVariantLists&&);
    ~BuiltinVariantLists();

    // Copies of the variants of all spans, in order.
    static std::vector<BuiltinVariant> concatenateVariantSpans(
        std::initializer_list<std::span<const BuiltinVariant>> spans);
};

}  // namespace Norvane::builtin::builtinreg
