// The sample module's times: one line, the class rules do the rest.
#include <builtin/declare/declare.hpp>

#include "Arithmetic.hpp"

namespace sample {

void declareTimes(Norvane::builtin::declare::Module& module) {
    Norvane::builtin::declare::arithmetic::declareBinary<Multiply>(module.builtin("times"));
}

}  // namespace sample
