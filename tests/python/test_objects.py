"""Parameters, copies and pickles, the guide's lines, the wheel."""

import copy
import os
import pickle
import re
import subprocess
import sys
import threading
from concurrent.futures import ThreadPoolExecutor
from zipfile import ZipFile

import numpy as np
import pytest

import kiv
from test_run import ONE, UNCERTAIN, calibration, columns, sensor
from tool import EXAMPLE, ROOT


def test_parameters_give_the_files_values(tmp_path):
    parameters = kiv.Parameters(ROOT / "examples/Tg5.prm")
    assert len(parameters) == 24 and "no_block" not in parameters and parameters.text == EXAMPLE.encode()
    assert parameters["serial_number"] == 5 and parameters["device_owner"] == "Example"
    assert parameters["machine_coordinate_tranform_matrix"].shape == (3, 3) and parameters["az_calibration_table"].shape == (360, 2)
    assert parameters.limits("tilt_y_calibration_table") == (-9, 9)
    for wrong in (lambda: parameters["no_block"], lambda: parameters.limits("az_calibration_table")):
        with pytest.raises(KeyError):
            wrong()
    parameters.rewrite(tmp_path / "Ünë.prm")
    again = kiv.Parameters(tmp_path / "Ünë.prm")
    for block in parameters:
        if isinstance(parameters[block], np.ndarray):  # six decimals
            np.testing.assert_allclose(again[block], parameters[block], atol=1e-6)
        else:
            assert again[block] == parameters[block]
    with pytest.raises(OSError):
        parameters.rewrite(tmp_path / "none" / "Tg5.prm")


def test_a_fault_in_a_parameter_file_has_its_place(tmp_path):
    file = tmp_path / "Tg5.prm"
    file.write_text(EXAMPLE.replace("12.5\t-3.25", "12.5\tn/a"))
    with pytest.raises(kiv.ParameterFileError) as refused:
        kiv.Parameters(file)
    for error in (refused.value, pickle.loads(pickle.dumps(refused.value))):
        assert (error.line, error.column, error.code) == (16, 6, 553)
        assert "number" in error.expected and "n/a" in error.found
        assert str(error).startswith(f"{file}:16:6: expected ")
    with pytest.raises(kiv.ParameterFileError):
        kiv.Parameters.from_text("")


def test_what_is_doubtful_in_a_parameter_file_is_warned_of():
    with pytest.warns(kiv.ParameterFileWarning, match="^text:28:14: expected a slope .*, found 0 and 0$"):
        kiv.Parameters.from_text(EXAMPLE.replace("0.0004	0.992	-0.0003	1.006", "0.0004	0.992	0	0"))


@pytest.mark.parametrize("make, kind", [
    (lambda path: path / "Tg5.prm", FileNotFoundError),
    (lambda path: path, IsADirectoryError),
    (lambda path: "/dev/null", kiv.FileError),
    (lambda path: "Tg\0.prm", ValueError),
])
def test_files_that_cannot_be_read(make, kind, tmp_path):
    with pytest.raises(kind):
        kiv.Parameters(make(tmp_path))


def test_wrong_arguments():
    one = sensor()
    for wrong, kind in ((lambda: kiv.Sensor("Tg5.prm"), TypeError),
                        (lambda: kiv.Parameters.from_text(5), TypeError),
                        (lambda: one.run([1, 2]), TypeError),
                        (lambda: one.run(np.zeros(3)), TypeError),
                        (lambda: one.update((1, 2)), TypeError),
                        (lambda: sensor(4, "world"), ValueError),
                        (lambda: setattr(one, "frame", 1), ValueError),
                        (lambda: one.capture_reference(dict(ONE, status=1)), kiv.Error),
                        (lambda: one.capture_reference(dict(x=1)), kiv.ReadingsError)):
        with pytest.raises(kind):
            wrong()
    assert one.frame == "machine" and one.reference is None


def in_another_process(one):
    code = ("import pickle, sys; s, r = pickle.load(sys.stdin.buffer);"
            "sys.stdout.buffer.write(pickle.dumps(s.run(r)))")

    pickled = pickle.loads(pickle.dumps(one))

    def run(readings):
        given = pickle.dumps((pickled, readings))
        work = subprocess.run([sys.executable, "-c", code], input=given, stdout=-1, check=True)
        return pickle.loads(work.stdout)

    return run


def captured(one):
    made = kiv.Sensor(one.parameters, one.frame, one.uncertainties, one.calibration)
    made.capture_reference(one.reference)
    return made.run


@pytest.mark.parametrize("mode", [2, 4, 6, 8, 10])
@pytest.mark.parametrize("twin", [lambda one: copy.copy(one).run, lambda one: copy.deepcopy(one).run,
                                  captured, in_another_process])
def test_a_twin_has_the_reference(twin, mode):
    plain = sensor(mode)
    one = kiv.Sensor(plain.parameters, "local", UNCERTAIN, calibration(plain.parameters.text))
    readings = columns(6, ref_blocked=[1, 1, 0, 0, 0, 0])
    one.run(readings)
    assert one.reference_row == 2 and one.reference["azimuth_deg"] == 14.5
    run = twin(one)
    for name, values in run(readings).items():
        np.testing.assert_array_equal(values, one.run(readings)[name])
    one.capture_reference(dict(ONE, azimuth_deg=40))  # the twin keeps its own
    assert one.reference_row is None
    assert (run(readings)["rz_deg"] != one.run(readings)["rz_deg"]).all() or mode >= 7


class OwnParameters(kiv.Parameters):
    pass


class OwnSensor(kiv.Sensor):
    pass


@pytest.mark.parametrize("twin", [copy.copy, copy.deepcopy, lambda one: pickle.loads(pickle.dumps(one))])
def test_a_subclass_stays_one(twin):
    one = OwnSensor(OwnParameters.from_text(EXAMPLE), "local")
    one.note = one.parameters.note = "north pier"
    made = twin(one)
    assert type(made) is OwnSensor and type(twin(made.parameters)) is OwnParameters
    assert made.note == twin(made.parameters).note == "north pier" and made.frame == "local"


def on_threads(*functions):
    together = threading.Barrier(len(functions))
    with ThreadPoolExecutor(len(functions)) as pool:
        return [work.result() for work in [pool.submit(lambda f=f: (together.wait(), f())[1]) for f in functions]]


def test_one_sensor_on_threads_gives_whole_runs():
    one, blocked = sensor(6, "local"), 20_000
    given = columns(50_000, ref_blocked=np.arange(50_000) < blocked)
    states = [results["state"] for results in on_threads(*[lambda: one.run(given)] * 4)]
    first = [state for state in states if state[0] == kiv.State.NO_REFERENCE]
    assert len(first) == 1 and first[0][blocked] == kiv.State.REFERENCE
    assert sum((state == kiv.State.OK).all() for state in states) == 3

    def turn_frames():
        for frame in ("machine", "local") * 500:
            one.frame = frame

    local = one.run(given)["rz_deg"]
    one.frame = "machine"
    machine = one.run(given)["rz_deg"]
    runs = on_threads(turn_frames, lambda: [one.run(given)["rz_deg"] for _ in range(10)])[1]
    for rz in runs:
        assert np.array_equal(rz, local) or np.array_equal(rz, machine)


@pytest.mark.skipif(not hasattr(os, "fork"), reason="no fork on this system")
def test_a_process_that_is_forked_during_a_run():
    code = """
import os, sys, threading
sys.path.insert(0, sys.argv[1])
from test_run import columns, sensor
busy, free = sensor(6), sensor(6)
thread = threading.Thread(target=lambda: busy.run(columns(3_000_000)))
thread.start()
while busy._lock._lock.acquire(blocking=False):
    busy._lock._lock.release()
if os.fork() == 0:
    assert free.run(columns(2))["state"].tolist() == [3, 0]
    try:
        print(busy.frame)
    except RuntimeError as refused:
        print(refused, busy, flush=True)
    os._exit(0)
os.wait()
thread.join()
print(busy.frame)
"""
    run = subprocess.run([sys.executable, "-c", code, ROOT / "tests/python"], capture_output=True, text=True, timeout=60)
    assert run.stdout == (
        "sensor: expected no run on another thread when this process was forked, found one; make the sensor anew here, "
        "or fork between the runs <kiv.Sensor, in a run when the process was forked>\nmachine\n"), run.stderr


def test_the_guides_lines(capsys, monkeypatch):
    monkeypatch.chdir(ROOT / "examples")
    lines = re.search(r"```python\n(.*?)```", (ROOT / "docs/host-guide.md").read_text(), re.S)[1]
    readings = columns(2, azimuth_deg=[12.5, 27.5])
    exec(lines, dict(readings=readings))
    results = sensor().run(readings)
    expected = "rx %.4f  ry %.4f  rz %.4f degrees\n" % tuple(results[f"r{axis}_deg"][1] for axis in "xyz")
    assert capsys.readouterr().out == expected


def test_the_wheel_works_by_itself(tmp_path, monkeypatch):
    wheels = []
    for folder, moment in (("a", "0"), ("b", "315532800")):  # a wheel's oldest time
        monkeypatch.setenv("SOURCE_DATE_EPOCH", moment)
        (tmp_path / folder).mkdir()
        command = [sys.executable, ROOT / "python/make-wheel", kiv._library._dll._name, tmp_path / folder]
        wheels.append(subprocess.run(command, check=True, capture_output=True, text=True).stdout.strip())
    assert open(wheels[0], "rb").read() == open(wheels[1], "rb").read()
    assert re.fullmatch(r"kiv-[\d.]+-py3-none-manylinux_2_\d+_x86_64\.whl", wheels[0].split("/")[-1])
    with ZipFile(wheels[0]) as archive:
        archive.extractall(tmp_path / "installed")
        packed = {name[4:] for name in archive.namelist() if name.startswith("kiv/")}
        assert packed == {p.name for p in (ROOT / "python/kiv").glob("*.*")} | {"libkiv.so.1"}
    monkeypatch.delenv("KIV_LIBRARY")
    monkeypatch.setenv("PYTHONPATH", str(tmp_path / "installed"))
    code = "import doctest, kiv; print(kiv.__file__, *doctest.testmod(kiv))"
    run = subprocess.run([sys.executable, "-c", code], cwd=ROOT / "examples", capture_output=True, text=True)
    file, failed, attempted = run.stdout.split()
    assert file.startswith(str(tmp_path)) and int(attempted) > 5 and failed == "0", run.stdout + run.stderr
