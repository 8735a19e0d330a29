// Sparse arrays in compressed columns, and cell and struct arrays with the arrays they own.
#include <gtest/gtest.h>

#include <complex>
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
    EXPECT_THROW(ka::createSparse(kaLOGICAL_CLASS, 2, 2, {}, kaCOMPLEX), std::invalid_argument);
    EXPECT_THROW(ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{2, 0, 1.0}}), std::invalid_argument);
    EXPECT_THROW(matrix::detail::sparseParts(ka::scalar(1.0).get()), std::invalid_argument);
    std::vector<ka::ArrayPtr> two;
    two.push_back(ka::scalar(1.0));
    two.push_back(ka::scalar(2.0));
    EXPECT_THROW(ka::createCell({1, 3}, std::move(two)), std::invalid_argument);
    EXPECT_THROW(ka::cellElement(ka::scalar(1.0).get(), 0), std::invalid_argument);
    EXPECT_THROW(ka::createStruct({1, 1}, {"a", "a"}), std::invalid_argument);
    EXPECT_THROW(ka::createStruct({1, 1}, {""}), std::invalid_argument);
    std::vector<ka::ArrayPtr> one;
    one.push_back(ka::scalar(1.0));
    EXPECT_THROW(ka::createStruct({1, 2}, {"a"}, std::move(one)), std::invalid_argument);
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

TEST_F(ContainersTest, StructHoldsValuesByElementAndField) {
    std::vector<ka::ArrayPtr> values;
    values.push_back(ka::charArray("Ada"));
    values.push_back(ka::scalar(36.0));
    values.push_back(ka::charArray("Alan"));
    values.push_back(nullptr);
    ka::ArrayPtr people = ka::createStruct({1, 2}, {"name", "age"}, std::move(values));
    EXPECT_EQ(matrix::classId(people.get()), kaSTRUCT_CLASS);
    const auto fields = ka::fieldNames(people.get());
    EXPECT_EQ(std::vector<std::string>(fields.begin(), fields.end()), (std::vector<std::string>{"name", "age"}));
    EXPECT_EQ(*static_cast<const double*>(ka::field(people.get(), 0, "age")->data), 36.0);
    EXPECT_EQ(matrix::numberOfElements(ka::field(people.get(), 1, "name")), 4u);
    EXPECT_EQ(ka::field(people.get(), 1, "age"), nullptr);
    EXPECT_THROW(ka::field(people.get(), 0, "height"), std::out_of_range);
    EXPECT_THROW(ka::field(people.get(), 2, "age"), std::out_of_range);
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
}

}  // namespace
