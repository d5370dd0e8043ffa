"""processes.py TOOL FOLDER: Python's run against the call of the library beneath it, kiv run on one and two processors
and against pandas and numpy, and its cold start.

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
from kiv import _columns, _library
from numpy_polarizer import in_numpy

MILLION = 1_000_000
ROWS = 3_000_000
PANDAS_ROWS = 500_000
STARTS = 200


def timed(call, *arguments):
    start = time.perf_counter()
    call(*arguments)
    return time.perf_counter() - start


def run(*command):
    silent = [(os.POSIX_SPAWN_OPEN, stream, os.devnull, os.O_WRONLY, 0) for stream in (1, 2)]
    _, status = os.waitpid(os.posix_spawnp(command[0], command, os.environ, file_actions=silent), 0)
    assert status == 0, command


def peak_memory(*command):
    """MB. A process starts with the peak of the one that it comes from: that has to be a small one."""
    from_here = ("import os, resource, sys; os.spawnvp(os.P_WAIT, sys.argv[1], sys.argv[1:]); "
                 "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    said = subprocess.check_output([sys.executable, "-S", "-c", from_here, *command], stderr=subprocess.DEVNULL)
    return int(said) / 1024


def in_turn(passes, **calls):
    """The least seconds of each, by name."""
    seconds = [{name: timed(call) for name, call in calls.items()} for _ in range(passes)]
    return {name: min(row[name] for row in seconds) for name in calls}


def python_run(tool, folder, scratch):
    random = np.random.default_rng(1)
    turn = np.linspace(0, 60, MILLION)
    readings = dict(status=2 + 0 * turn, x=4000 + 9 * turn, y=1500 - 7 * turn, z=450 + turn, azimuth_deg=turn,
                    elevation_deg=5 * np.sin(turn), level_x=random.uniform(-5, 5, MILLION),
                    level_y=random.uniform(-5, 5, MILLION), temperature=20 + turn / 60, ref_metric=0.1 + 0 * turn,
                    ref_blocked=0 * turn)
    readings = {name: values.astype(np.float32) for name, values in readings.items()}
    records, results = np.zeros(MILLION, _columns.READING), np.zeros(MILLION, _columns.RESULT)
    _columns.Readings("readings", readings).fill(records, 0)
    for mode in (2, 4, 6, 8, 10):
        parameters = kiv.Parameters(f"{folder}/mode_{mode}/Tg5.prm")
        sensor, beneath = kiv.Sensor(parameters), kiv.Sensor(parameters)
        least = in_turn(3, call=lambda: beneath._handle.judge(records, results, None, None, None, None),
                        run=lambda: sensor.run(readings, trust=False), trust=lambda: sensor.run(readings))
        print(f"Python's run / the call beneath, mode {mode}: {least['run'] / least['call']:.2f}, "
              f"with trust {least['trust'] / least['call']:.2f}", flush=True)


def simulated(tool, folder, scratch, mode, rows):
    sensor, readings = f"{folder}/mode_{mode}/Tg5.prm", f"{scratch}/readings.csv"
    run(tool, "simulate", sensor, "--rows", str(rows), "--trajectory", "random", "--tilt", "5", "-o", readings)
    return sensor, readings


def two_processors(tool, folder, scratch):
    sensor, readings = simulated(tool, folder, scratch, 2, ROWS)
    for results in (os.devnull, f"{scratch}/results.csv"):
        command = [tool, "run", "-q", sensor, readings, "-o", results, "-j"]
        least = in_turn(3, one=lambda: run(*command, "1"), two=lambda: run(*command, "2"))
        print(f"kiv run, dual level, to {os.path.basename(results)}: {ROWS / least['one'] / 1e6:.2f} million rows a "
              f"second, two processors / one {least['one'] / least['two']:.2f}, "
              f"peak memory {peak_memory(*command, '2'):.1f} MB", flush=True)


def against_pandas(tool, folder, scratch):
    sensor, readings = simulated(tool, folder, scratch, 6, PANDAS_ROWS)
    compute = in_numpy(kiv.Parameters(sensor))
    ours, theirs = f"{scratch}/ours.csv", f"{scratch}/theirs.csv"

    def in_pandas():
        table = pd.read_csv(readings)
        table.drop(columns=list(_columns.READING.names), errors="ignore").assign(**compute(table)).to_csv(
            theirs, index=False)

    kiv_run = [tool, "run", "-q", sensor, readings, "-o", ours, "-j"]
    least = in_turn(3, pandas=in_pandas, one=lambda: run(*kiv_run, "1"), two=lambda: run(*kiv_run, "2"))
    print(f"pandas and numpy / kiv run, polarizer: {least['pandas'] / least['one']:.1f} on one processor, "
          f"{least['pandas'] / least['two']:.1f} on two", flush=True)


def cold_start(tool, folder, scratch):
    sensor, readings = simulated(tool, folder, scratch, 4, 10)
    commands = (["true"], [tool, "--help"], [tool, "run", sensor, readings])
    seconds = [[timed(run, *command) for command in commands] for _ in range(STARTS)]
    true, shown, ran = (statistics.median(column) for column in zip(*seconds))
    print(f"kiv run on ten rows / true: {ran / true:.1f}; kiv --help / true: {shown / true:.1f}", flush=True)


def main(tool, folder):
    for measure in (cold_start, python_run, against_pandas, two_processors):
        with tempfile.TemporaryDirectory() as scratch:
            measure(tool, folder, scratch)


if __name__ == "__main__":
    main(*sys.argv[1:])
