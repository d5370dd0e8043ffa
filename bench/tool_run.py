"""tool_run.py TOOL FOLDER: kiv run on one and two processors, against pandas and numpy, and its cold start.

FOLDER has mode_<N>/Tg5.prm. Times are wall times, the least of some passes, in turn with what they are
compared with; of starts the median.
"""

import os
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np
import pandas as pd

import kiv
from numpy_polarizer import in_numpy

ROWS = 5_000_000
PANDAS_ROWS = 500_000
STARTS = 200


def run(*command):
    """Seconds."""
    silent = [(os.POSIX_SPAWN_OPEN, stream, os.devnull, os.O_WRONLY, 0) for stream in (1, 2)]
    start = time.perf_counter()
    _, status = os.waitpid(os.posix_spawnp(command[0], command, os.environ, file_actions=silent), 0)
    assert status == 0, command
    return time.perf_counter() - start


def peak_memory(*command):
    """MB. A process starts with the peak of the one that it comes from: that has to be a small one."""
    from_here = ("import os, resource, sys; os.spawnvp(os.P_WAIT, sys.argv[1], sys.argv[1:]); "
                 "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    return int(subprocess.check_output([sys.executable, "-S", "-c", from_here, *command])) / 1024


def told(operation, value, unit, goal, met):
    print(f"{operation:60} {value:7.2f} {unit:9} {goal:8} {'met' if met else 'MISSED'}", flush=True)


def on_two_processors(tool, folder, scratch):
    for mode, model in ((2, "dual level"), (4, "pendulum")):
        sensor, readings = f"{folder}/mode_{mode}/Tg5.prm", f"{scratch}/readings.csv"
        run(tool, "simulate", sensor, "--rows", str(ROWS), "--trajectory", "random", "--tilt", "5", "-o", readings)
        for where in (os.devnull, f"{scratch}/results.csv"):
            command = [tool, "run", "-q", sensor, readings, "-o", where, "-j"]
            seconds = {"1": [], "2": []}
            for _ in range(3):
                for jobs, passes in seconds.items():
                    passes.append(run(*command, jobs))
            one, two = (min(seconds[jobs]) for jobs in "12")
            memory = peak_memory(*command, "2")
            what = f"{model}, {'null device' if where == os.devnull else 'file'}"
            print(f"{what}: {ROWS / one / 1e6:.3f} and {ROWS / two / 1e6:.3f} million rows a second")
            told(f"kiv run, {what}: two jobs / one", one / two, "times", ">= 1.85", one / two >= 1.85)
            told(f"kiv run, {what}: peak memory", memory, "MB", "<= 64", memory <= 64)
        os.remove(readings)
        os.remove(where)


def in_pandas(compute, readings, results):
    table = pd.read_csv(readings)
    answers = compute(table)
    computed = ["status", "x", "y", "z", "azimuth_deg", "elevation_deg", "level_x", "level_y", "temperature",
                "ref_metric", "ref_blocked"]
    table.drop(columns=computed).assign(**answers).to_csv(results, index=False)


def against_pandas(tool, folder, scratch):
    sensor, readings = f"{folder}/mode_6/Tg5.prm", f"{scratch}/readings.csv"
    ours, theirs = f"{scratch}/ours.csv", f"{scratch}/theirs.csv"
    run(tool, "simulate", sensor, "--rows", str(PANDAS_ROWS), "--trajectory", "random", "--tilt", "5", "-o", readings)
    compute = in_numpy(kiv.Parameters(sensor))
    seconds = {"pandas": [], "1": [], "2": []}
    for _ in range(3):
        start = time.perf_counter()
        in_pandas(compute, readings, theirs)
        seconds["pandas"].append(time.perf_counter() - start)
        for jobs in "12":
            seconds[jobs].append(run(tool, "run", "-q", "-j", jobs, sensor, readings, "-o", ours))
    left, right = pd.read_csv(ours), pd.read_csv(theirs)
    apart = max(np.nanmax(abs(left[f"r{axis}_deg"] - right[f"r{axis}_deg"])) for axis in "xyz")
    print(f"pandas and numpy: {PANDAS_ROWS / min(seconds['pandas']):.0f} rows a second; "
          f"angles {apart:.1g} degrees apart at most")
    for jobs, goal in (("1", 12), ("2", 22)):
        ratio = min(seconds["pandas"]) / min(seconds[jobs])
        print(f"kiv run -j {jobs}: {PANDAS_ROWS / min(seconds[jobs]):.0f} rows a second")
        told(f"pandas and numpy / kiv run -j {jobs}, polarizer", ratio, "times", f">= {goal}", ratio >= goal)


def cold_start(tool, folder, scratch):
    sensor, readings = f"{folder}/mode_4/Tg5.prm", f"{scratch}/readings.csv"
    run(tool, "simulate", sensor, "--rows", "10", "-o", readings)
    commands = {"true": ["true"], "help": [tool, "--help"], "run": [tool, "run", sensor, readings]}
    seconds = {name: [] for name in commands}
    for _ in range(STARTS):
        for name, command in commands.items():
            seconds[name].append(run(*command))
    true, shown, ran = (statistics.median(seconds[name]) for name in commands)
    told("kiv run on ten rows / true", ran / true, "times", "<= 4", ran <= 4 * true)
    told("kiv --help / true", shown / true, "times", "<= 3", shown <= 3 * true)


def main(tool, folder):
    for measure in (cold_start, against_pandas, on_two_processors):
        with tempfile.TemporaryDirectory() as scratch:
            measure(tool, folder, scratch)


if __name__ == "__main__":
    main(*sys.argv[1:])
