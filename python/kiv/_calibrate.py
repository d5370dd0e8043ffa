"""A parameter file from readings, by kiv calibrate."""

from __future__ import annotations

import json
import os
import subprocess
import tempfile
from typing import TYPE_CHECKING, Any, Dict, List, Literal, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

from ._poses import _tool
from .parameters import Parameters

if TYPE_CHECKING:
    import pandas

    Path = Union[str, os.PathLike[str]]


class CalibrationResult(NamedTuple):
    """What kiv calibrate found: parameters, a line for each with value, u (standard uncertainty), old and change_over_u;
    correlation of these; held, with the reason of each; rejected, table and line of the rows that a robust fit has left
    out; new, the new parameter file, None from a dry run; result, the object of kiv calibrate's JSON, which has the
    verdict, too, and which kiv.Sensor(new, calibration=result) takes; messages, on rows that were refused."""

    parameters: pandas.DataFrame
    correlation: pandas.DataFrame
    held: pandas.DataFrame
    rejected: pandas.DataFrame
    new: Optional[Parameters]
    result: Dict[str, Any]
    messages: str


def calibrate(
    parameters: Union[Path, Parameters],
    readings: Union[Path, Sequence[Path], pandas.DataFrame],
    *,
    uncertainties: Mapping[str, float],
    poses: Literal["known", "relative", "stations"] = "known",
    u_pose: Optional[float] = None,
    estimate: Sequence[str] = (),
    hold: Sequence[str] = (),
    priors: Optional[Mapping[str, Tuple[float, float]]] = None,
    holdout: Optional[float] = None,
    robust: bool = False,
    dry_run: bool = False,
    output: Optional[Path] = None,
    report: Optional[Path] = None,
    replace: bool = False,
) -> CalibrationResult:
    """Finds the values of a parameter file that explain readings best, with the columns of kiv calibrate.

    parameters: the old file.
    readings: one file, several of one recording, or a DataFrame.
    uncertainties: those of the readings, by the names of kiv run --uncertainties, for kiv.Sensor, too.
    poses: known, the true angles; relative, those of another body that is fixed to the sensor; stations, none.
    u_pose: standard uncertainty of the true angles about each axis, degrees.
    estimate, hold: names of parameters to find in place of the usual ones, and not to find.
    priors: value and standard uncertainty of parameters that are known from elsewhere, by name.
    holdout: share of the rows that is kept for the verdict, 0 to 0.5.
    robust: rows with a wrong pose are found and left out.
    dry_run: the plan alone; readings may be a table of poses.
    output, report: files for the new parameters and for a page of charts; replace lets them take the place of others.

    Raises ValueError with the tool's message where it refuses, FileNotFoundError where the tool is neither on the path
    nor in the environment's KIV_TOOL.

    >>> import kiv, pandas
    >>> u = {"azimuth_deg": 0.001, "elevation_deg": 0.001, "level_y": 0.002}
    >>> found = kiv.calibrate("Tg5.prm", pandas.read_csv("readings.csv"), uncertainties=u, dry_run=True)
    >>> found.held.loc["thermal_compensation_factor.y_slope", "reason"]
    'the temperatures span 3.998, less than 5'
    """
    import pandas

    options = {"poses": poses, "u-pose": u_pose, "holdout": holdout, "report": report}
    flags = {"robust": robust, "dry-run": dry_run, "replace": replace}
    names = {"estimate": estimate, "hold": hold}
    with tempfile.TemporaryDirectory() as folder:
        made: Dict[str, str] = {}  # files of what is given in memory, and its name in messages

        def path_of(name: str, shown: str) -> str:
            path = os.path.join(folder, name)
            made[path] = shown
            return path

        if isinstance(parameters, Parameters):
            old = path_of(f"Tg{parameters['serial_number']}.prm", "parameters")
            with open(old, "wb") as binary:
                binary.write(parameters.text)
        else:
            old = os.fspath(parameters)
        tables: List[str]
        if isinstance(readings, (str, os.PathLike)):
            tables = [os.fspath(readings)]
        elif isinstance(readings, pandas.DataFrame):
            tables = [path_of("readings.csv", "readings")]
            truths = {name: readings[name].astype(int) for name in readings.select_dtypes("bool")}
            readings.assign(**truths).to_csv(tables[0], index=False)
        else:
            tables = [os.fspath(table) for table in readings]
        known, result = path_of("u.json", "uncertainties"), os.path.join(folder, "result.json")
        with open(known, "w", encoding="utf-8") as file:
            json.dump(dict(uncertainties), file)
        new = os.path.join(folder, "new.prm") if output is None else os.fspath(output)
        arguments = ["--uncertainties", known, "--result", result, "-o", new]
        for name, value in options.items():
            arguments += [] if value is None else [f"--{name}", str(value)]
        for name, list_of_names in names.items():
            arguments += [f"--{name}", ",".join(list_of_names)] if list_of_names else []
        for name, (value, u) in (priors or {}).items():
            arguments += ["--prior", f"{name}={value!r},{u!r}"]
        arguments += [f"--{name}" for name, asked in flags.items() if asked]
        run = subprocess.run(
            [_tool(), "calibrate", *arguments, "--", old, *tables], capture_output=True, encoding="utf-8"
        )
        messages = run.stderr
        for path, shown in made.items():
            messages = messages.replace(path, shown)
        if run.returncode != 0:
            raise ValueError(messages.strip())
        with open(result, encoding="utf-8") as file:
            told = json.load(file)
        written = None if dry_run else Parameters(new)
    found = pandas.DataFrame.from_dict(told["parameters"], orient="index")
    correlation = told["correlation"]
    return CalibrationResult(
        found,
        pandas.DataFrame(correlation["matrix"], correlation["names"], correlation["names"]),
        pandas.DataFrame({"reason": told["held"]}, dtype=object),
        pandas.DataFrame(told["rows"]["rejected"], columns=["table", "line"]),
        written,
        told,
        messages,
    )
