// What the tests of the interpreted call share: a BuiltinFcn over lists the test owns, and native
// functions, called through the real wrapper family, that note which variant ran (by
// cppFunctionName).
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>

#include "../variants/VariantBuilders.hpp"

namespace invoketest {

using namespace varianttest;
using Consider = BuiltinFcn::VariantsToConsider;

struct Seen {
    std::vector<std::string> ran;           // the variants that ran, in order
    std::vector<int> argumentAlternatives;  // what recordingEntry was given
    std::uint32_t refCountInside = 0;       // of the array that ofArray was given
};
inline Seen seen;

inline const std::string& nameOf(const OrroFunctionDescriptor* d) {
    return reinterpret_cast<const BuiltinVariant*>(d)->cppFunctionName;
}
inline double ofDouble(double x, OrroFunctionDescriptor* d) {
    seen.ran.push_back(nameOf(d));
    return x + 1;
}
inline double ofArray(kaArray_tag* a, OrroFunctionDescriptor* d) {
    seen.ran.push_back(nameOf(d));
    seen.refCountInside = a->refCount;
    matrix::releaseReference(a);
    return 0;
}
// A typed entry that notes the alternatives of its arguments and gives back their references.
inline Parameter recordingEntry(OrroFunctionDescriptor* d, IOrroBuiltinEnvironment*, bool& pending,
                                const ParameterList& arguments) {
    pending = false;
    seen.ran.push_back(nameOf(d));
    seen.argumentAlternatives.clear();
    for (const Parameter& argument : arguments) {
        seen.argumentAlternatives.push_back(argument.which());
        if (argument.which() == 13) matrix::releaseReference(boost::get<kaArray_tag*>(argument));
    }
    return Parameter(static_cast<double>(arguments.size()));
}
// The default implementation: answers -1 when asked for an output.
inline void arrayFunction(int nlhs, kaArray_tag** plhs, int, kaArray_tag**,
                          OrroFunctionDescriptor* d) {
    seen.ran.push_back(nameOf(d));
    if (nlhs >= 1) plhs[0] = ka::scalar(-1.0).release();
}

template <class R, class... A>
TypedEntry wrapperFor() {
    return builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>,
                                                            parameterIndexOf<A>...);
}
template <class R, class... A, class F>
BuiltinVariant nativeVariant(const char* name, std::vector<ArgType> in, std::vector<ArgType> out,
                             F* native) {
    return makeVariant({.in = std::move(in),
                        .out = std::move(out),
                        .typedEntry = wrapperFor<R, A...>(),
                        .nativeEntry = reinterpret_cast<NativeEntry>(native),
                        .convention = JIT_CALLING_CONVENTION::DirectWithDescriptor,
                        .name = name});
}
inline BuiltinVariant doubleVariant(const char* name, std::vector<ArgType> in = {scalar()}) {
    return nativeVariant<double, double>(name, std::move(in), {scalar()}, &ofDouble);
}
inline BuiltinVariant defaultVariant() {
    return makeVariant({.typedEntry = nullptr,
                        .nativeEntry = reinterpret_cast<NativeEntry>(&arrayFunction),
                        .name = "default"});
}

// Lists that the test keeps alive as long as the builtin; each must be sorted.
struct Lists {
    std::vector<BuiltinVariant> noOrro = {}, afterOrro = {}, complexScalar = {}, orro = {},
                                all = {};
};
inline VariantArray view(const std::vector<BuiltinVariant>& list) {
    return list.empty() ? VariantArray(nullptr, 0) : VariantArray(list.data(), list.size());
}

class TestFcn final : public BuiltinFcn {
public:
    TestFcn() = default;
    TestFcn(const Lists& l, BuiltinVariant defaultImpl)
        : BuiltinFcn("testfcn", capabilities::CapabilityList(5),
                     {.all = view(l.all),
                      .searchedByOrro = view(l.orro),
                      .searchedByInvokeNoOrro = view(l.noOrro),
                      .searchedByInvokeAfterOrro = view(l.afterOrro),
                      .searchedByInvokeAfterOrroComplexScalar = view(l.complexScalar)},
                     std::move(defaultImpl)) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, Consider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new TestFcn(*this); }
};

// One call asking for one output; the value of its double result.
inline double callForOne(const BuiltinFcn& fcn, std::vector<kaArray_tag*> args,
                         Consider consider = Consider::InvokeNoOrro) {
    kaArray_tag* plhs[1] = {nullptr};
    fcn.invoke(1, plhs, static_cast<int>(args.size()), args.data(), consider);
    const ka::ArrayPtr result(plhs[0]);
    if (!result || matrix::classId(result.get()) != kaDOUBLE_CLASS)
        throw std::logic_error("not a double");
    return static_cast<const double*>(matrix::data(result.get()))[0];
}

}  // namespace invoketest
