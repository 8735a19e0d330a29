// plus, minus and times under the class rules of the language (declare/Arithmetic.hpp), over
// every pair of the numeric classes, logical and char, for scalars and arrays with broadcasting;
// plus of two strings joins them. Each builtin is a unit of its own: a hundred kernels, each with
// its lifted loops, take a while to compile, and three units compile side by side.
#pragma once

#include <builtin/declare/Module.hpp>

namespace sample {

// Each operation in the classes it is computed in: double, single and their complex forms.
template <class T>
struct Add {
    static T apply(T a, T b) { return a + b; }
};
template <class T>
struct Subtract {
    static T apply(T a, T b) { return a - b; }
};
template <class T>
struct Multiply {
    static T apply(T a, T b) { return a * b; }
};

void declarePlus(Norvane::builtin::declare::Module& module);
void declareMinus(Norvane::builtin::declare::Module& module);
void declareTimes(Norvane::builtin::declare::Module& module);

}  // namespace sample
