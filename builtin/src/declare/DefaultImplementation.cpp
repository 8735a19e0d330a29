// Default implementations as modules declare them: the developer's array function, run inside
// the guards of its declarations and checked on the way out.
//
//   1. Log the execution, and keep the variant on the tavi's stack for the call-back check.
//   2. If it declared no warnings, a warning on this thread during the call stops the process.
//   3. Call the function with room for one output more than it may write.
//   4. An output written beyond that room stops the process; an output asked for and left
//      unassigned is the user's error; an output of a type its declaration does not take stops.
#include <algorithm>
#include <optional>

#include <boost/container/small_vector.hpp>

#include <builtin/declare/Builtin.hpp>
#include <builtin/invoke/CallsKeldorCheck.hpp>
#include <builtin/invoke/DefaultImplementationChecks.hpp>
#include <builtin/invoke/ExecutionDiagnostics.hpp>
#include <fl/i18n.hpp>
#include <ka/ka.hpp>

#include "DeclaredBehaviour.hpp"

namespace Norvane::builtin::declare::detail {

namespace {

using V = BuiltinVariant;

void runGuarded(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                OrroFunctionDescriptor* descriptor) {
    const auto& variant = *reinterpret_cast<const BuiltinVariant*>(descriptor);
    const builtinreg::detail::LogBuiltinVariantExecution_ log(&variant);
    const builtinreg::CallsKeldorCheckAsserted callsBack(&variant);
    std::optional<ka::ThreadWarningScope> noWarnings;
    if (variant.mayRaiseWarnings == V::HasWarnings::NO) {
        noWarnings.emplace([&variant](const std::u16string& warning) {
            builtinreg::detail::AssertIfWarnings{variant}(warning);
        });
    }

    // A call that asks for no output may still get one, into plhs[0].
    const int room = std::max(nlhs, 1);
    boost::container::small_vector<kaArray_tag*, 4> outputs(static_cast<std::size_t>(room) + 1,
                                                            nullptr);
    const auto function = reinterpret_cast<BuiltinFcn::ArrayFunction>(variant.developerFunction);
    try {
        function(nlhs, outputs.data(), nrhs, prhs, descriptor);
    } catch (...) {
        // What the function assigned before it failed goes nowhere.
        for (kaArray_tag* output : outputs) matrix::releaseReference(output);
        throw;
    }
    noWarnings.reset();

    if (outputs[static_cast<std::size_t>(room)] != nullptr) {
        builtinreg::detail::assertLhsOverflow(nlhs, room, variant);
    }
    throwIfUnassignedOutputs(fl::i18n::utf8_to_ustring(variant.keldorFunctionName), nlhs,
                             outputs.data());
    if (outputs[0] != nullptr) {
        builtinreg::detail::assertLhsWrongType(variant, outputs[0]);
    }
    // A call that asks for no output may come without an output array, as invoke allows; the
    // value is then dropped, as invoke drops a typed variant's result.
    if (plhs == nullptr) {
        for (kaArray_tag* output : outputs) matrix::releaseReference(output);
        return;
    }
    std::copy_n(outputs.begin(), room, plhs);
}

}  // namespace

BuiltinVariant defaultVariantOf(BuiltinFcn::ArrayFunction function, const std::string& name,
                                const Options& options) {
    // An array function reports by throwing and warning, so it may do both unless it says not.
    VariantDeclaration declared = declarationOf(name, options, true);
    declared.functionDescriptor = {nullptr, reinterpret_cast<NativeEntry>(&runGuarded),
                                   JIT_CALLING_CONVENTION::CanThrow};
    declared.developerFunction = reinterpret_cast<void*>(function);
    declared.outputArgTypes = {types::plainArrayArgType(0)};
    return BuiltinVariant(std::move(declared));
}

}  // namespace Norvane::builtin::declare::detail
