#!/usr/bin/env python3
"""Throughput of the Python module's vectorised sweep on one and two threads.

    PYTHONPATH=build/python python3 bench/python_sweep.py [--points N] [--repeat R] [--model M]

Sweeps the model's clock (or the first float input) over N points, R times per thread count, and
prints the best wall time of each, the two-thread speed-up and the evaluations per second per core
(points over the CPU time the process used, so a machine shared with other work counts less
against it). Not run by ctest.
"""
import argparse
import os
import time

import numpy as np

import prsm


def measure(sheet, name, values, threads, repeat):
    best = None
    for _ in range(repeat):
        wall0, cpu0 = time.perf_counter(), time.process_time()
        sheet.sweep({name: values}, outputs=[output], threads=threads)
        wall, cpu = time.perf_counter() - wall0, time.process_time() - cpu0
        if best is None or wall < best[0]:
            best = (wall, cpu)
    return best


parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
parser.add_argument("--points", type=int, default=400_000)
parser.add_argument("--repeat", type=int, default=3)
parser.add_argument("--model", default="TalvexCleLogic")
args = parser.parse_args()
if "QDI_DATADIR" not in os.environ:
    os.environ["QDI_DATADIR"] = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")

sheet = prsm.Sheet(args.model)
cells = sheet.cells
floats = [c.name for c in cells if c.category == "input" and c.type == "float"]
name = "CLOCK_FREQ" if "CLOCK_FREQ" in floats else floats[0]
output = next(c.name for c in cells if c.category == "output" and c.type == "float")
if args.model == "TalvexCleLogic":
    output = "LOGIC_POWER"
values = np.linspace(100.0, 500.0, args.points)
sheet.sweep({name: values[:1000]}, outputs=[output])  # loads the data

print(f"{args.model}: {name} over {args.points} points, reading {output}; {os.cpu_count()} CPUs, "
      f"load average {os.getloadavg()[0]:.2f}")
results = {}
for threads in (1, 2):
    wall, cpu = measure(sheet, name, values, threads, args.repeat)
    results[threads] = wall
    print(f"  {threads} thread(s): {wall:.3f} s wall, {cpu:.3f} s CPU, {args.points / wall / 1e3:.0f} k points/s, "
          f"{args.points / cpu / 1e3:.0f} k points/s per core")
print(f"  two threads: {results[1] / results[2]:.2f} times one")
