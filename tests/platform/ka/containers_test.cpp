// Sparse arrays in compressed columns, cell and struct arrays with the arrays they own, and the
// refusals of typed views.
#include <gtest/gtest.h>

#include <complex>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using Indices = std::vector<std::size_t>;

class ContainersTest : public testsupport::LiveArrayTest {};

TEST_F(ContainersTest, SparseEntriesAreSortedSummedAndCompressed) {
    // Out of order, one place given twice, one entry zero.
    ka::ArrayPtr s = ka::createSparse(kaDOUBLE_CLASS, 3, 4,
                                      {{2, 3, 7.0}, {0, 0, 1.0}, {2, 1, 2.0}, {2, 1, 3.0}, {1, 2, 0.0}});
    EXPECT_TRUE(matrix::isSparse(s.get()));
    matrix::typed_sparse_matrix<double> view(s.get());
    EXPECT_EQ(view.rows(), 3u);
    EXPECT_EQ(view.columns(), 4u);
    ASSERT_EQ(view.nonZeros(), 3u);
    EXPECT_EQ(Indices(view.columnStarts(), view.columnStarts() + 5), (Indices{0, 1, 2, 2, 3}));
    EXPECT_EQ(Indices(view.rowIndices(), view.rowIndices() + 3), (Indices{0, 2, 2}));
    EXPECT_EQ(std::vector<double>(view.values(), view.values() + 3), (std::vector<double>{1, 5, 7}));

    ka::ArrayPtr z = ka::createSparse(kaSINGLE_CLASS, 2, 2, {{1, 1, {1.5, -2}}}, kaCOMPLEX);
    EXPECT_EQ(matrix::typed_sparse_matrix<std::complex<float>>(z.get()).values()[0],
              std::complex<float>(1.5f, -2.0f));
    ka::ArrayPtr l = ka::createSparse(kaLOGICAL_CLASS, 2, 2, {{0, 1, 4.0}});
    EXPECT_TRUE(matrix::typed_sparse_matrix<bool>(l.get()).values()[0]);
}

TEST_F(ContainersTest, BadContainersAreRefusedWithoutLeaking) {
    EXPECT_THROW(ka::createSparse(kaINT8_CLASS, 2, 2, {}), std::invalid_argument);
    EXPECT_THROW(ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{2, 0, 1.0}}), std::invalid_argument);
    std::vector<ka::ArrayPtr> two;
    two.push_back(ka::scalar(1.0));
    two.push_back(ka::scalar(2.0));
    EXPECT_THROW(ka::createCell({1, 3}, std::move(two)), std::invalid_argument);
    EXPECT_THROW(ka::cellElement(ka::scalar(1.0).get(), 0), std::invalid_argument);
    EXPECT_THROW(ka::createStruct({1, 1}, {"a", "a"}), std::invalid_argument);
}

TEST_F(ContainersTest, CellOwnsOneReferenceOfEachElement) {
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
}

TEST_F(ContainersTest, NestedContainersAreReleasedDepthFirst) {
    std::vector<ka::ArrayPtr> inner;
    inner.push_back(ka::scalar(1.0));
    std::vector<ka::ArrayPtr> fields;
    fields.push_back(ka::createCell({1, 1}, std::move(inner)));
    std::vector<ka::ArrayPtr> outer;
    outer.push_back(ka::createStruct({1, 1}, {"c"}, std::move(fields)));
    ka::ArrayPtr top = ka::createCell({1, 1}, std::move(outer));
    EXPECT_EQ(alive(), 4);
    EXPECT_EQ(matrix::classId(ka::cellElement(top.get(), 0)), kaSTRUCT_CLASS);
    EXPECT_EQ(matrix::classId(ka::field(ka::cellElement(top.get(), 0), 0, "c")), kaCELL_CLASS);
    EXPECT_THROW(ka::field(ka::cellElement(top.get(), 0), 0, "d"), std::out_of_range);
}

// Typed views refuse what is not of their element type and density, naming the view and the
// array.
TEST_F(ContainersTest, ViewRefusalNamesTheViewAndTheArray) {
    ka::ArrayPtr a = ka::fromRows<float>(2, 3, {1, 2, 3, 4, 5, 6});
    try {
        matrix::typed_array<double> view(a.get());
        FAIL() << "no refusal";
    } catch (const std::invalid_argument& e) {
        const std::string text = e.what();
        EXPECT_NE(text.find("matrix::typed_array<double>"), std::string::npos) << text;
        EXPECT_NE(text.find("single"), std::string::npos) << text;
        EXPECT_NE(text.find("2x3"), std::string::npos) << text;
    }
    EXPECT_THROW(matrix::typed_sparse_matrix<float>(a.get()), std::invalid_argument);
    EXPECT_THROW(matrix::detail::rejectInvalidClassId(static_cast<kaClassID>(99)), std::invalid_argument);
}

}  // namespace
