#!/usr/bin/env python3
"""Goes from a folder of recordings to the table of a certificate.

    certificate.py PARAMETER_FILE FOLDER [--by COLUMN] [-o TABLE.csv]

Each recording, a .csv file with the columns of `kiv run`, has the readings of still poses: one pose each, or with --by
those of each station. The first row of all that can becomes the reference. The table has a row for each pose: its
angles and their expanded uncertainties U for about 95 %, of
- the mean of the rows, by their scatter,
- the model's own error, as a rectangular distribution,
- the repeatability, where stations come again.
The uncertainty of the instrument that the sensor is compared with is not in it: add it.
"""

import argparse
import pathlib

import pandas

import kiv

# %% Readings: all recordings in the order of their names, each row with its file.


def readings_in(folder):
    paths = sorted(pathlib.Path(folder).glob("*.csv"))
    if not paths:
        raise SystemExit(f"{folder}: expected recordings (.csv), found none")
    parts = [pandas.read_csv(path, float_precision="round_trip").assign(recording=path.stem) for path in paths]
    return pandas.concat(parts, ignore_index=True)


# %% Results: the orientation of each row, and of each pose.


def poses_of(parameter_file, readings, by):
    sensor = kiv.Sensor(kiv.Parameters(parameter_file))
    results = readings.join(sensor.run(readings, matrices=True))
    # A pose begins with each recording and with each station in it.
    results["place"] = results[by].astype(str) if by else results["recording"]
    results["part"] = results["recording"] + " " + results["place"]
    poses = kiv.poses(results, by="part", pose_id="place")
    if poses.attrs["poses"]["moving"]:
        raise SystemExit(poses.attrs["messages"] + "Give --by, or recordings of one pose each.")
    good = results[results["state"] == "ok"]
    error = good.groupby("part")["model_error_deg"].max()
    return poses.assign(model_error_deg=poses["part"].map(error)), poses.attrs["repeatability"]


# %% The certificate: what is measured, and how well it is known.


def certificate_of(poses, repeatability):
    used = poses[(poses["rows"] > 1) & (poses["trust"] == "good")]
    table = used[["part", "rows"]].copy()
    for axis in ("rx", "ry", "rz"):
        parts = used[f"u_{axis}_deg"] ** 2 + used["model_error_deg"] ** 2 / 3
        if repeatability:
            parts = parts + repeatability["axes"][axis]["deviation_deg"] ** 2
        table[f"{axis}_deg"] = used[f"{axis}_deg"].round(5)
        table[f"U_{axis}_deg"] = (2 * parts**0.5).round(5)
    return table.assign(note=used["u_is"].map({"lower_bound": "U is a lower bound: record longer"}).fillna(""))


def main():
    arguments = argparse.ArgumentParser(description="From a folder of recordings to the table of a certificate.")
    arguments.add_argument("parameter_file")
    arguments.add_argument("folder")
    arguments.add_argument("--by", metavar="COLUMN")
    arguments.add_argument("-o", "--output", metavar="TABLE.csv")
    given = arguments.parse_args()
    table = certificate_of(*poses_of(given.parameter_file, readings_in(given.folder), given.by))
    if given.output:
        table.to_csv(given.output, index=False)
    else:
        print(table.to_string(index=False))


if __name__ == "__main__":
    main()
