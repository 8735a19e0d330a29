#!/usr/bin/python3
"""np.sqrt on a float64 scalar: prints the median time per call in nanoseconds.

Usage: numpy_sqrt.py [repeats] [calls-per-repeat]
The figure includes the Python call overhead, as a NumPy user pays it.
"""
import statistics
import sys
import timeit

import numpy as np


def main() -> None:
    repeats = int(sys.argv[1]) if len(sys.argv) > 1 else 9
    calls = int(sys.argv[2]) if len(sys.argv) > 2 else 200_000
    scope = {"sqrt": np.sqrt, "x": np.float64(2.0)}
    timeit.timeit("sqrt(x)", globals=scope, number=calls)  # warm up
    totals = timeit.repeat("sqrt(x)", globals=scope, number=calls, repeat=repeats)
    print(f"{statistics.median(t / calls * 1e9 for t in totals):.2f}")


if __name__ == "__main__":
    main()
