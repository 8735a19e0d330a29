// Must not compile: a builtin cannot give a std::vector<double>.
#include <vector>

#include <builtin/declare/declare.hpp>

std::vector<double> twice(double x) {
    return {x, x};
}

int main() {
    Norvane::builtin::declare::Builtin builtin("twice");
    builtin.def(&twice);
}
