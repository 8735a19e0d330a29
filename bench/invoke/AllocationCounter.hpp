// Counts of heap allocations in this process, by the two doors through which they come: the
// global operator new (replaced here, so that it counts and then takes memory straight from the
// C library) and the C allocation functions (malloc and its aligned and zeroed siblings,
// interposed for the whole process, shared libraries included). An operator new is not counted
// again as a malloc.
#pragma once

#include <cstdint>

namespace allocations {

struct Counts {
    std::uint64_t news = 0;
    std::uint64_t mallocs = 0;
};

Counts now();

}  // namespace allocations
