// Arrays made without literals, so that a user can get a large array without typing it:
//
//   zeros(n), zeros(m, n), zeros(m, n, p), zeros([m n p ...]), zeros()   n-by-n, m-by-n, ... of 0
//   ones(...)                                                             the same of 1
//   rand(...)                                                             uniform in [0, 1)
//   rand("seed", k)                  restarts the generator at seed k; a fixed seed at start
//   colon(a, b), colon(a, s, b)      the ranges a:b and a:s:b, 1-by-n (1-by-0 when empty)
//
// Sizes are whole numbers of 0 or more, and an array must fit in the machine's memory; anything
// else is an error of the call that says what was wrong.
#pragma once

#include <builtin/declare/Module.hpp>

namespace sample {

void declareConstructors(Norvane::builtin::declare::Module& module);

}  // namespace sample
