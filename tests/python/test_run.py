"""Sensor.run: the tool's digits, the kinds of tables, what does not fit."""

import copy
import hashlib
import json

import numpy as np
import pandas
import pytest

import kiv
from tool import in_mode, kiv_tool, number, same_bits, table

ONE = dict(status=2, x=4000, y=1500, z=450, azimuth_deg=12.5, elevation_deg=3, level_x=1, level_y=-2,
           temperature=20, ref_metric=0.1, ref_blocked=0)


def columns(n=6, **others):
    made = {name: np.full(n, value, "f4") for name, value in ONE.items()}
    made["azimuth_deg"] += np.arange(n, dtype="f4")
    return {**made, **others}


UNCERTAIN = dict(vector_across=0.05, azimuth_deg=1e-3, level_y=2e-3, tilt_offset_y_deg=0.01)


def sensor(mode=4, frame="machine", uncertainties=None):
    return kiv.Sensor(kiv.Parameters.from_text(in_mode(mode)), frame, uncertainties)


# As kiv calibrate writes it.
def calibration(text, names=("angle_offset.azimuth_deg", "level_x.gain", "scale_factor.6")):
    return {
        "parameters": {name: {"u": 0.002} for name in names},
        "correlation": {"names": names, "matrix": [[1, 0.3, 0], [0.3, 1, -0.8], [0, -0.8, 1]]},
        "parameter_file_sha256": hashlib.sha256(text).hexdigest(),
    }


@pytest.mark.parametrize("mode", range(1, 11))
def test_digits_are_the_tools(mode, tmp_path):
    file, csv = tmp_path / "Tg5.prm", tmp_path / "r.csv"
    file.write_text(in_mode(mode))
    text = kiv_tool("simulate", file, "--rows", 200, "--bad-share", 0.2, "--trajectory", "random")
    first = "0,2,3000,1000,500,10,-12,1,-1,20,0.1,1,0,0,0\n"  # not the reference
    vertical = "0,2,0,0,3000,0,0,0,0,20,0.1,0,0,0,0\n"
    csv.write_text(text.replace("\n", "\n" + first, 1) + vertical)
    readings = {name: [number(cell) for cell in cells] for name, cells in table(csv.read_text()).items()}
    uncertainties, found = tmp_path / "u.json", tmp_path / "result.json"
    found.write_text(json.dumps(calibration(file.read_bytes())))
    for frame, given, calibrated in (
        ("machine", None, None), ("machine", {}, None), ("machine", None, found), ("local", UNCERTAIN, found)
    ):
        uncertainties.write_text(json.dumps(given))
        options = [] if given is None else ["--uncertainties", uncertainties]
        options += [] if calibrated is None else ["--uncertainties", calibrated]
        expected = table(kiv_tool("run", file, csv, "--frame", frame, *options))
        results = kiv.Sensor(kiv.Parameters(file), frame, given, calibrated).run(readings, matrices=True)
        words = [kiv.State(state).name.lower() for state in results["state"]]
        assert words == list(expected["state"]) and {"ok", "reference", "refused", "status"} < set(words)
        trust = [kiv.Trust(number).name.lower() for number in results["trust"]]
        assert trust == [word or "none" for word in expected["trust"]] and "none" in trust
        assert list(results) == [name for name in expected if name not in {*readings, "reason", "code"}]
        same_bits(results, expected)
        one = copy.deepcopy(kiv.Sensor(kiv.Parameters(file), frame, given, calibrated))
        rows = [one.update(row, matrices=True) for row in pandas.DataFrame(readings).itertuples()]
        assert list(rows[0]) == list(results)
        for name, values in results.items():
            np.testing.assert_array_equal([row[name] for row in rows], values)


def structured(given):
    table = np.zeros(len(given["x"]), [(name, "f8") for name in given])
    for name, values in given.items():
        table[name] = values
    return table


def frame(given):
    return pandas.DataFrame(given, index=range(100, 100 + len(given["x"])))


@pytest.mark.parametrize("matrices, trust, uncertain", [(True, True, UNCERTAIN), (False, False, None)])
@pytest.mark.parametrize("kind", [structured, frame])
def test_a_table_comes_back_as_its_kind(kind, matrices, trust, uncertain):
    expected = sensor(6, "local", uncertain).run(columns(time_s=np.arange(6.0)), matrices, trust)
    assert ("trust" in expected) == trust
    given = kind(columns())
    results = sensor(6, "local", uncertain).run(given, matrices, trust)
    assert type(results) is type(given)
    assert list(getattr(results, "columns", results.dtype.names if kind is structured else ())) == list(expected)
    for name, values in expected.items():
        if kind is frame and name == "state":
            assert results[name].tolist() == ["reference"] + ["ok"] * 5
        elif kind is frame and name == "trust":
            assert results[name].isna().iloc[0] and results[name].iloc[1:].tolist() == ["good"] * 5
        else:
            np.testing.assert_array_equal(results[name], values)
    if kind is frame:
        assert results.index.tolist() == given.index.tolist()
    one = sensor(6, "local", uncertain)
    rows = [one.update(given.iloc[i] if kind is frame else given[i], matrices, trust) for i in range(6)]
    for i in (0, 5):
        np.testing.assert_equal(rows[i], {name: values[i] for name, values in expected.items()})
    one.frame = "machine"
    assert "u_reference_rx_deg" not in one.update(ONE, matrices, trust)


def read_only():
    values = np.full(6, 450, "f4")
    values.flags.writeable = False
    return values


@pytest.mark.parametrize("name, values", [
    ("z", read_only()),
    ("z", np.full((6, 7), 450.0)[:, 3]),
    ("z", np.full(12, 450.0)[::-2]),
    ("z", np.full(6, 450, ">f4")),
    ("z", np.full(6, 450, "u2")),
    ("z", np.frombuffer(b"\0" + np.full(6, 450, "f4").tobytes(), "u1")[1:].view("f4")),
    ("z", np.ma.masked_array([450.0] * 5 + [7], [0] * 5 + [1])),
    ("z", [450, 450.0, 450, 450, 450, None]),
    ("status", np.array([2, 2, 2, 2, 2, np.nan])),
    ("ref_blocked", [False, False, True, True, True, None]),
    ("temperature", np.array([20, 20, 20, 20, 20, 1e39])),
    ("level_x", np.array([1, 1, 1, 1, 1, np.inf])),
], ids=lambda value: "")
def test_values_of_any_type(name, values):
    expected = sensor().run(columns())
    given, one = columns(**{name: values}), sensor()
    results = sensor().run(given)
    states = results["state"].tolist()
    assert states == [one.update({name: cells[i] for name, cells in given.items()})["state"] for i in range(6)]
    last = isinstance(values, list) or not abs(np.ma.filled(values.astype("f8"), np.nan)[5]) < 1e38
    assert states == [kiv.State.REFERENCE] + [kiv.State.OK] * 4 + [kiv.State.REFUSED if last else kiv.State.OK]
    np.testing.assert_array_equal(results["rz_deg"][:5], expected["rz_deg"][:5])
    assert np.isnan(results["azimuth_corrected_deg"][5]) == last


@pytest.mark.parametrize("name, values, row, found", [
    ("x", None, None, "none"),
    ("x", [4000] * 5, None, "5"),
    ("x", np.ones((6, 1)), None, "(6, 1)"),
    ("x", 4000, None, "()"),
    ("x", [1, 2, "n/a", 4, 5, 6], 2, "n/a"),
    ("x", [1, 2, [3], 4, 5, 6], None, ""),
    ("x", np.full(6, 1j), 0, "1j"),
    ("x", np.zeros(6, "M8[s]"), 0, "1970"),
    ("x", np.ma.masked_array(np.zeros(6, "M8[s]")), 0, "1970"),
    ("x", np.array([np.timedelta64(3, "s")] * 6, object), 0, "timedelta"),
    ("status", [2, 2, 2, 2.5, 2, 2], 3, "2.5"),
    ("status", [2, 2, 2, 2, 2**31, 2], 4, "2147483648"),
    ("ref_blocked", [0, 1, 2, 0, 0, 0], 2, "2"),
], ids=lambda value: "")
def test_refusals_name_the_place_and_leave_the_sensor(name, values, row, found):
    given = columns(**{name: values})
    if values is None:
        del given[name]
    one = sensor()
    with pytest.raises(kiv.ReadingsError) as refused:
        one.run(given)
    error = refused.value
    assert (error.argument, error.column) == ("readings", name) and found in str(error)
    assert error.row == row and (row is None or f"column {name}, row {row} (from 0): " in str(error))
    assert one.reference is None
    if row is not None:
        with pytest.raises(kiv.ReadingsError, match=f"column {name}, row {row} .from 0., index {100 + row}: "):
            one.run(frame(given))
        with pytest.raises(kiv.ReadingsError, match=f"^reading: column {name}, row 0 .*: expected "):
            one.update({column: cells[row] for column, cells in given.items()})


@pytest.mark.parametrize("given, found", [
    ({"level": 1}, "one of x, y, z, .*'level'"),
    ({"level_y": -1}, "from 0 to 1e6 for 'level_y', found -1"),
    ({"level_y": "1"}, "a number .*'1'"),
    ({"level_x": 1}, "mount mode 4 reads.*'level_x'"),
    ({"x": 1, "vector_along": 1}, "'vector_along'"),
])
def test_uncertainties_that_do_not_fit(given, found):
    with pytest.raises(ValueError, match="uncertainties: expected .*" + found):
        sensor(uncertainties=given)


@pytest.mark.parametrize("given, found", [
    (calibration(b"x"), "the result of the calibration that wrote"),
    (dict(calibration(in_mode(4).encode()), parameters={}), "another shape"),
    (calibration(in_mode(4).encode(), ("qvc.x", "qvc.y", "qvc.a")), "a parameter that the angles"),
])
def test_a_calibration_that_does_not_fit(given, found):
    with pytest.raises(ValueError, match="calibration: .*" + found):
        kiv.Sensor(kiv.Parameters.from_text(in_mode(4)), calibration=given)


def test_pandas_own_types():
    given = frame(columns())
    given["status"] = pandas.array([2, 2, 2, 2, 2, None], "Int64")
    given["ref_blocked"] = pandas.array([False] * 5 + [None], "boolean")
    assert sensor().run(given)["state"].tolist() == ["reference", "ok", "ok", "ok", "ok", "refused"]
    twice = pandas.concat([given, given.x], axis=1)
    for wrong in (lambda: sensor().run(twice), lambda: sensor().update(twice.iloc[0])):
        with pytest.raises(kiv.ReadingsError, match="column x: expected one"):
            wrong()


def test_no_rows():
    for given in (columns(0), structured(columns(0)), frame(columns(0))):
        assert len(sensor(8).run(given, matrices=True)["rx_deg"]) == 0


def test_a_million_rows_are_those_of_their_parts():
    n = 1_000_000
    given = columns(n, azimuth_deg=np.linspace(-170, 170, n, dtype="f4"))
    given["status"][18_000] = np.nan
    results = sensor(6).run(given)
    assert np.flatnonzero(results["state"] == kiv.State.REFUSED).tolist() == [18_000]
    parts = sensor(6)
    cuts = [0, 1, 16384, 700_001, n]
    for a, b in zip(cuts, cuts[1:]):
        part = parts.run({name: values[a:b] for name, values in given.items()})
        for name, values in part.items():
            np.testing.assert_array_equal(values, results[name][a:b])
