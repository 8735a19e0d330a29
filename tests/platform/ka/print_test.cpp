// The display of each kind of array, as golden texts.
#include <gtest/gtest.h>

#include <complex>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using testsupport::LiveArrayTest;

class PrintTest : public LiveArrayTest {};

std::vector<ka::ArrayPtr> list(ka::ArrayPtr a, ka::ArrayPtr b = nullptr, ka::ArrayPtr c = nullptr) {
    std::vector<ka::ArrayPtr> out;
    out.push_back(std::move(a));
    if (b) out.push_back(std::move(b));
    if (c) out.push_back(std::move(c));
    return out;
}

TEST_F(PrintTest, Numbers) {
    const double inf = std::numeric_limits<double>::infinity();
    struct Case {
        const char* what;
        ka::ArrayPtr array;
        const char* text;
    };
    Case cases[] = {
        {"integral doubles", ka::row({1.0, 2.0}), "x =\n\n     1     2\n\n"},
        {"a scalar", ka::scalar(-7.0), "x =\n\n    -7\n\n"},
        {"decimals", ka::fromRows<double>(2, 2, {1.5, 2.25, -3, 4}),
         "x =\n\n     1.5000     2.2500\n    -3.0000     4.0000\n\n"},
        {"large values", ka::row({1.0e6, 2.5}), "x =\n\n   1.0000e+06   2.5000e+00\n\n"},
        {"non-finite", ka::row({std::nan(""), -inf, 1.0}), "x =\n\n    NaN   -Inf      1\n\n"},
        {"int8", ka::row<std::int8_t>({1, -2, 3}), "x =\n\n   1  -2   3\n\n"},
        {"uint64 beyond double", ka::scalar<std::uint64_t>(18446744073709551615u),
         "x =\n\n  18446744073709551615\n\n"},
        {"logical", ka::row({true, false}), "x =\n\n   1   0\n\n"},
        {"complex", ka::row({std::complex<double>(1, 2), std::complex<double>(3, -1)}),
         "x =\n\n   1 + 2i   3 - 1i\n\n"},
        {"complex decimals", ka::scalar(std::complex<float>(0.5f, -0.25f)),
         "x =\n\n   0.5000 - 0.2500i\n\n"},
        {"empty", ka::createNumeric(kaDOUBLE_CLASS, {0, 3}), "x =\n\n     []\n\n"},
        {"null", nullptr, "x =\n\n     []\n\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(ka::toDisplayString(c.array.get(), "x"), c.text);
    }
}

TEST_F(PrintTest, PagesOfAnNdArray) {
    ka::ArrayPtr a = ka::createFrom<double>({1, 2, 2}, std::vector<double>{1, 2, 3, 4});
    EXPECT_EQ(ka::toDisplayString(a.get(), "a"),
              "a(:,:,1) =\n\n     1     2\n\n"
              "a(:,:,2) =\n\n     3     4\n\n");
}

TEST_F(PrintTest, Text) {
    EXPECT_EQ(ka::toDisplayString(ka::charArray("h\xC3\xA9llo").get(), "s"),
              "s =\n\n    'h\xC3\xA9llo'\n\n");
    EXPECT_EQ(ka::toDisplayString(ka::charArray("").get(), "s"), "s =\n\n    ''\n\n");
    const char16_t rows[] = {u'a', u'c', u'b', u'd'};
    ka::ArrayPtr block = ka::createFrom<char16_t>({2, 2}, std::span<const char16_t>(rows));
    EXPECT_EQ(ka::toDisplayString(block.get(), "s"), "s =\n\n    'ab'\n    'cd'\n\n");
}

TEST_F(PrintTest, Sparse) {
    ka::ArrayPtr s = ka::createSparse(kaDOUBLE_CLASS, 12, 2, {{0, 0, 1.0}, {11, 1, 5.0}});
    EXPECT_EQ(ka::toDisplayString(s.get(), "S"),
              "S =\n\n    (1,1)       1\n   (12,2)       5\n\n");
    ka::ArrayPtr zero = ka::createSparse(kaLOGICAL_CLASS, 3, 3, {});
    EXPECT_EQ(ka::toDisplayString(zero.get(), "S"), "S =\n\n   All zero sparse: 3x3\n\n");
}

TEST_F(PrintTest, Cells) {
    ka::ArrayPtr cell = ka::createCell(
        {1, 3}, list(ka::scalar(1.0), ka::charArray("abc"), ka::createNumeric(kaDOUBLE_CLASS, {2, 2})));
    EXPECT_EQ(ka::toDisplayString(cell.get(), "c"),
              "c =\n\n  1x3 cell array\n\n    {[1]}    {'abc'}    {2x2 double}\n\n");
    EXPECT_EQ(ka::toDisplayString(ka::createCell({0, 0}).get(), "c"), "c =\n\n    {}\n\n");
    ka::ArrayPtr column = ka::createCell({2, 1}, list(ka::row({1.0, 2.0}), ka::createCell({1, 2})));
    EXPECT_EQ(ka::toDisplayString(column.get(), "c"),
              "c =\n\n  2x1 cell array\n\n    {[1 2]}\n    {1x2 cell}\n\n");
}

TEST_F(PrintTest, Structs) {
    ka::ArrayPtr person = ka::createStruct(
        {1, 1}, {"name", "age", "scores"},
        list(ka::charArray("Ada"), ka::scalar(36.0), ka::createNumeric(kaINT8_CLASS, {3, 3})));
    EXPECT_EQ(ka::toDisplayString(person.get(), "p"),
              "p =\n\n  struct with fields:\n\n"
              "      name: 'Ada'\n       age: 36\n    scores: [3x3 int8]\n\n");
    EXPECT_EQ(ka::toDisplayString(ka::createStruct({1, 2}, {"a", "b"}).get(), "p"),
              "p =\n\n  1x2 struct array with fields:\n\n    a\n    b\n\n");
}

TEST_F(PrintTest, HandlesAndObjects) {
    EXPECT_EQ(ka::toDisplayString(ka::createFunctionHandle("sin").get(), "f"),
              "f =\n\n    @sin\n\n");
    const auto id = static_cast<kaClassID>(41);
    ka::ArrayPtr thing = ka::createObject(id, "Gadget", std::make_shared<int>(7));
    EXPECT_EQ(ka::toDisplayString(thing.get(), "g"),
              "g =\n\n  1x1 Gadget object (class id 41)\n\n");
    ka::setObjectFormatter(id, [](const kaArray* a) {
        return "gadget " + std::to_string(*ka::payloadAs<int>(a));
    });
    EXPECT_EQ(ka::toDisplayString(thing.get(), "g"), "g =\n\n    gadget 7\n\n");
    ka::setObjectFormatter(id, {});
    EXPECT_EQ(ka::toDisplayString(thing.get(), ""), "  1x1 Gadget object (class id 41)\n\n");
}

}  // namespace
