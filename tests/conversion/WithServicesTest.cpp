// A process with the reference string bundle (string class 19) and an in-process class
// provider: strings classify as flags or string types, known classes as engine objects, and
// strings and objects cross between arrays and pointers through the services.
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/types/StringTraits.hpp>

#include <stringbundle/KeldorString.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include "../services/ServiceDoubles.hpp"
#include "LiveArrays.hpp"

namespace conversiontest {
namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using Shape = KaArrayTypes::Shape;
using Norvane::orro::OrroObject;

constexpr auto stringClass = static_cast<kaClassID>(19);
constexpr auto knownClass = static_cast<kaClassID>(40);
constexpr auto unknownClass = static_cast<kaClassID>(41);

ArgType full(kaClassID element, Shape shape) {
    return KaArrayTypes(element, shape, KaArrayTypes::Density::FULL,
                        KaArrayTypes::Complexity::NOT_COMPLEX, 0);
}

using servicedoubles::ObjectPayload;
constexpr auto objectOf = &servicedoubles::StubClassProvider::objectOf;

class WithServices : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() {
        unsetenv("KELDOR_INSTALL_ROOT");  // the build tree's bundles
        foundation::cppmicroservices::createFramework();
        servicedoubles::registerDouble<IZOBJRegWrapper>(
            std::make_shared<servicedoubles::StubClassProvider>(40));
        builtinreg::addAsKnownOrroObject(knownClass);
    }

    static ka::ArrayPtr object(kaClassID classId, kaClassID storedClass = kaOPAQUE_CLASS) {
        return ka::createObject(classId, "Known",
                                std::make_shared<ObjectPayload>(ObjectPayload{7, true}), {1, 1},
                                storedClass);
    }

    static ka::ArrayPtr strings(std::initializer_list<std::u16string> texts) {
        const std::size_t dims[] = {1, texts.size()};
        return getHeldService<StringSupport>()->createString(dims, texts);
    }
};

TEST_F(WithServices, StringsAndObjectsClassify) {
    ASSERT_NE(getHeldService<StringSupport>(), nullptr);
    const auto one = strings({u"on"});
    const auto flag = classifyKaArray(one.get()).first;
    ASSERT_TRUE(std::holds_alternative<FlagInputType>(flag));
    EXPECT_EQ(std::get<FlagInputType>(flag).value.index(), 1u) << "views the text";
    EXPECT_EQ(std::get<FlagInputType>(flag).getValue(), u"on");

    const std::pair<ka::ArrayPtr, ArgType> cases[] = {
        {strings({u"a", u"b"}), KeldorStringType(KeldorStringType::Shape::ANY)},
        {object(knownClass), OrroObjectTypes(knownClass, 7, true)},
        {object(knownClass, kaSTRUCT_CLASS), OrroObjectTypes(knownClass, 7, true)},
        {object(unknownClass), UnsupportedArgType{}},
        {object(unknownClass, kaSTRUCT_CLASS), full(kaSTRUCT_CLASS, Shape::SCALAR)},
        {object(knownClass, kaOBJECT_CLASS), UnsupportedArgType{}},
    };
    for (const auto& [array, expected] : cases) {
        const ArgType type = getArgTypeOfKaArray(array.get());
        EXPECT_EQ(type, expected);
        const auto* objectType = std::get_if<OrroObjectTypes>(&type);
        EXPECT_TRUE(objectType == nullptr || objectType->typeFlag);
    }
}

// An opaque object is unboxed only for a declared object, one stored as a struct always; engine
// strings and objects box through the services.
TEST_F(WithServices, StringsAndObjectsCrossThroughTheServices) {
    const ArgType declaredObject = OrroObjectTypes(knownClass, 7, true);
    const ArgType declaredString = KeldorStringType(KeldorStringType::Shape::ANY);
    const auto opaque = object(knownClass);
    const auto asStruct = object(knownClass, kaSTRUCT_CLASS);
    const auto text = strings({u"on"});
    const Converter opaqueConverter = classifyKaArray(opaque.get()).second;
    EXPECT_EQ(boost::get<OrroObject*>(opaqueConverter(opaque.get(), &declaredObject)),
              objectOf(opaque.get()));
    EXPECT_EQ(classifyKaArray(text.get()).second, opaqueConverter);
    EXPECT_EQ(boost::get<kaArray_tag*>(opaqueConverter(text.get(), &declaredString)), text.get());
    matrix::releaseReference(text.get());
    const Converter structConverter = classifyKaArray(asStruct.get()).second;
    EXPECT_EQ(boost::get<OrroObject*>(structConverter(asStruct.get(), nullptr)),
              objectOf(asStruct.get()));
    EXPECT_EQ(opaque->refCount + asStruct->refCount, 2u);

    Norvane::String::String engineString(u"hello");
    kaArray_tag* out = nullptr;
    builtinreg::detail::parameterConversionImpl(&out, &engineString);
    const ka::ArrayPtr boxedString(out);
    EXPECT_EQ(getArgTypeOfKaArray(boxedString.get()),
              ArgType(FlagInputType(std::u16string(u"hello"))));
    builtinreg::detail::parameterConversionImpl(&out,
                                                static_cast<Norvane::String::String*>(nullptr));
    EXPECT_EQ(out, nullptr);
    int engineObject = 0;
    builtinreg::detail::parameterConversionImpl(&out, reinterpret_cast<OrroObject*>(&engineObject));
    const ka::ArrayPtr boxedObject(out);
    EXPECT_EQ(objectOf(boxedObject.get()), reinterpret_cast<OrroObject*>(&engineObject));
}

TEST_F(WithServices, StringTraitsUseTheService) {
    boost::container::small_vector<ka::ConstArrayPtr, 2> holders;
    EXPECT_EQ(TypeTraitsImpl<std::u16string_view>()(strings({u"\u00e9t\u00e9"}).release(), holders),
              u"\u00e9t\u00e9");
    EXPECT_EQ(TypeTraitsImpl<std::string>()(strings({u"ab"}).release(), holders), "ab");
    const auto chars = ka::charArray(std::u16string_view(u"cd"));
    matrix::takeReference(chars.get());
    EXPECT_EQ(TypeTraitsImpl<std::u16string>()(chars.get(), holders), u"cd");
    EXPECT_THROW(TypeTraitsImpl<std::u16string>()(ka::scalar(1.0).release(), holders),
                 std::invalid_argument);

    const ka::ArrayPtr made(TypeTraitsImpl<std::string>()(std::string("x\xc3\xa9")));
    EXPECT_EQ(getArgTypeOfKaArray(made.get()), ArgType(FlagInputType(std::u16string(u"x\u00e9"))));
    EXPECT_EQ(TypeTraitsImpl<std::u16string>::getArgType(0), full(stringClass, Shape::SCALAR));
}

}  // namespace
}  // namespace conversiontest
