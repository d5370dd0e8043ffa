"""Poses of a recording, by the tool kiv: what it computes here is what it computes on a terminal."""

from __future__ import annotations

import io
import json
import os
import shutil
import subprocess
import sys
import tempfile
from typing import Any, List, Optional

from ._columns import is_frame


def _tool() -> str:
    path = os.environ.get("KIV_TOOL") or shutil.which("kiv")
    if path is None:
        raise FileNotFoundError("expected the tool kiv on the path or in KIV_TOOL, found none")
    return path


def poses(
    results: Any,
    *,
    by: Optional[str] = None,
    pause: Optional[float] = None,
    still: Optional[float] = None,
    rows: Optional[int] = None,
    with_not_good: bool = False,
    pose_id: Optional[str] = None,
    same: Optional[float] = None,
    frame: str = "machine",
) -> Any:
    """One row for the rows of each pose, with the columns of kiv poses.

    results: a DataFrame of Sensor.run, with matrices for all digits, joined with the columns that
      by, pose_id, pause (time_s or time) and the true angles need.
    by: a column; rows in succession with the same value are a pose.
    pause: seconds; a longer time between two rows ends a pose.
    still: degrees; a row further from the mean of those before ends a pose of at least rows rows.
    with_not_good: rows whose trust is not good are used, too.
    pose_id: a column; poses whose first rows have the same value are the same.
    same: degrees; poses no further apart are the same.
    frame: that of the results, machine or local.

    The attribute attrs of the frame has what is said of all poses: poses, repeatability and
    against_true_angles, as the summary of kiv poses has them, and the messages.

    Raises ValueError with the tool's message where it cannot use the columns, FileNotFoundError
    where the tool is neither on the path nor in the environment's KIV_TOOL.

    >>> import kiv, pandas
    >>> sensor = kiv.Sensor(kiv.Parameters("Tg5.prm"))
    >>> readings = pandas.read_csv("readings.csv").head(40)
    >>> results = readings.join(sensor.run(readings, matrices=True))
    >>> found = kiv.poses(results, pause=1)
    >>> print(list(found["rows"]), found.attrs["poses"]["left_out"])
    [39] 1
    """
    if not is_frame(results):
        raise TypeError(f"results: expected a DataFrame, found {type(results).__name__}")
    arguments: List[str] = ["--with-not-good"] if with_not_good else []
    options = {"by": by, "pause": pause, "still": still, "rows": rows, "pose-id": pose_id, "same": same}
    for name, value in options.items():
        arguments += [] if value is None else [f"--{name}", str(value)]
    with tempfile.TemporaryDirectory() as folder:
        table, summary = os.path.join(folder, "results.csv"), os.path.join(folder, "summary.json")
        results.to_csv(table, index=False)
        run = subprocess.run(
            [_tool(), "poses", "--from", table, "--frame", frame, "--summary", summary, *arguments],
            capture_output=True,
            encoding="utf-8",
        )
        if run.returncode not in (0, 1):
            raise ValueError(run.stderr.strip().replace(table, "results"))
        with open(summary, encoding="utf-8") as file:
            members = json.load(file)
    found = sys.modules["pandas"].read_csv(
        io.StringIO(run.stdout), float_precision="round_trip", keep_default_na=False, na_values=[""]
    )
    found.attrs.update(members, messages=run.stderr.replace(table, "results"))
    return found
