// kcall's own values: conversions as the language does them, and matrices by the class that
// dominates among their elements.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include <array_values.hpp>
#include <live_arrays.hpp>

#include "Values.hpp"

namespace kcall {
namespace {

class Values : public testsupport::LiveArrayTest {};

using testsupport::elementsOf;

TEST_F(Values, ConversionsRoundSaturateAndRefuse) {
    const ka::ArrayPtr numbers = ka::row({-2.5, 2.5, 300.0, -1e20, std::nan("")});
    EXPECT_EQ(elementsOf<std::int8_t>(convertTo(kaINT8_CLASS, numbers.get())), (std::vector<std::int8_t>{-3, 3, 127, -128, 0}));
    EXPECT_EQ(elementsOf<std::uint8_t>(convertTo(kaUINT8_CLASS, numbers.get())), (std::vector<std::uint8_t>{0, 3, 255, 0, 0}));
    EXPECT_EQ(elementsOf<std::uint64_t>(convertTo(kaUINT64_CLASS, ka::scalar(1e30).get())),
              std::vector<std::uint64_t>{std::numeric_limits<std::uint64_t>::max()});
    const ka::ArrayPtr big = ka::scalar<std::int64_t>(std::numeric_limits<std::int64_t>::max() - 1);
    EXPECT_EQ(elementsOf<std::int64_t>(convertTo(kaINT64_CLASS, big.get()))[0], std::numeric_limits<std::int64_t>::max() - 1)
        << "same class: every digit kept";
    EXPECT_EQ(elementsOf<bool>(convertTo(kaLOGICAL_CLASS, ka::row({0.0, 2.0}).get())), (std::vector<bool>{false, true}));
    EXPECT_EQ(elementsOf<char16_t>(convertTo(kaCHAR_CLASS, ka::row({72.0, 105.0}).get())), (std::vector<char16_t>{u'H', u'i'}));
    EXPECT_EQ(conversionClass("int32"), kaINT32_CLASS);
    EXPECT_EQ(conversionClass("plus"), std::nullopt);

    EXPECT_THROW(convertTo(kaLOGICAL_CLASS, ka::scalar(std::nan("")).get()), std::invalid_argument);
    EXPECT_THROW(convertTo(kaLOGICAL_CLASS, numberValue({1, 2}, true).get()), std::invalid_argument);
    EXPECT_THROW(convertTo(kaDOUBLE_CLASS, ka::createCell({1, 1}).get()), std::invalid_argument);
}

TEST_F(Values, MatricesTakeTheDominantClass) {
    const ka::ArrayPtr one = ka::scalar(1.0), i8 = ka::scalar<std::int8_t>(5), i16 = ka::scalar<std::int16_t>(300),
                       s = ka::scalar(2.0f), t = ka::scalar(true), a = ka::charArray("a"),
                       z = numberValue({0, 1}, true), empty = ka::createNumeric(kaDOUBLE_CLASS, {0, 0});
    const struct {
        const char* name;
        std::vector<std::vector<const kaArray_tag*>> rows;
        kaClassID id;
        bool complex;
        ka::Dims dims;
    } cases[] = {
        {"doubles", {{one.get(), one.get()}, {one.get(), one.get()}}, kaDOUBLE_CLASS, false, {2, 2}},
        {"leftmost integer", {{one.get(), i16.get(), i8.get()}}, kaINT16_CLASS, false, {1, 3}},
        {"char over double", {{one.get(), a.get()}}, kaCHAR_CLASS, false, {1, 2}},
        {"single over double", {{one.get(), s.get()}}, kaSINGLE_CLASS, false, {1, 2}},
        {"logical alone", {{t.get(), t.get()}}, kaLOGICAL_CLASS, false, {1, 2}},
        {"logical with double", {{t.get(), one.get()}}, kaDOUBLE_CLASS, false, {1, 2}},
        {"complex if any", {{one.get()}, {z.get()}}, kaDOUBLE_CLASS, true, {2, 1}},
        {"empties left out", {{empty.get(), one.get()}, {empty.get()}}, kaDOUBLE_CLASS, false, {1, 1}},
        {"nothing", {}, kaDOUBLE_CLASS, false, {0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const ka::ArrayPtr m = concatenate(c.rows);
        EXPECT_EQ(matrix::classId(m.get()), c.id);
        EXPECT_EQ(matrix::isComplex(m.get()), c.complex);
        const auto dims = matrix::dimensions(m.get());
        EXPECT_EQ(ka::Dims(dims.begin(), dims.end()), c.dims);
    }
    // Column-major placement of blocks: [1 2; 3 4] from rows [1 2] and [3 4].
    const ka::ArrayPtr r1 = ka::row({1.0, 2.0}), r2 = ka::row({3.0, 4.0});
    EXPECT_EQ(elementsOf<double>(concatenate({{r1.get()}, {r2.get()}})), (std::vector<double>{1, 3, 2, 4}));
    EXPECT_EQ(elementsOf<double>(concatenate({{one.get()}, {z.get()}})), (std::vector<double>{1, 0, 0, 1}));

    EXPECT_THROW(concatenate({{r1.get()}, {one.get()}}), std::invalid_argument) << "widths differ";
    EXPECT_THROW(concatenate({{r1.get(), ka::column({1.0, 2.0}).get()}}), std::invalid_argument) << "heights differ";
    EXPECT_THROW(concatenate({{a.get(), z.get()}}), std::invalid_argument) << "complex char";
}

}  // namespace
}  // namespace kcall
