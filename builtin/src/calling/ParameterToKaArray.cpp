// Delivery of a typed result as an array.
#include "ParameterToKaArray.hpp"

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/types/NumericScalarTypes.hpp>

namespace Norvane::builtin {

namespace {

// A 16-bit result is a character or a number; only the declaration of the output can tell.
bool declaresCharOutput(const BuiltinVariant& variant) {
    static const ArgType charScalar =
        types::NumericScalarTypes(kaCHAR_CLASS, types::NumericScalarTypes::Complexity::REAL);
    return !variant.outputArgTypes.empty() && variant.outputArgTypes.front() == charScalar;
}

class ToKaArray : public boost::static_visitor<kaArray_tag*> {
public:
    explicit ToKaArray(const BuiltinVariant& variant) : variant_(variant) {}

    kaArray_tag* operator()(kaArray_tag* array) const { return array; }

    kaArray_tag* operator()(unsigned short value) const {
        return declaresCharOutput(variant_) ? box(static_cast<char16_t>(value)) : box(value);
    }

    template <class T>
    kaArray_tag* operator()(T value) const {
        return box(value);
    }

private:
    template <class T>
    static kaArray_tag* box(T value) {
        kaArray_tag* out = nullptr;
        builtinreg::detail::parameterConversionImpl(&out, value);
        return out;
    }

    const BuiltinVariant& variant_;
};

}  // namespace

kaArray_tag* parameterToKaArray(const Parameter& result, const BuiltinVariant& variant) {
    return boost::apply_visitor(ToKaArray(variant), result);
}

}  // namespace Norvane::builtin
