"""kiv.compare, and what kiv compare finds in two recordings of the same poses."""

import numpy as np
import pandas
import pytest

import kiv
from tool import in_mode, kiv_tool

NOISE = dict(encoder=0.002, level=0.02)


def recording(file, poses, seed):
    noise = [word for name, value in NOISE.items() for word in (f"--noise-{name}", value)]
    readings = file.parent / f"{seed}.csv"
    readings.write_text(kiv_tool("simulate", file, "--poses", poses, "--seed", seed, *noise))
    results = file.parent / f"results{seed}.csv"
    uncertain = [word for name, value in NOISE.items() for word in (f"--u-{name}", value)]
    kiv_tool("run", file, readings, "-o", results, "--reference", poses.parent / "reference.csv", *uncertain)
    return results


@pytest.mark.parametrize("mode", [2, 4, 6])
def test_two_recordings_of_the_same_poses(mode, tmp_path):
    file, poses = tmp_path / "Tg5.prm", tmp_path / "poses.csv"
    file.write_text(in_mode(mode))
    (tmp_path / "reference.csv").write_text(kiv_tool("simulate", file, "--rows", 2))
    random = np.random.default_rng(1)
    n = 4000
    pandas.DataFrame(dict(
        pose=np.arange(n), x=4000 + random.normal(0, 100, n), y=1500 + random.normal(0, 100, n),
        z=450 + random.normal(0, 20, n), yaw_deg=random.uniform(0, 40, n), pitch_deg=random.uniform(-3, 3, n),
        roll_deg=random.uniform(-3, 3, n))).to_csv(poses, index=False)
    first, second = recording(file, poses, 1), recording(file, poses, 2)
    compared = kiv.compare(first, second, join="pose")
    assert len(compared.rows) > 0.9 * n
    assert compared.figures.share_beyond_2u.between(0.04, 0.06).all(), compared.figures
    shuffled = pandas.read_csv(second, float_precision="round_trip").sample(frac=1, random_state=1)
    again = kiv.compare(first, shuffled, join="pose")
    pandas.testing.assert_frame_equal(again.figures, compared.figures)
    with pytest.raises(ValueError, match="expected a column"):
        kiv.compare(first, second, join="station")
