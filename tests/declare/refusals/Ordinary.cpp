// Must compile: the declarations authors write, noexcept and by const reference.
#include <string>

#include <builtin/declare/declare.hpp>

std::u16string greet(const std::u16string& name, const double& times) noexcept {
    return name + std::u16string(static_cast<std::size_t>(times), u'!');
}
double length(const std::string& text) noexcept {
    return static_cast<double>(text.size());
}

int main() {
    Norvane::builtin::declare::Builtin builtin("greet");
    builtin.def(&greet).def(&length);
}
