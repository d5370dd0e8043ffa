#!/usr/bin/env python3
"""Runs a recording that is cut into files on Dask and keeps the results as Parquet, a file for each of them.

    parquet_recording.py PARAMETER_FILE FOLDER READINGS.csv... [--workers N | --scheduler ADDRESS]

pandas needs pyarrow or fastparquet for Parquet. Debian 12 has a package of neither: `pip install pyarrow` in a virtual
environment with `--system-site-packages` is the way there. What is read back has every bit of one run of the whole.
"""

import argparse
from pathlib import Path

import dask
import pandas
from dask.distributed import Client

import dask_recording
import kiv


def write(results, folder):
    """A file for each frame; words as texts."""
    folder = Path(folder)
    folder.mkdir()
    for part, frame in enumerate(results):
        frame.astype({name: str for name in ("state", "trust") if name in frame}).to_parquet(
            folder / f"part.{part:06}.parquet", index=False)


def read(folder):
    """One frame of all files, read side by side."""
    files = sorted(Path(folder).glob("part.*.parquet"))
    return pandas.concat(dask.compute(*map(dask.delayed(pandas.read_parquet), files)), ignore_index=True)


def main():
    arguments = argparse.ArgumentParser(description="Keeps the results of a recording in files as Parquet.")
    arguments.add_argument("parameter_file")
    arguments.add_argument("folder")
    arguments.add_argument("readings", nargs="+")
    where = arguments.add_mutually_exclusive_group()
    where.add_argument("--workers", type=int, default=2, help="processes that are started here")
    where.add_argument("--scheduler", help="address of one that runs")
    given = arguments.parse_args()
    how = dict(n_workers=given.workers, threads_per_worker=1, dashboard_address=None)
    with Client(given.scheduler) if given.scheduler else Client(**how) as client:
        sensor = kiv.Sensor(kiv.Parameters(given.parameter_file))
        write(dask_recording.run_recording(client, sensor, given.readings), given.folder)


if __name__ == "__main__":
    main()
