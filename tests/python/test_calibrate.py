"""kiv.calibrate finds what kiv calibrate finds, from files and from what is in memory."""

import json

import pandas
import pytest

import kiv
from tool import EXAMPLE, kiv_tool

U = {"vector_across": 0.05, "azimuth_deg": 0.001, "elevation_deg": 0.001, "level_y": 0.002}


def test_files_and_frames(tmp_path):
    file, readings, new = (tmp_path / name for name in ("Tg5.prm", "readings.csv", "new.prm"))
    file.write_text(EXAMPLE)
    noise = ("--noise-vector", 0.05, "--noise-encoder", 0.001, "--noise-level", 0.002)
    readings.write_text(kiv_tool("simulate", file, "--trajectory", "random", "--rows", 120, *noise))
    file.write_text(EXAMPLE.replace("12.5\t", "13\t"))
    given = dict(uncertainties=U, hold=["scale_factor.2"], priors={"scale_factor.6": (1, 0.001)}, robust=True)
    found = kiv.calibrate(file, [readings], output=new, **given)

    (tmp_path / "u.json").write_text(json.dumps(U))
    kiv_tool("calibrate", file, readings, "-o", tmp_path / "tool.prm", "--result", tmp_path / "tool.json", "--robust",
             "--uncertainties", tmp_path / "u.json", "--hold", "scale_factor.2", "--prior", "scale_factor.6=1,0.001")
    told = json.loads((tmp_path / "tool.json").read_text())
    assert {**found.result, "parameter_file": 0} == {**told, "parameter_file": 0}
    assert new.read_bytes() == found.new.text == (tmp_path / "tool.prm").read_bytes()
    azimuth = found.parameters.loc["angle_offset.azimuth_deg"]
    assert azimuth.old == 13 and abs(azimuth.value - 12.5) < 3 * azimuth.u
    assert found.held.reason["scale_factor.2"] == "asked for"
    assert (found.correlation.index == found.parameters.index).all() and len(found.rejected) == 0

    frame = pandas.read_csv(readings, float_precision="round_trip").astype({"ref_blocked": bool})
    again = kiv.calibrate(kiv.Parameters(file), frame, **given)
    pandas.testing.assert_frame_equal(again.parameters, found.parameters)
    angles = kiv.Sensor(again.new, calibration=again.result).run(frame)
    assert 0 < angles["u_calibration_rz_deg"].max() < 0.01
    plan = kiv.calibrate(file, frame, uncertainties=U, dry_run=True)
    assert plan.new is None and (plan.parameters.u < 0.5).all()
    with pytest.raises(ValueError, match="readings:1:1: expected 40 rows"):
        kiv.calibrate(file, frame.head(20), uncertainties=U)
