// A variant against a live call of real arrays: the count rules, the element-wise retry and its
// shape test, and what the signature's cache keeps.
#include <gtest/gtest.h>

#include <ka/ka.hpp>

#include <builtin/types/classifyKaArray.hpp>
#include <builtin/variants/VariantSignature.hpp>

#include "VariantBuilders.hpp"
#include "live_arrays.hpp"

namespace varianttest {
namespace {

class VariantAcceptance : public testsupport::LiveArrayTest {};

bool accepts(const BuiltinVariant& variant, std::size_t nlhs, std::vector<kaArray_tag*> args) {
    ClassificationCache cache;
    return variant == VariantSignature(nlhs, args.size(), args.data(), &cache);
}

TEST_F(VariantAcceptance, CountsOfInputsAndOutputs) {
    const ka::ArrayPtr x = ka::scalar(2.0);
    const struct {
        const char* name;
        Declaration declaration;
        std::size_t nlhs;
        std::vector<kaArray_tag*> args;
        bool accepted;
    } cases[] = {
        {"nothing for nothing", {}, 0, {}, true},
        {"one output for none asked", {.out = {scalar()}}, 0, {}, true},
        {"two outputs for none asked", {.out = {scalar(), scalar()}}, 0, {}, false},
        {"one input for two given", {.in = {scalar()}}, 0, {x.get(), x.get()}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(accepts(makeVariant(c.declaration), c.nlhs, c.args), c.accepted);
    }
}

TEST_F(VariantAcceptance, ElementWiseShapeTest) {
    const auto lifted = [](std::size_t inputs) {
        return makeVariant({.in = std::vector<ArgType>(inputs, scalar()), .elementWise = V::IsElementWise::YES});
    };
    const struct { const char* name; BuiltinVariant variant; std::vector<ka::Dims> shapes; bool accepted; } cases[] = {
        {"2x3 with 2x1", lifted(2), {{2, 3}, {2, 1}}, true},
        {"2x3 with 3x2", lifted(2), {{2, 3}, {3, 2}}, false},
        {"0x3 with 0x3", lifted(2), {{0, 3}, {0, 3}}, false},
        {"2x3 with 2x3x4: third not compared", lifted(2), {{2, 3}, {2, 3, 4}}, true},
        {"2x3x4 with 2x3x5", lifted(2), {{2, 3, 4}, {2, 3, 5}}, false},
        {"one empty array", lifted(1), {{0, 3}}, true},
        {"three arrays", lifted(3), {{2, 2}, {2, 2}, {2, 2}}, false},
        {"flag between two arrays that disagree",
         makeVariant({.in = {scalar(), flag("x"), scalar()}, .elementWise = V::IsElementWise::YES}),
         {{2, 3}, {1, 1}, {3, 2}}, false},
        {"not element-wise", makeVariant({.in = {scalar()}}), {{2, 3}}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<ka::ArrayPtr> arrays;
        std::vector<kaArray_tag*> args;
        for (const ka::Dims& dims : c.shapes) {
            arrays.push_back(ka::createNumeric(kaDOUBLE_CLASS, dims));
            args.push_back(arrays.back().get());
        }
        EXPECT_EQ(accepts(c.variant, 0, args), c.accepted);
    }
}

TEST_F(VariantAcceptance, CacheKeepsOnlyWhatWasReachedAndClassified) {
    const ka::ArrayPtr x = ka::scalar(1.0);
    const ka::ArrayPtr widget = ka::createObject(static_cast<kaClassID>(50), "Widget", std::make_shared<int>(1));
    kaArray_tag* args[] = {widget.get(), x.get(), nullptr};
    ClassificationCache cache;
    const VariantSignature signature(0, 3, args, &cache);

    // Refused at the first input: nothing behind it is classified. An instance of an unknown
    // class is unsupported and not kept, so it is asked about again.
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(makeVariant({.in = {anyArray(kaUNKNOWN_CLASS), scalar(), scalar()}}) == signature);
        ASSERT_EQ(cache.size(), 1u);
        EXPECT_EQ(cache[0].converter, nullptr);
    }
    EXPECT_EQ(signature.getArgType(1), scalar());
    EXPECT_NE(cache[1].converter, nullptr);
    // A null argument is unsupported and passes on as null.
    EXPECT_EQ(signature.getArgType(2).index(), 0u);
    EXPECT_EQ(boost::get<kaArray_tag*>(signature.toParameter(2, nullptr)), nullptr);
    // An unknown instance handed on anyway comes with a reference of its own.
    const Parameter passed = signature.toParameter(0, nullptr);
    EXPECT_EQ(widget->refCount, 2u);
    matrix::releaseReference(boost::get<kaArray_tag*>(passed));
}

// The signature answers plain scalars without the general classification; whatever the way, it
// must agree with classifyKaArray on the type and the converter.
TEST_F(VariantAcceptance, SignatureClassifiesAsTheCommonCore) {
    const ka::ArrayPtr arrays[] = {
        ka::scalar(2.0), ka::scalar(true), ka::scalar(u'x'), ka::scalar<std::uint64_t>(7),
        ka::scalar(std::complex<double>(1, 2)),
        ka::createNumeric(kaINT8_CLASS, {1, 1}, kaCOMPLEX),
        ka::createSparse(kaDOUBLE_CLASS, 1, 1, {}),
        ka::createNumeric(kaDOUBLE_CLASS, {1, 1, 2}),
        ka::createNumeric(kaDOUBLE_CLASS, {1, 0}),
        ka::row({1.0, 2.0}),
        ka::createCell({1, 1}),
    };
    for (const ka::ArrayPtr& array : arrays) {
        SCOPED_TRACE(testing::Message() << "class " << array->storedClass);
        kaArray_tag* args[] = {array.get()};
        ClassificationCache cache;
        const VariantSignature signature(0, 1, args, &cache);
        const auto [type, converter] = types::classifyKaArray(array.get());
        EXPECT_EQ(signature.getArgType(0), type);
        EXPECT_EQ(cache[0].converter, converter);
    }
}

}  // namespace
}  // namespace varianttest
