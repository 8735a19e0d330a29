// Must not compile: std::vector<int> is no parameter type of a builtin.
#include <vector>

#include <builtin/declare/declare.hpp>

double total(std::vector<int> values) {
    return static_cast<double>(values.size());
}

int main() {
    Norvane::builtin::declare::Builtin builtin("total");
    builtin.def(&total);
}
