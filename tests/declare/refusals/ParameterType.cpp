// Must not compile: std::vector<int>, the second parameter, is no parameter type of a builtin.
#include <vector>

#include <builtin/declare/declare.hpp>

double total(double scale, std::vector<int> values) {
    return scale * static_cast<double>(values.size());
}

int main() {
    Norvane::builtin::declare::Builtin builtin("total");
    builtin.def(&total);
}
