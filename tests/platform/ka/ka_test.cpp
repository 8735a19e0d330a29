// The array library: shapes, creation of every kind of array, release by both counts, containers
// and the arrays they own, typed views, and warnings to stderr. Sparse arrays are read where the
// library classifies them (tests/conversion/ClassificationTest.cpp).
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "ArrayValues.hpp"
#include "LiveArrays.hpp"

namespace {

using Dims = std::vector<std::size_t>;
using testsupport::dimsOf;
using testsupport::elementsOf;

class KaTest : public testsupport::LiveArrayTest {};

TEST_F(KaTest, CreationNormalisesDimensions) {
    struct Case {
        Dims given, stored;
        bool twoD, scalar, empty;
        std::size_t n;
    };
    const Case cases[] = {
        {{}, {1, 1}, true, true, false, 1},
        {{5}, {5, 1}, true, false, false, 1},
        {{2, 3, 1, 1}, {2, 3}, true, false, false, 3},
        {{2, 3, 4, 1}, {2, 3, 4}, false, false, false, 12},
        {{0, 3}, {0, 3}, true, false, true, 3},
        {{2, 0, 3}, {2, 0, 3}, false, false, true, 0},
    };
    namespace api = matrix::detail::noninlined::ka_array_api;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.given));
        ka::ArrayPtr a = ka::createNumeric(kaDOUBLE_CLASS, c.given);
        EXPECT_EQ(dimsOf(a.get()), c.stored);
        EXPECT_EQ(matrix::numberOfDimensions(a.get()), c.stored.size());
        EXPECT_EQ(matrix::isTwoD(a.get()), c.twoD);
        EXPECT_EQ(api::kaIsScalar(a.get()), c.scalar);
        EXPECT_EQ(api::kaIsEmpty(a.get()), c.empty);
        EXPECT_EQ(api::kaGetN(a.get()), c.n);
    }
}

TEST_F(KaTest, FactoryMakesEveryNumericClassRealAndComplex) {
    const std::size_t dims[] = {3, 5};
    for (int id = kaLOGICAL_CLASS; id <= kaUINT64_CLASS; ++id) {
        for (kaComplexity c : {kaREAL, kaCOMPLEX}) {
            if (id == kaVOID_CLASS ||
                (c == kaCOMPLEX && (id == kaLOGICAL_CLASS || id == kaCHAR_CLASS)))
                continue;
            const auto cls = static_cast<kaClassID>(id);
            SCOPED_TRACE(testing::Message() << ka::className(cls) << (c ? " complex" : ""));
            ka::ArrayPtr a = matrix::detail::do_create_uninitnumeric(dims, cls, c);
            EXPECT_EQ(matrix::classId(a.get()), cls);
            EXPECT_EQ(matrix::isComplex(a.get()), c == kaCOMPLEX);
            EXPECT_EQ(a->refCount, 1u);
            EXPECT_EQ(a->pinCount, 0);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a->data) % 64, 0u);
            // Every byte is writable: the sanitizer build catches a short block.
            std::memset(a->data, 0xab, 15 * ka::elementSize(cls) * (c == kaCOMPLEX ? 2 : 1));
        }
    }
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaCELL_CLASS, kaREAL),
                 std::invalid_argument);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaLOGICAL_CLASS, kaCOMPLEX),
                 std::invalid_argument);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaDOUBLE_CLASS,
                                                         static_cast<kaComplexity>(2)),
                 std::invalid_argument);
    const std::size_t huge[] = {SIZE_MAX / 2, 3};
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric(huge, kaDOUBLE_CLASS, kaREAL),
                 std::bad_alloc);
}

TEST_F(KaTest, ValuesGoInColumnMajorOrder) {
    EXPECT_EQ(elementsOf<double>(ka::fromRows<double>(2, 3, {1, 2, 3, 4, 5, 6})),
              (std::vector<double>{1, 4, 2, 5, 3, 6}));
    EXPECT_EQ(elementsOf<double>(ka::scalar(std::complex<double>(1, 2))),
              (std::vector<double>{1, 2}));
    ka::ArrayPtr flags = ka::row({true, false, true});
    EXPECT_EQ(matrix::classId(flags.get()), kaLOGICAL_CLASS);
    EXPECT_EQ(elementsOf<bool>(flags), (std::vector<bool>{true, false, true}));
    EXPECT_THROW(ka::fromRows<float>(2, 2, {1, 2, 3}), std::invalid_argument);  // and leaks nothing
    // UTF-8 in, UTF-16 code units stored: a surrogate pair takes two.
    ka::ArrayPtr text = ka::charArray("h\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(matrix::classId(text.get()), kaCHAR_CLASS);
    EXPECT_EQ(elementsOf<char16_t>(text), (std::vector<char16_t>{u'h', u'\u00e9', 0xD83D, 0xDE00}));
}

TEST_F(KaTest, FunctionHandlesAndObjectsAnswerTheirClassThroughTheLibrary) {
    ka::ArrayPtr f = ka::createFunctionHandle("sin");
    EXPECT_EQ(matrix::classId(f.get()), kaFUNCTION_CLASS);
    EXPECT_EQ(ka::functionName(f.get()), "sin");
    EXPECT_THROW(ka::createFunctionHandle(""), std::invalid_argument);
    // How each stored class reads through the library: tests/conversion/ClassificationTest.cpp.
    const auto stringClass = static_cast<kaClassID>(19);
    auto text =
        std::make_shared<std::vector<std::u16string>>(std::vector<std::u16string>{u"a", u"bc"});
    ka::ArrayPtr s = ka::createObject(stringClass, "string", text, {1, 2}, kaOPAQUE_CLASS);
    EXPECT_EQ(matrix::classId(s.get()), stringClass);
    EXPECT_EQ(ka::objectClassName(s.get()), "string");
    EXPECT_EQ(ka::payloadAs<std::vector<std::u16string>>(s.get()), text.get());
    EXPECT_EQ(ka::payloadAs<std::string>(s.get()), nullptr);
    EXPECT_EQ(matrix::numberOfElements(s.get()), 2u);
    s.reset();
    EXPECT_EQ(text.use_count(), 1);
    // Only classes of the class system make objects, and only stored as one of those three.
    ka::ObjectDescription description;
    description.classId = kaOBJECT_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    description.classId = static_cast<kaClassID>(25);
    description.storedClass = kaDOUBLE_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    EXPECT_EQ(ka::objectClassName(ka::scalar(1.0).get()), "");  // plain arrays are no objects
}

// What a take does to the counts and the temporary mark: tests/conversion/ConversionTest.cpp.
TEST_F(KaTest, ReleaseFollowsBothCounts) {
    matrix::releaseReference(nullptr);
    matrix::detail::kaDestroy_deleter{}(nullptr);
    struct Case {
        std::uint32_t first;
        std::int32_t second;
        bool destroyed;
        std::uint32_t firstAfter;
    };
    // A second count that is not positive holds nothing; a positive one keeps the array alive.
    for (const Case& c :
         {Case{1, 0, true, 0}, Case{1, -1, true, 0}, Case{1, 1, false, 0}, Case{5, 3, false, 4}}) {
        SCOPED_TRACE(testing::Message() << "counts (" << c.first << "," << c.second << ")");
        kaArray* a = ka::scalar(1.0).release();
        a->refCount = c.first;
        a->pinCount = c.second;
        matrix::releaseReference(a);
        EXPECT_EQ(alive(), c.destroyed ? 0 : 1);
        if (!c.destroyed) {
            EXPECT_EQ(a->refCount, c.firstAfter);
            EXPECT_EQ(a->pinCount, c.second);
            matrix::destroyArray(a);
        }
    }
}

std::vector<ka::ArrayPtr> list(ka::ArrayPtr a, ka::ArrayPtr b = nullptr, ka::ArrayPtr c = nullptr) {
    std::vector<ka::ArrayPtr> out;
    for (ka::ArrayPtr* p : {&a, &b, &c})
        if (*p) out.push_back(std::move(*p));
    return out;
}

TEST_F(KaTest, ContainersOwnOneReferenceOfEachElementAndRefuseBadShapes) {
    ka::ArrayPtr shared = ka::scalar(1.0);
    matrix::takeReference(shared.get());  // one for us, one for the cell
    std::vector<ka::ArrayPtr> elements;
    elements.emplace_back(shared.get());
    elements.push_back(ka::charArray("abc"));
    elements.push_back(nullptr);
    ka::ArrayPtr cell = ka::createCell({1, 3}, std::move(elements));
    EXPECT_EQ(alive(), 3);
    EXPECT_EQ(ka::cellElement(cell.get(), 0), shared.get());
    EXPECT_EQ(ka::cellElement(cell.get(), 2), nullptr);
    EXPECT_THROW(ka::cellElement(cell.get(), 3), std::out_of_range);
    ka::setCellElement(cell.get(), 1, ka::row({1.0, 2.0}));
    EXPECT_EQ(alive(), 3);  // the char array went, the row came
    cell.reset();
    EXPECT_EQ(alive(), 1);
    EXPECT_EQ(shared->refCount, 1u);

    // Nested containers go with their owner.
    ka::ArrayPtr top = ka::createCell(
        {1, 1},
        list(ka::createStruct({1, 1}, {"c"}, list(ka::createCell({1, 1}, list(ka::scalar(1.0)))))));
    EXPECT_EQ(alive(), 5);
    EXPECT_EQ(matrix::classId(ka::field(ka::cellElement(top.get(), 0), 0, "c")), kaCELL_CLASS);
    EXPECT_THROW(ka::field(ka::cellElement(top.get(), 0), 0, "d"), std::out_of_range);
    top.reset();
    EXPECT_EQ(alive(), 1);

    EXPECT_THROW(ka::createSparse(kaINT8_CLASS, 2, 2, {}), std::invalid_argument);
    EXPECT_THROW(ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{2, 0, 1.0}}), std::invalid_argument);
    EXPECT_THROW(ka::createCell({1, 3}, list(ka::scalar(1.0), ka::scalar(2.0))),
                 std::invalid_argument);
    EXPECT_THROW(ka::cellElement(ka::scalar(1.0).get(), 0), std::invalid_argument);
    EXPECT_THROW(ka::createStruct({1, 1}, {"a", "a"}), std::invalid_argument);
}

TEST_F(KaTest, ViewRefusalNamesTheViewAndTheArray) {
    ka::ArrayPtr a = ka::fromRows<float>(2, 3, {1, 2, 3, 4, 5, 6});
    std::string text;
    try {
        matrix::typed_array<double> view(a.get());
    } catch (const std::invalid_argument& e) {
        text = e.what();
    }
    EXPECT_EQ(text, "array of class id 7 (single), 2x3, does not fit matrix::typed_array<double>");
    EXPECT_THROW(matrix::typed_sparse_matrix<float>(a.get()), std::invalid_argument);
    EXPECT_THROW(matrix::detail::rejectInvalidClassId(static_cast<kaClassID>(99)),
                 std::invalid_argument);
}

TEST(KaWarning, DefaultWritesUtf8ToStderr) {
    ka::WarningHandler previous = ka::setWarningHandler({});
    testing::internal::CaptureStderr();
    matrix::handleWarning(u"caf\u00e9 closed");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: caf\xC3\xA9 closed\n");
    ka::setWarningHandler(previous);
}

}  // namespace
