// The stack of running variants of each tavi, and the check of a declaration of no call-backs.
// The stack's slot in the tavi store has one id for the whole process, asked for once.
#include <builtin/invoke/CallsKeldorCheck.hpp>

#include <deque>
#include <stack>
#include <string>

#include <fl/diag.hpp>
#include <foundation/usm/store.hpp>

namespace Norvane::builtin {

namespace {

using Tavi = foundation::usm::Detail<foundation::usm::scope::Tavi>;

constexpr const char* kSourcePath = "builtin2/interface/builtin/CallsKeldorCheck";

// The variants running in one tavi, the innermost on top.
struct VariantStack {
    std::stack<const BuiltinVariant*, std::deque<const BuiltinVariant*>> variants;
};

foundation::usm::ID variantStackId() {
    static const foundation::usm::ID id = Tavi::getNextID(typeid(VariantStack));
    return id;
}

// The stack of the current tavi, made by the first variant that runs there; null if the store
// holds something else under the stack's id.
VariantStack* stackForPush() {
    const foundation::usm::ID id = variantStackId();
    try {
        return static_cast<VariantStack*>(Tavi::findOrThrow(id, typeid(VariantStack)));
    } catch (const foundation::usm::DoesNotExistTypeError&) {
        return static_cast<VariantStack*>(
            Tavi::insert(id, typeid(VariantStack), foundation::usm::makeValue<VariantStack>()));
    } catch (const foundation::usm::TypeError&) {
        return nullptr;
    }
}

}  // namespace

namespace builtinreg {

CallsKeldorCheckAsserted::CallsKeldorCheckAsserted(const BuiltinVariant* variant) : pushed(false) {
    VariantStack* stack = stackForPush();
    if (stack != nullptr) {
        stack->variants.push(variant);
        pushed = true;
    }
}

// A scope that pushed has seen the stack, so the slot is there; findOrFail stops otherwise.
CallsKeldorCheckAsserted::~CallsKeldorCheckAsserted() {
    if (pushed) {
        static_cast<VariantStack*>(Tavi::findOrFail(variantStackId(), typeid(VariantStack)))
            ->variants.pop();
    }
}

}  // namespace builtinreg

void nvDoesNotCallKELDORAssertion() {
    const auto* stack =
        static_cast<const VariantStack*>(Tavi::find(variantStackId(), typeid(VariantStack)));
    if (stack == nullptr || stack->variants.empty()) {
        return;
    }
    const BuiltinVariant* innermost = stack->variants.top();
    if (innermost == nullptr ||
        innermost->mayCallIntoKeldor != BuiltinVariant::CallsIntoKeldor::NO ||
        !fl_diag_terminate()) {
        return;
    }
    // The two sentences run together: that is the text tools and people search for.
    const std::string text = "The " + innermost->cppFunctionName +
                             " implementation of the KELDOR builtin function " +
                             innermost->keldorFunctionName +
                             " is marked as not calling into keldor, but does.Need to change "
                             "builtin doxygen from \"nvDoesNotCallKELDOR true\" to "
                             "\"nvDoesNotCallKELDOR false\"\n";
    foundation::core::diag::terminate(text, kSourcePath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace Norvane::builtin
