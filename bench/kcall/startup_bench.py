#!/usr/bin/env python3
"""kcall from start to exit, against NumPy's start and one call, in the same run.

    bench/kcall/startup_bench.py [path/to/kcall] [runs]

Times, as the median of the runs, the wall time of:
  kcall 'plus(1, 2)'                                       the call, start to exit
  kcall ''                                                 start-up alone: the framework, the
                                                           builtin service bundles, the modules
  kcall --version                                          the program without the framework
  python3 -c 'import numpy; print(numpy.add(1, 2))'        the baseline
and prints kcall / NumPy (goal: at most 0.5) and the share of kcall's time spent starting the
bundles and modules.
"""
import statistics
import subprocess
import sys
import time
from pathlib import Path

KCALL = sys.argv[1] if len(sys.argv) > 1 else str(Path(__file__).resolve().parents[2] / "build/release/bin/kcall")
RUNS = int(sys.argv[2]) if len(sys.argv) > 2 else 21


def median_seconds(command):
    times = []
    for _ in range(RUNS):
        start = time.perf_counter()
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        times.append(time.perf_counter() - start)
    return statistics.median(times)


call = median_seconds([KCALL, "plus(1, 2)"])
start_up = median_seconds([KCALL, ""])
bare = median_seconds([KCALL, "--version"])
numpy = median_seconds(["/usr/bin/python3", "-c", "import numpy; print(numpy.add(1, 2))"])

print(f"kcall 'plus(1, 2)'   {call * 1e3:8.1f} ms")
print(f"kcall ''             {start_up * 1e3:8.1f} ms")
print(f"kcall --version      {bare * 1e3:8.1f} ms")
print(f"python3 + numpy.add  {numpy * 1e3:8.1f} ms")
print(f"kcall / NumPy: {call / numpy:.3f} (goal: at most 0.5)")
print(f"share of kcall's time starting the bundles and modules: {(start_up - bare) / call:.0%}")
