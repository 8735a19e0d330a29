// A check that operator< of a type is a strict weak order on a given set of values, as
// std::sort needs: irreflexive, transitive, and with incomparability transitive as well.
// Cubic in the size of the set, so keep sets to a few hundred values.
#pragma once

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace typestest {

template <class T>
void expectStrictWeakOrder(const std::vector<T>& values) {
    const std::size_t n = values.size();
    std::vector<char> lessTable(n * n);
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j < n; ++j) {
            lessTable[i * n + j] = values[i] < values[j] ? 1 : 0;
        }
    }
    const auto less = [&](std::size_t i, std::size_t j) { return lessTable[i * n + j] != 0; };
    const auto incomparable = [&](std::size_t i, std::size_t j) {
        return !less(i, j) && !less(j, i);
    };
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_FALSE(less(i, i)) << "not irreflexive at " << i;
        for (std::size_t j = 0; j < n; ++j) {
            const bool ij = less(i, j);
            for (std::size_t k = 0; k < n; ++k) {
                if (ij && less(j, k)) {
                    ASSERT_TRUE(less(i, k)) << "not transitive at " << i << ", " << j << ", " << k;
                }
                if (incomparable(i, j) && incomparable(j, k)) {
                    ASSERT_TRUE(incomparable(i, k))
                        << "incomparability not transitive at " << i << ", " << j << ", " << k;
                }
            }
        }
    }
}

}  // namespace typestest
