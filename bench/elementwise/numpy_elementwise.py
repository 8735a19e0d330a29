#!/usr/bin/python3
"""NumPy's element-wise ufuncs on the sizes that elementwise_bench compares against.

Prints one line per measure, "name milliseconds", the median time per call:
  add_fresh      np.add(a, b)            a fresh output each call, 10**7 float64
  add_out        np.add(a, b, out=c)     into an existing array
  add_broadcast  np.add(m, k)            m of shape (1000, 1), k of shape (1, 10000)
  exp            np.exp(a)
  sin            np.sin(a)
  add_100        np.add(x, y)            x and y of 100 float64, with Python's own call

Inputs are uniform in [-1, 1]. Usage: numpy_elementwise.py [repeats]
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
    uniform = lambda *shape: rng.uniform(-1.0, 1.0, shape)
    scope = {
        "np": np,
        "a": uniform(N),
        "b": uniform(N),
        "c": np.empty(N),
        "m": uniform(1000, 1),
        "k": uniform(1, 10000),
        "x": uniform(100),
        "y": uniform(100),
    }
    for name, statement in (("add_fresh", "np.add(a, b)"),
                            ("add_out", "np.add(a, b, out=c)"),
                            ("add_broadcast", "np.add(m, k)"),
                            ("exp", "np.exp(a)"),
                            ("sin", "np.sin(a)"),
                            ("add_100", "np.add(x, y)")):
        print(f"{name} {median_ms(statement, scope, repeats):.6f}", flush=True)


if __name__ == "__main__":
    main()
