// The display of each kind of array, as golden texts.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using testsupport::LiveArrayTest;

class PrintTest : public LiveArrayTest {};

std::vector<ka::ArrayPtr> list(ka::ArrayPtr a, ka::ArrayPtr b, ka::ArrayPtr c) {
    std::vector<ka::ArrayPtr> out;
    for (ka::ArrayPtr* p : {&a, &b, &c}) out.push_back(std::move(*p));
    return out;
}

TEST_F(PrintTest, NumbersPagesTextAndContainers) {
    struct Case {
        ka::ArrayPtr array;
        const char* text;
    };
    Case cases[] = {
        {ka::row({1.0, 2.0}), "x =\n\n     1     2\n\n"},
        {ka::row({std::nan(""), -std::numeric_limits<double>::infinity(), 1.0}),
         "x =\n\n    NaN   -Inf      1\n\n"},
        {ka::createFrom<double>({1, 2, 2}, std::vector<double>{1, 2, 3, 4}),
         "x(:,:,1) =\n\n     1     2\n\nx(:,:,2) =\n\n     3     4\n\n"},
        {ka::charArray("h\xC3\xA9llo"), "x =\n\n    'h\xC3\xA9llo'\n\n"},
        {ka::createSparse(kaDOUBLE_CLASS, 12, 2, {{0, 0, 1.0}, {11, 1, 5.0}}),
         "x =\n\n    (1,1)       1\n   (12,2)       5\n\n"},
        {ka::createCell({1, 3}, list(ka::scalar(1.0), ka::charArray("abc"), ka::createNumeric(kaDOUBLE_CLASS, {2, 2}))),
         "x =\n\n  1x3 cell array\n\n    {[1]}    {'abc'}    {2x2 double}\n\n"},
        {ka::createStruct({1, 1}, {"name", "age", "scores"},
                          list(ka::charArray("Ada"), ka::scalar(36.0), ka::createNumeric(kaINT8_CLASS, {3, 3}))),
         "x =\n\n  struct with fields:\n\n      name: 'Ada'\n       age: 36\n    scores: [3x3 int8]\n\n"},
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
