// Must not compile: a builtin cannot write into its arguments, so double& is refused.
#include <builtin/declare/declare.hpp>

double bump(double& x) {
    return ++x;
}

int main() {
    Norvane::builtin::declare::Builtin builtin("bump");
    builtin.def(&bump);
}
