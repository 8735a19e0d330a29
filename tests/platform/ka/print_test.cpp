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
        {"decimals", ka::fromRows<double>(2, 2, {1.5, 2.25, -3, 4}),
         "x =\n\n     1.5000     2.2500\n    -3.0000     4.0000\n\n"},
        {"large values", ka::row({1.0e6, 2.5}), "x =\n\n   1.0000e+06   2.5000e+00\n\n"},
        {"non-finite", ka::row({std::nan(""), -inf, 1.0}), "x =\n\n    NaN   -Inf      1\n\n"},
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

TEST_F(PrintTest, PagesTextAndContainers) {
    const char16_t rows[] = {u'a', u'c', u'b', u'd'};
    struct Case {
        ka::ArrayPtr array;
        const char* text;
    };
    Case cases[] = {
        {ka::createFrom<double>({1, 2, 2}, std::vector<double>{1, 2, 3, 4}),
         "x(:,:,1) =\n\n     1     2\n\nx(:,:,2) =\n\n     3     4\n\n"},
        {ka::charArray("h\xC3\xA9llo"), "x =\n\n    'h\xC3\xA9llo'\n\n"},
        {ka::createFrom<char16_t>({2, 2}, std::span<const char16_t>(rows)), "x =\n\n    'ab'\n    'cd'\n\n"},
        {ka::createSparse(kaDOUBLE_CLASS, 12, 2, {{0, 0, 1.0}, {11, 1, 5.0}}),
         "x =\n\n    (1,1)       1\n   (12,2)       5\n\n"},
        {ka::createSparse(kaLOGICAL_CLASS, 3, 3, {}), "x =\n\n   All zero sparse: 3x3\n\n"},
        {ka::createCell({1, 3}, list(ka::scalar(1.0), ka::charArray("abc"),
                                     ka::createNumeric(kaDOUBLE_CLASS, {2, 2}))),
         "x =\n\n  1x3 cell array\n\n    {[1]}    {'abc'}    {2x2 double}\n\n"},
        {ka::createCell({0, 0}), "x =\n\n    {}\n\n"},
        {ka::createCell({2, 1}, list(ka::row({1.0, 2.0}), ka::createCell({1, 2}))),
         "x =\n\n  2x1 cell array\n\n    {[1 2]}\n    {1x2 cell}\n\n"},
        {ka::createStruct({1, 1}, {"name", "age", "scores"},
                          list(ka::charArray("Ada"), ka::scalar(36.0), ka::createNumeric(kaINT8_CLASS, {3, 3}))),
         "x =\n\n  struct with fields:\n\n      name: 'Ada'\n       age: 36\n    scores: [3x3 int8]\n\n"},
        {ka::createStruct({1, 2}, {"a", "b"}), "x =\n\n  1x2 struct array with fields:\n\n    a\n    b\n\n"},
        {ka::createFunctionHandle("sin"), "x =\n\n    @sin\n\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(ka::toDisplayString(c.array.get(), "x"), c.text);
    }
}

TEST_F(PrintTest, Objects) {
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
