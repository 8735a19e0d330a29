// Typed views accept exactly the arrays of their element type and density, and refuse the
// rest through rejectArrayShape.
#include <gtest/gtest.h>

#include <complex>
#include <functional>
#include <memory>
#include <string>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using testsupport::LiveArrayTest;

class ViewsTest : public LiveArrayTest {};

template <class View>
bool fits(const kaArray* a) {
    try {
        View view(a);
        return true;
    } catch (const std::invalid_argument&) {
        return false;
    }
}

TEST_F(ViewsTest, EachViewTakesItsOwnKindOnly) {
    ka::ArrayPtr real = ka::row({1.0, 2.0});
    ka::ArrayPtr complex = ka::scalar(std::complex<double>(1, 1));
    ka::ArrayPtr sparse = ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{0, 0, 1.0}});
    ka::ArrayPtr cell = ka::createCell({1, 2});
    ka::ArrayPtr object = ka::createObject(static_cast<kaClassID>(30), "thing",
                                           std::make_shared<int>(1));
    ka::ArrayPtr complexInt = ka::scalar(std::complex<std::int8_t>(1, 2));

    struct Case {
        const char* what;
        std::function<bool(const kaArray*)> fits;
        const kaArray* array;
        bool expected;
    };
    const Case cases[] = {
        {"double row as double", fits<matrix::typed_array<double>>, real.get(), true},
        {"complex as double", fits<matrix::typed_array<double>>, complex.get(), false},
        {"sparse as full double", fits<matrix::typed_array<double>>, sparse.get(), false},
        {"null as double", fits<matrix::typed_array<double>>, nullptr, false},
        {"complex as complex", fits<matrix::typed_array<std::complex<double>>>, complex.get(), true},
        {"real as complex", fits<matrix::typed_array<std::complex<double>>>, real.get(), false},
        {"complex int8", fits<matrix::typed_array<std::complex<std::int8_t>>>, complexInt.get(), true},
        {"sparse as sparse", fits<matrix::typed_sparse_matrix<double>>, sparse.get(), true},
        {"full as sparse", fits<matrix::typed_sparse_matrix<double>>, real.get(), false},
        {"cell", fits<matrix::typed_array<matrix::cell>>, cell.get(), true},
        {"object", fits<matrix::typed_array<matrix::object>>, object.get(), true},
        {"opaque object", fits<matrix::typed_array<matrix::opaque>>, object.get(), true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.fits(c.array), c.expected);
    }
}

TEST_F(ViewsTest, RefusalNamesTheViewAndTheArray) {
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
    EXPECT_THROW(matrix::detail::rejectInvalidClassId(static_cast<kaClassID>(99)),
                 std::invalid_argument);
}

}  // namespace
