// Declares an element-wise builtin with the installed headers and calls it as the interpreter does,
// over a row and a scalar, then with a text it refuses; prints both, returns 0 when both are right.
#include <cstdio>
#include <exception>
#include <typeinfo>

#include <builtin/declare/declare.hpp>
#include <ka/ka.hpp>

static double scale(double x, double factor) {
    return x * factor;
}

int main() {
    using namespace Norvane::builtin;
    declare::Builtin builtin("scale");
    builtin.def(&scale, declare::pure, declare::elementwise);
    const declare::DeclaredBuiltin scaled(std::move(builtin));

    const ka::ArrayPtr row = ka::row({1.0, 2.0, 3.0}), factor = ka::scalar(2.0),
                       text = ka::charArray(u"x");
    kaArray_tag* prhs[] = {row.get(), factor.get()};
    kaArray_tag* plhs[1] = {nullptr};
    scaled.function().call(1, plhs, 2, prhs);
    const ka::ArrayPtr result(plhs[0]);
    const auto* data = static_cast<const double*>(matrix::data(result.get()));
    std::printf("scaled = %g %g %g\n", data[0], data[1], data[2]);
    const bool rightResult = data[0] == 2 && data[1] == 4 && data[2] == 6;
    kaArray_tag* wrong[] = {text.get(), factor.get()};
    try {
        scaled.function().call(1, plhs, 2, wrong);
    } catch (const std::exception& e) {
        std::printf("refused: %s\n", e.what());
        return rightResult ? 0 : 1;
    }
    return 1;
}
