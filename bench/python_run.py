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


def natural_spline(knots, values):
    """Second derivatives at the knots."""
    h = np.diff(knots)
    a = np.eye(len(knots))
    b = np.zeros(len(knots))
    for i in range(1, len(knots) - 1):
        a[i, i - 1 : i + 2] = h[i - 1], 2 * (h[i - 1] + h[i]), h[i]
        b[i] = 6 * ((values[i + 1] - values[i]) / h[i] - (values[i] - values[i - 1]) / h[i - 1])
    return np.linalg.solve(a, b)


def in_numpy(parameters):
    """What a user would write for modes 5 and 6: angles rx, ry, rz in machine coordinates, degrees."""
    block = {name: parameters[name] for name in parameters.blocks}
    knots, values = block["tilt_y_calibration_table"].astype(float).T
    bends = natural_spline(knots, values)
    s = block["scale_factor"].astype(float)
    offsets = np.radians(block["angle_offset"].astype(float))
    machine = np.linalg.inv(block["machine_coordinate_tranform_matrix"].astype(float))

    def turned(axis, angle):
        c, n, i, j = np.cos(angle), np.sin(angle), (axis + 1) % 3, (axis + 2) % 3
        m = np.zeros((*np.shape(angle), 3, 3))
        m[..., axis, axis] = 1
        m[..., i, i], m[..., i, j], m[..., j, i], m[..., j, j] = c, -n, n, c
        return m

    def encoder(raw, table):
        return raw + np.interp(raw, *block[table].T, period=360)

    def run(r):
        k = np.clip(np.searchsorted(knots, r["level_y"]) - 1, 0, len(knots) - 2)
        h = knots[k + 1] - knots[k]
        a, b = (knots[k + 1] - r["level_y"]) / h, (r["level_y"] - knots[k]) / h
        tilt = a * values[k] + b * values[k + 1] + ((a**3 - a) * bends[k] + (b**3 - b) * bends[k + 1]) * h**2 / 6
        slope, intercept = block["thermal_compensation_factor"][2:]
        tilt = (tilt - block["tilt_sensor_offset"][1]) * (slope * r["temperature"] + intercept)
        x, y, z = (r[name].astype(float) for name in "xyz")
        matrix = machine @ turned(2, -np.arctan2(x, y))
        for axis, angle in (
            (0, np.arcsin(z / np.sqrt(x * x + y * y + z * z))),
            (1, np.radians((s[1] + tilt) * s[6])),
            (2, np.radians(s[0])),
            (0, (offsets[1] - np.radians(encoder(r["elevation_deg"], "el_calibration_table"))) * s[5]),
            (2, (offsets[0] - np.radians(encoder(r["azimuth_deg"], "az_calibration_table"))) * s[4]),
        ):
            matrix = matrix @ turned(axis, angle)
        return np.degrees([np.arctan2(-matrix[:, 1, 2], matrix[:, 2, 2]), np.arcsin(matrix[:, 0, 2]),
                           np.arctan2(-matrix[:, 0, 1], matrix[:, 0, 0])])

    return run


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
    apart = max(np.nanmax(abs(results[f"r{axis}_deg"] - angles[i])) for i, axis in enumerate("xyz"))
    ours, numpys = (min(timed(lambda: call(readings)) for _ in range(3)) for call in (sensor.run, run))
    print(f"numpy / run, polarizer, at least 1: {numpys / ours:.2f}; the angles are {apart:.1g} degrees apart at most")


if __name__ == "__main__":
    main(*sys.argv[1:])
