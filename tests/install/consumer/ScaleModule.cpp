// A module of an author outside the project, built with builtin_add_module: its name is written
// once, in CMakeLists.txt, and reaches the code as KELDOR_MODULE_NAME.
#include <builtin/declare/declare.hpp>

namespace {

double scale(double x, double factor) {
    return x * factor;
}

void declareScale(Norvane::builtin::declare::Module& module) {
    using namespace Norvane::builtin::declare;
    module.builtin("scale").def(&scale, pure, elementwise);
}

}  // namespace

KELDOR_BUILTIN_MODULE(KELDOR_MODULE_NAME, declareScale)
