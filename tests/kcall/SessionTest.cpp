// A kcall session end to end over a directory of three builtins: twice (a declared variant),
// noisy (an array function that warns) and broken (one that throws).
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include <live_arrays.hpp>

#include <builtin/builtin.hpp>

#include "Session.hpp"

namespace kcall {
namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using V = BuiltinVariant;

double twice(double x) { return 2 * x; }

void noisy(int, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs, OrroFunctionDescriptor*) {
    matrix::handleWarning(u"careful");
    matrix::takeReference(prhs[0]);
    plhs[0] = nrhs > 0 ? prhs[0] : nullptr;
}

void broken(int, kaArray_tag**, int, kaArray_tag**, OrroFunctionDescriptor*) {
    throw std::runtime_error("it broke");
}

class Fcn final : public BuiltinFcn {
public:
    Fcn(std::string name, const builtinreg::BuiltinVariantLists& lists, BuiltinVariant fallback)
        : BuiltinFcn(std::move(name), {}, lists, std::move(fallback), nullptr) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, VariantsToConsider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new Fcn(*this); }
};

BuiltinVariant arrayFunction(BuiltinFcn::ArrayFunction fn) {
    BuiltinVariant v;
    v.functionDescriptor.nativeEntry = reinterpret_cast<NativeEntry>(fn);
    return v;
}

std::vector<BuiltinVariant> twiceVariants() {
    const ArgType number = NumericScalarTypes(kaDOUBLE_CLASS, NumericScalarTypes::Complexity::REAL);
    std::vector<BuiltinVariant> variants;
    variants.emplace_back(reinterpret_cast<void*>(&twice),
                          OrroFunctionDescriptor{builtinreg::detail::getExportedInlineCWrapperFcn(
                                                     nullptr, parameterIndexOf<double>, parameterIndexOf<double>),
                                                 reinterpret_cast<NativeEntry>(&twice), JIT_CALLING_CONVENTION::Direct},
                          std::vector<ArgType>{number}, std::vector<ArgType>{number}, V::CallsIntoKeldor::NO,
                          V::HasWarnings::NO, V::HasExceptions::NO, V::HasSideEffects::NO, "twice", "twice", "double",
                          V::IsElementWise::NO);
    return variants;
}

class Directory final : public BuiltinDirectory {
public:
    const BuiltinFcn* find(std::string_view name) const override {
        for (const Fcn* fcn : {&twice_, &noisy_, &broken_}) {
            if (fcn->getName() == name) return fcn;
        }
        return nullptr;
    }

private:
    builtinreg::BuiltinVariantLists twiceLists_{twiceVariants()}, none_;
    Fcn twice_{"twice", twiceLists_, BuiltinVariant()};
    Fcn noisy_{"noisy", none_, arrayFunction(&noisy)};
    Fcn broken_{"broken", none_, arrayFunction(&broken)};
};

class SessionTest : public testsupport::LiveArrayTest {
protected:
    std::string run(std::initializer_list<const char*> lines, bool json = false) {
        std::ostringstream out, err;
        {
            Session session(directory_, out, err, json);
            for (const char* line : lines) failures_ += session.runLine(line) ? 0 : 1;
        }
        return out.str() + "|" + err.str();
    }
    Directory directory_;
    int failures_ = 0;
};

TEST_F(SessionTest, ResultsVariablesAndQuietLines) {
    EXPECT_EQ(run({"twice(21)"}), "ans =\n\n    42\n\n|");
    EXPECT_EQ(run({"x = twice(2);", "y = twice(x)", "twice(y);", "twice(ans)", "% nothing", ""}),
              "y =\n\n     8\n\nans =\n\n    32\n\n|");
    EXPECT_EQ(failures_, 0);
}

TEST_F(SessionTest, WarningsAndErrorsInBothForms) {
    EXPECT_EQ(run({"noisy(1);", "broken(1)", "twice(1, 2)", "nope(1)", "x = y", "f(1", "twice(int8(1))"}),
              "|Warning: careful\nError: it broke\n"
              "Error: column 1: no variant of twice takes (double 1x1, double 1x1); kcall --describe twice lists "
              "its variants\n"
              "Error: column 1: unknown function 'nope'\nError: column 5: 'y' is not defined\n"
              "Error: column 4: expected ',' or ')'\n"
              "Error: column 1: no variant of twice takes (int8 1x1); kcall --describe twice lists its variants\n");
    EXPECT_EQ(failures_, 6);
    EXPECT_EQ(run({"[1 2.5; Inf 4]", "'hi'", "noisy(true)", "broken(1)"}, true),
              "{\"class\":\"double\",\"size\":[2,2],\"complex\":false,\"data\":[1E0,\"Inf\",2.5E0,4E0]}\n"
              "{\"class\":\"char\",\"size\":[1,2],\"complex\":false,\"data\":\"hi\"}\n"
              "{\"warning\":\"careful\"}\n"
              "{\"class\":\"logical\",\"size\":[1,1],\"complex\":false,\"data\":[true]}\n"
              "{\"error\":\"it broke\"}\n|");
}

}  // namespace
}  // namespace kcall
