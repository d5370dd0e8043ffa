#!/usr/bin/env python3
"""Runs a recording that is cut into files on Dask and keeps the results as Parquet, a file for each of them.

    parquet_recording.py PARAMETER_FILE FOLDER READINGS.csv... [--workers N | --scheduler ADDRESS]

pandas needs pyarrow or fastparquet for Parquet. Debian 12 has a package of neither: `pip install pyarrow` in a virtual
environment with `--system-site-packages` is the way there. What is read back has every bit of one run of the whole.
"""

from pathlib import Path

import dask
import pandas

import dask_recording


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


if __name__ == "__main__":
    dask_recording.main("Keeps the results of a recording in files as Parquet.", "folder", write)
