"""Differences of two tables of results, by kiv compare."""

from __future__ import annotations

import json
import os
import subprocess
import tempfile
from typing import TYPE_CHECKING, Any, Dict, NamedTuple, Union

from ._poses import _tool

if TYPE_CHECKING:
    import pandas

    Table = Union[str, os.PathLike[str], pandas.DataFrame]

_FIGURES = ("rx", "ry", "rz", "angle")


class Comparison(NamedTuple):
    """What kiv compare gives: rows, one for each pair, with the columns of its output; figures, a line for each of rx,
    ry, rz and the angle of the rotation, with the columns of its summary; summary, all of that as a dict. Angles are
    degrees."""

    rows: pandas.DataFrame
    figures: pandas.DataFrame
    summary: Dict[str, Any]


def _path(table: Any, folder: str, name: str) -> str:
    if isinstance(table, (str, os.PathLike)):
        return os.fspath(table)
    path = os.path.join(folder, name)
    table.astype(str).replace(["nan", "None", "<NA>"], "").to_csv(path, index=False)
    return path


def compare(first: Table, second: Table, join: str = "line", frame: str = "machine") -> Comparison:
    """Compares two tables of results or of poses, frames or files as kiv run writes them.

    The columns rx_deg, ry_deg, rz_deg (degrees) have to be there, u_rx_deg, u_ry_deg, u_rz_deg may. Rows belong
    together by their line, which in a frame is the row, by time (column time_s or time, rising) or by the column that
    join names. The frame, machine or local, is that of the angles. Differences are those of the second to the first.

    Raises ValueError with the tool's message where it cannot use the tables, FileNotFoundError where the tool is neither
    on the path nor in the environment's KIV_TOOL.
    """
    import pandas

    with tempfile.TemporaryDirectory() as folder:
        paths = [_path(first, folder, "first.csv"), _path(second, folder, "second.csv")]
        rows, summary = os.path.join(folder, "rows.csv"), os.path.join(folder, "summary.json")
        asked = ["--join", join, "--frame", frame, "-o", rows, "--summary", summary]
        run = subprocess.run([_tool(), "compare", *paths, *asked], capture_output=True, encoding="utf-8")
        if run.returncode not in (0, 1):
            raise ValueError(run.stderr.strip())
        with open(summary, encoding="utf-8") as file:
            told = json.load(file)
        differences = pandas.read_csv(rows, float_precision="round_trip")
    figures = pandas.DataFrame({name: told[name] or {} for name in _FIGURES}).T
    return Comparison(differences, figures, told)
