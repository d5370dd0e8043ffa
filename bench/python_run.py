"""python_run.py UPDATE_LOOP FOLDER: Sensor.run on a million rows of float32 columns, without trust and with it,
against a C++ loop over the same records, against numpy over the formulas of the polarizer model, and on two
threads.

FOLDER has mode_<N>/Tg5.prm. Times are the least of some passes, in turn with what they are compared with.
"""

import subprocess
import sys
import tempfile
import threading
import time

import numpy as np

import kiv
from kiv import _columns
from numpy_polarizer import in_numpy

N = 1_000_000


def recording():
    random = np.random.default_rng(1)
    turn = np.linspace(0, 60, N)
    made = dict(status=np.full(N, 2), x=4000 + 9 * turn, y=1500 - 7 * turn, z=450 + turn, azimuth_deg=turn,
                elevation_deg=5 * np.sin(turn), level_x=random.uniform(-5, 5, N), level_y=random.uniform(-5, 5, N),
                temperature=20 + turn / 60, ref_metric=np.full(N, 0.1), ref_blocked=np.zeros(N))
    return {name: values.astype(np.float32) for name, values in made.items()}


def timed(call):
    start = time.perf_counter()
    call()
    return time.perf_counter() - start


def on_two_threads(sensors, readings):
    threads = [threading.Thread(target=sensor.run, args=(readings,)) for sensor in sensors]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def main(loop, folder):
    readings = recording()
    records = np.zeros(N, _columns.READING)
    _columns.Readings("readings", readings).fill(records, 0)
    with tempfile.NamedTemporaryFile() as file:
        records.tofile(file.name)
        print("mode  C++ loop ns  run / loop, at most 1.25  with trust / loop, at most 1.5  "
              "two threads / one, at least 1.8")
        for mode in (2, 4, 6, 8, 10):
            path = f"{folder}/mode_{mode}/Tg5.prm"
            sensors = [kiv.Sensor(kiv.Parameters(path)) for _ in range(2)]
            cpp, one, trusted, two = [], [], [], []
            for _ in range(2 if mode == 4 else 5):
                cpp.append(float(subprocess.check_output([loop, path, file.name, "1"])))
                one.append(timed(lambda: sensors[0].run(readings, trust=False)))
                trusted.append(timed(lambda: sensors[0].run(readings)))
                two.append(timed(lambda: on_two_threads(sensors, readings)))
            print(f"{mode:4}  {min(cpp) * 1e9 / N:11.0f}  {min(one) / min(cpp):23.3f}  "
                  f"{min(trusted) / min(cpp):29.3f}  {2 * min(trusted) / min(two):30.2f}", flush=True)
    sensor = kiv.Sensor(kiv.Parameters(f"{folder}/mode_6/Tg5.prm"))
    run = in_numpy(sensor.parameters)
    results, angles = sensor.run(readings), run(readings)
    apart = max(np.nanmax(abs(results[f"r{axis}_deg"] - angles[f"r{axis}_deg"])) for axis in "xyz")
    ours, numpys = (min(timed(lambda: call(readings)) for _ in range(3)) for call in (sensor.run, run))
    print(f"numpy / run, polarizer, at least 1: {numpys / ours:.2f}; the angles are {apart:.1g} degrees apart at most")


if __name__ == "__main__":
    main(*sys.argv[1:])
