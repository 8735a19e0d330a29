#!/usr/bin/env python3
"""kcall on large values: the parse of long literals, and a timed call against NumPy's.

    bench/kcall/kcall_bench.py [path/to/kcall] [runs]

1. A literal of 10^6 and one of 10^7 random doubles (17 significant digits each) fed on standard
   input as `x = [...];`. For each, the median over the runs of kcall's wall time less its
   start-up (kcall on `x = 1;`, timed in the same run), and kcall's peak resident memory. Goals:
   10^6 elements in at most 0.2 s, 10^7 with a peak below 1 GB. Beside it, NumPy's parse of the
   same text (numpy.fromstring with sep=" ") as the baseline, and the ratio.
2. `kcall 'x = rand(1, 1e7);' --time 'plus(x, 1);'` (the ';' keeps 10^7 numbers from the screen)
   against NumPy's np.add(x, 1) on 10^7 doubles, timed by timeit in the same run: the median per
   call of each, and kcall / NumPy for each run and their median.

NumPy is Debian's python3-numpy, run by /usr/bin/python3.
"""
import json
import os
import random
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

KCALL = sys.argv[1] if len(sys.argv) > 1 else str(Path(__file__).resolve().parents[2] / "build/release/bin/kcall")
RUNS = int(sys.argv[2]) if len(sys.argv) > 2 else 5
PYTHON = "/usr/bin/python3"


def run_on_input(command, input_path):
    """Wall seconds and peak resident bytes of the command with the file on standard input."""
    with open(input_path, "rb") as stdin:
        start = time.perf_counter()
        process = subprocess.Popen(command, stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{command[0]} failed on {input_path}: {process.stderr.read().decode()}")
    return seconds, usage.ru_maxrss * 1024


def literal_file(directory, n):
    # Written in pieces: a process forked from this one counts this one's memory in its own peak
    # until it runs kcall, so this one must stay small.
    generator = random.Random(n)
    path = Path(directory) / f"literal{n}.txt"
    with open(path, "w") as f:
        f.write("x = [")
        for start in range(0, n, 100_000):
            f.write(" ".join(repr(generator.random()) for _ in range(start, min(n, start + 100_000))))
            f.write(" ")
        f.write("];\n")
    return path


NUMPY_PARSE = """
import sys, time, numpy
text = open(sys.argv[1]).read()
body = text[text.index('[') + 1:text.rindex(']')]
start = time.perf_counter()
x = numpy.fromstring(body, sep=' ')
print(time.perf_counter() - start, x.size)
"""


def numpy_parse_seconds(path):
    out = subprocess.run([PYTHON, "-c", NUMPY_PARSE, str(path)], check=True, capture_output=True, text=True).stdout
    return float(out.split()[0])


NUMPY_ADD = """
import timeit, statistics, numpy as np
x = np.random.default_rng(0).random(10**7)
timer = timeit.Timer('np.add(x, 1)', globals={'np': np, 'x': x})
number, _ = timer.autorange()
print(statistics.median(t / number for t in timer.repeat(repeat=7, number=number)))
"""


def numpy_add_seconds():
    return float(subprocess.run([PYTHON, "-c", NUMPY_ADD], check=True, capture_output=True, text=True).stdout)


def kcall_add_seconds():
    out = subprocess.run([KCALL, "--json", "x = rand(1, 1e7);", "--time", "plus(x, 1);"],
                         check=True, capture_output=True, text=True).stdout
    for line in out.splitlines():
        record = json.loads(line)
        if "time" in record:
            return record["time"]["seconds"]
    sys.exit("kcall --time gave no timing:\n" + out)


def literals():
    print("1. literals on standard input (median of %d runs; start-up taken off)" % RUNS)
    with tempfile.TemporaryDirectory() as directory:
        empty = Path(directory) / "empty.txt"
        empty.write_text("x = 1;\n")
        for n, runs in ((10**6, RUNS), (10**7, max(3, RUNS // 2))):
            path = literal_file(directory, n)
            startup, parse, peaks, numpy = [], [], [], []
            for _ in range(runs):
                startup.append(run_on_input([KCALL], empty)[0])
                seconds, peak = run_on_input([KCALL], path)
                parse.append(seconds)
                peaks.append(peak)
                numpy.append(numpy_parse_seconds(path))
            kcall = statistics.median(parse) - statistics.median(startup)
            base = statistics.median(numpy)
            peak = max(peaks)
            goal = "goal: at most 0.2 s" if n == 10**6 else "goal for the peak: below 1 GB"
            print(f"  10^{len(str(n)) - 1}: {path.stat().st_size / 1e6:6.1f} MB of text; kcall {kcall:6.3f} s, "
                  f"peak {peak / 2**20:6.0f} MiB ({goal}); numpy.fromstring {base:6.3f} s; "
                  f"kcall / NumPy {kcall / base:5.2f}")


def timed_call():
    print("2. plus(x, 1) with x = rand(1, 1e7): kcall --time against np.add(x, 1) under timeit")
    ratios = []
    for run in range(max(3, RUNS // 2)):
        kcall = kcall_add_seconds()
        numpy = numpy_add_seconds()
        ratios.append(kcall / numpy)
        print(f"  run {run + 1}: kcall {kcall * 1e3:7.2f} ms, NumPy {numpy * 1e3:7.2f} ms, kcall / NumPy {kcall / numpy:5.2f}")
    print(f"  kcall / NumPy, median of {len(ratios)} runs: {statistics.median(ratios):.2f}")


literals()
timed_call()
