// The sample module's minus: one line, the class rules do the rest.
#include <builtin/declare/declare.hpp>

#include "Arithmetic.hpp"

namespace sample {

void declareMinus(Norvane::builtin::declare::Module& module) {
    Norvane::builtin::declare::arithmetic::declareBinary<Subtract>(module.builtin("minus"));
}

}  // namespace sample
