#!/usr/bin/python3
"""NumPy's element-wise add on 10**7 float64 values, as elementwise_bench compares against.

Prints one line per measure, "name milliseconds", the median time per call:
  add_fresh      np.add(a, b)            a fresh output each call
  add_out        np.add(a, b, out=c)     into an existing array
  add_broadcast  np.add(m, k)            m of shape (1000, 1), k of shape (1, 10000)

Usage: numpy_elementwise.py [repeats]
NumPy runs these on one thread.
"""
import statistics
import sys
import timeit

import numpy as np

N = 10_000_000


def median_ms(statement: str, scope: dict, repeats: int) -> float:
    timer = timeit.Timer(statement, globals=scope)
    calls, _ = timer.autorange()  # also warms up: at least 0.2 s of calls
    totals = timer.repeat(repeat=repeats, number=calls)
    return statistics.median(t / calls * 1e3 for t in totals)


def main() -> None:
    repeats = int(sys.argv[1]) if len(sys.argv) > 1 else 7
    rng = np.random.default_rng(1)
    scope = {
        "np": np,
        "a": rng.random(N),
        "b": rng.random(N),
        "c": np.empty(N),
        "m": rng.random((1000, 1)),
        "k": rng.random((1, 10000)),
    }
    for name, statement in (("add_fresh", "np.add(a, b)"),
                            ("add_out", "np.add(a, b, out=c)"),
                            ("add_broadcast", "np.add(m, k)")):
        print(f"{name} {median_ms(statement, scope, repeats):.4f}", flush=True)


if __name__ == "__main__":
    main()
