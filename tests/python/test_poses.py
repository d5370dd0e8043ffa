"""Poses by the package are those of the tool; from a folder to a certificate."""

import subprocess
import sys

import numpy as np
import pandas
import pytest

import kiv
from tool import EXAMPLE, ROOT, kiv_tool, table


def recordings(folder):
    """Two stations, measured twice each, in two files."""
    file = folder / "Tg5.prm"
    file.write_text(EXAMPLE)
    for part, count in ((1, 60), (2, 70)):
        rows = kiv_tool("simulate", file, "--trajectory", "still", "--rows", count,
                        "--noise-encoder", 0.001, "--noise-level", 0.001).splitlines()
        marked = [("B," if line.startswith("0.4") else "A,") + line for line in rows[1:]]
        (folder / f"part{part}.csv").write_text("\n".join(["station," + rows[0], *marked]) + "\n")
    return file, folder / "part1.csv"


def test_poses_are_those_of_the_tool(tmp_path):
    file, readings_file = recordings(tmp_path)
    expected = table(kiv_tool("poses", file, readings_file, "--by", "station", "--same", 1))
    readings = pandas.read_csv(readings_file, float_precision="round_trip")
    results = readings.join(kiv.Sensor(kiv.Parameters(str(file))).run(readings, matrices=True))
    poses = kiv.poses(results, by="station", same=1)
    assert list(poses) == list(expected)
    for name, cells in expected.items():
        if name not in ("station", "u_is", "drifts", "trust"):
            want = np.array([float(cell or "nan") for cell in cells])
            np.testing.assert_array_equal(poses[name].to_numpy(np.float64), want, name)
    assert poses.attrs["repeatability"]["degrees_of_freedom"] == len(poses) - 1
    with pytest.raises(ValueError, match='results:1:1: expected a column "none" for --by'):
        kiv.poses(results, by="none")


def test_a_certificate_of_a_folder(tmp_path):
    file, _ = recordings(tmp_path)
    run = subprocess.run([sys.executable, ROOT / "examples/certificate.py", file, tmp_path, "--by", "station",
                          "-o", tmp_path / "certificate.txt"], capture_output=True, text=True)
    assert run.returncode == 0, run.stderr
    certificate = pandas.read_csv(tmp_path / "certificate.txt")
    assert len(certificate) == 6  # A, B and A again, twice
    assert (certificate["U_rz_deg"].between(1e-4, 1e-2)).all(), certificate
