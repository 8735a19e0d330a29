// A builtin declared by hand, the way the README shows it: the variants of one native function
// from its parameter types, the search lists made from them, a BuiltinFcn over the lists, and
// one interpreted call. Prints "twice(21) = 42".
#include <cstdio>
#include <utility>
#include <vector>

#include <builtin/builtin.hpp>
#include <ka/ka.hpp>

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;

double twice(double x) {
    return 2 * x;
}

builtinreg::BuiltinVariantLists twiceLists() {
    OrroFunctionDescriptor descriptor;
    // The ready-made wrapper for "double f(double)", chosen by the types' Parameter indices.
    descriptor.typedEntry = builtinreg::detail::getExportedInlineCWrapperFcn(
        nullptr, parameterIndexOf<double>, parameterIndexOf<double>);
    descriptor.nativeEntry = reinterpret_cast<NativeEntry>(&twice);
    descriptor.callingConvention = JIT_CALLING_CONVENTION::Direct;  // neither warns nor throws

    // One getter per parameter, with its count of possible types, and the output's getter.
    const ArgTypeGetter number = &getNativeArgType<double, NativeShape::SCALAR>;
    builtinreg::ArgTypes signatures =
        builtinreg::getArgTypes(SignatureTolerance::STRICT, {1}, {number}, number);

    std::vector<BuiltinVariant> variants;
    // What holds for every signature of the function; each variant gets its own inputs.
    const VariantDeclaration prototype{.functionDescriptor = descriptor,
                                       .developerFunction = reinterpret_cast<void*>(&twice),
                                       .outputArgTypes = std::move(signatures.outputs),
                                       .mayCallIntoKeldor = BuiltinVariant::CallsIntoKeldor::NO,
                                       .mayRaiseWarnings = BuiltinVariant::HasWarnings::NO,
                                       .mayThrowErrors = BuiltinVariant::HasExceptions::NO,
                                       .mayHaveSideEffects = BuiltinVariant::HasSideEffects::NO,
                                       .cppFunctionName = "twice",
                                       .keldorFunctionName = "twice",
                                       .dominantClass = "double"};
    builtinreg::detail::appendNewVariants(variants, prototype, /*flags=*/{},
                                          std::move(signatures.inputs));
    return builtinreg::BuiltinVariantLists(std::move(variants));
}

// The builtin views the lists, so they must outlive it.
class Twice final : public BuiltinFcn {
public:
    explicit Twice(const builtinreg::BuiltinVariantLists& lists)
        : BuiltinFcn("twice", {}, lists, BuiltinVariant(), nullptr) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, VariantsToConsider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new Twice(*this); }
};

int main() {
    const builtinreg::BuiltinVariantLists lists = twiceLists();
    const Twice fcn(lists);
    const ka::ArrayPtr x = ka::scalar(21.0);
    kaArray_tag* prhs[] = {x.get()};
    kaArray_tag* plhs[1] = {nullptr};
    fcn.call(1, plhs, 1, prhs);
    const ka::ArrayPtr result(plhs[0]);
    std::printf("twice(21) = %g\n", *static_cast<const double*>(matrix::data(result.get())));
    return 0;
}
