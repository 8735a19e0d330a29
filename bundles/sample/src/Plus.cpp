// The sample module's plus: one line, the class rules do the rest.
#include <builtin/declare/declare.hpp>

#include "Arithmetic.hpp"

#include <string>
#include <string_view>

namespace sample {

namespace {

std::u16string join(std::u16string_view a, std::u16string_view b) {
    return std::u16string(a) + std::u16string(b);
}

}  // namespace

void declarePlus(Norvane::builtin::declare::Module& module) {
    using namespace Norvane::builtin::declare;
    arithmetic::declareBinary<Add>(module.builtin("plus").def(&join, pure));
}

}  // namespace sample
