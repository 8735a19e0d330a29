// The ordinary code behind the declaration templates: the behaviour a declaration stands for,
// the variants of one function, and the builtin function object over the finished lists.
#include <builtin/declare/Builtin.hpp>

#include <stdexcept>

#include "DeclaredBehaviour.hpp"
#include "FlagChecks.hpp"

namespace Norvane::builtin::declare {

namespace {

using V = BuiltinVariant;

// The record of a declared function's variants, checked against what its form can do. Options
// only ever take reports away, so a function of another form never reports; one of the
// reporting form must keep one of the two.
VariantDeclaration resolve(const Options& options, JIT_CALLING_CONVENTION convention,
                           const std::string& name) {
    const bool canReport = convention == JIT_CALLING_CONVENTION::CanThrow;
    VariantDeclaration declared = detail::declarationOf(name, options, canReport);
    const bool reports = declared.mayRaiseWarnings == V::HasWarnings::YES ||
                         declared.mayThrowErrors == V::HasExceptions::YES;
    if (canReport && !reports) {
        throw std::invalid_argument(
            "builtin " + name +
            ": a function of the reporting form must be "
            "able to warn or to fail; declare it without noWarnings or noErrors");
    }
    return declared;
}

// Whatever the arguments' types, the builtin is called as the interpreter calls it without
// the engine.
class DeclaredFcn final : public BuiltinFcn {
public:
    DeclaredFcn(std::string name, const builtinreg::BuiltinVariantLists& lists,
                BuiltinVariant defaultVariant)
        : BuiltinFcn(std::move(name), {}, lists, std::move(defaultVariant), nullptr) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, VariantsToConsider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new DeclaredFcn(*this); }
};

}  // namespace

namespace detail {

void relaxOpenParameters(builtinreg::ArgTypes& signatures, std::initializer_list<bool> open) {
    for (std::vector<ArgType>& signature : signatures.inputs) {
        std::size_t position = 0;
        for (const bool relaxed : open) {
            if (relaxed) {
                signature[position] = types::setSignatureTolerance(
                    std::move(signature[position]), types::SignatureTolerance::RELAXED);
            }
            ++position;
        }
    }
}

// For each declared variant, the engine-only variants of each boxing declaration: copies of it
// that share it as their source, with the boxing entry and the boxed inputs.
void addBoxingVariants(std::vector<BuiltinVariant>& variants,
                       const std::vector<BoxingRecord>& boxing) {
    if (boxing.empty()) return;
    std::vector<BuiltinVariant> added;
    for (const BuiltinVariant& declared : variants) {
        const auto source = std::make_shared<const BuiltinVariant>(declared);
        for (const BoxingRecord& record : boxing) {
            if (record.inputs.size() != declared.inputArgTypes.size()) {
                throw std::invalid_argument("builtin " + declared.keldorFunctionName +
                                            ": a boxing declaration names one type per input");
            }
            BuiltinVariant prototype = declared;
            prototype.functionDescriptor.typedEntry = record.entry;
            prototype.originalVariant = source;
            const std::size_t first = added.size();
            builtinreg::detail::fillBoxedVariants(prototype, added, {record.inputs});
            builtinreg::detail::assertBoxingVariantConsistent(added[first], declared);
        }
    }
    variants.insert(variants.end(), added.begin(), added.end());
}

void addFunction(std::vector<BuiltinVariant>& variants, const std::string& name,
                 FunctionRecord&& record, const Options& options) {
    if (!record.mistake.empty()) {
        throw std::invalid_argument("builtin " + name + ": " + record.mistake);
    }
    VariantDeclaration prototype = resolve(options, record.descriptor.callingConvention, name);
    prototype.functionDescriptor = record.descriptor;
    prototype.developerFunction = record.developerFunction;
    prototype.outputArgTypes = std::move(record.signatures.outputs);
    prototype.isElementWise = record.elementWise;
    builtinreg::detail::FlagList flags = options.flags;
    builtinreg::detail::sortFlags(flags);
    checkFlags(name, record.signatures.inputs.empty() ? 0 : record.signatures.inputs[0].size(),
               flags);
    // Flags go into every variant of the vector they are given, so each function gets its own.
    std::vector<BuiltinVariant> fresh;
    builtinreg::detail::appendNewVariants(fresh, prototype, flags,
                                          std::move(record.signatures.inputs));
    addBoxingVariants(fresh, record.boxing);
    if (record.severalOutputs != nullptr) {
        record.severalOutputs->add(fresh, record.severalOutputsEntry);
    }
    variants = builtinreg::detail::appendVariants(std::move(variants), std::move(fresh));
}

VariantDeclaration declarationOf(const std::string& name, const Options& options, bool canReport) {
    return {.mayCallIntoKeldor =
                options.callsBack.value_or(true) ? V::CallsIntoKeldor::YES : V::CallsIntoKeldor::NO,
            .mayRaiseWarnings =
                options.warns.value_or(canReport) ? V::HasWarnings::YES : V::HasWarnings::NO,
            .mayThrowErrors =
                options.errors.value_or(canReport) ? V::HasExceptions::YES : V::HasExceptions::NO,
            .mayHaveSideEffects =
                options.sideEffects.value_or(true) ? V::HasSideEffects::YES : V::HasSideEffects::NO,
            .cppFunctionName = options.cppName.empty() ? name : options.cppName,
            .keldorFunctionName = name,
            .dominantClass = options.dominantClass};
}

}  // namespace detail

Builtin::Builtin(std::string name) : name_(std::move(name)) {}

MultiOutputs& Builtin::severalOutputs() {
    if (!severalOutputs_) {
        severalOutputs_ = std::make_shared<MultiOutputs>();
    }
    return *severalOutputs_;
}

namespace {

// The builtin's own default variant, or, with functions of several outputs, the one that serves
// those and hands it the rest.
BuiltinVariant finalDefault(Builtin& builtin, BuiltinVariant declared,
                            const std::shared_ptr<MultiOutputs>& severalOutputs) {
    if (!severalOutputs) {
        return declared;
    }
    return severalOutputs->defaultVariant(std::move(declared), builtin.name());
}

}  // namespace

DeclaredBuiltin::DeclaredBuiltin(Builtin&& builtin)
    : lists_(std::move(builtin.variants_)),
      severalOutputs_(std::move(builtin.severalOutputs_)),
      function_(std::make_unique<DeclaredFcn>(
          builtin.name_, lists_,
          finalDefault(builtin, std::move(builtin.defaultVariant_), severalOutputs_))) {}

DeclaredBuiltin::~DeclaredBuiltin() = default;

}  // namespace Norvane::builtin::declare
