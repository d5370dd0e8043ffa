"""Columns of readings into the library's records, its records into columns of results."""

from __future__ import annotations

import enum
import numbers
import sys
from collections.abc import Mapping
from functools import lru_cache
from typing import Any, Dict, Iterable, List, Optional, Tuple, Type

import numpy as np
from numpy.typing import NDArray

from . import _library
from .errors import ReadingsError

Array = NDArray[Any]

# The records of kiv.h, under the names of kiv run's columns; state is where a result is unused.
_reading_fields = {
    "status": ("i4", 4),
    "x": ("f4", 8),
    "y": ("f4", 12),
    "z": ("f4", 16),
    "azimuth_deg": ("f4", 20),
    "elevation_deg": ("f4", 24),
    "level_x": ("f4", 28),
    "level_y": ("f4", 32),
    "temperature": ("f4", 36),
    "ref_metric": ("f4", 40),
    "ref_blocked": ("?", 48),
}
_corrected = {
    "azimuth_corrected_deg": ("f4", 4),
    "elevation_corrected_deg": ("f4", 8),
    "level_x_corrected_deg": ("f4", 12),
    "level_y_corrected_deg": ("f4", 16),
}
_angles = {"rx_deg": ("f4", 20), "ry_deg": ("f4", 28), "rz_deg": ("f4", 24)}
_qvc = {"qvc_x": ("f4", 36), "qvc_y": ("f4", 40), "qvc_z": ("f4", 44)}


def _record(fields: Mapping[str, tuple[str, int]], size: int) -> np.dtype[np.void]:
    formats, offsets = zip(*fields.values())
    return np.dtype(
        {"names": list(fields), "formats": formats, "offsets": offsets, "itemsize": size}
    )


READING = _record(_reading_fields, 52)
RESULT = _record({"state": ("u1", 0), **_corrected, **_angles, **_qvc}, 48)
TRUST = _record({"trust": ("i4", 0), "model_error_deg": ("f4", 4)}, 8)
_axes = {"rx": 0, "ry": 4, "rz": 8}
UNCERTAINTY = {
    False: _record({f"u_{axis}_deg": ("f4", at) for axis, at in _axes.items()}, 36),
    True: _record(  # with those of the reference
        {
            f"u{of}_{axis}_deg": ("f4", start + at)
            for of, start in (("", 0), ("_reference", 24))
            for axis, at in _axes.items()
        },
        36,
    ),
}
CALIBRATION = _record({f"u_calibration_{axis}_deg": ("f4", at) for axis, at in _axes.items()}, 12)
MATRIX = [f"m{row}{column}" for row in range(3) for column in range(3)]


class State(enum.IntEnum):
    """What became of a reading, as kiv run's column state says it."""

    OK = 0  # the angles are computed
    STATUS = 1  # the measurement status is not 2: corrected readings alone
    NO_REFERENCE = 2  # no reference orientation has been captured yet
    REFERENCE = 3  # this reading became the reference
    NO_ORIENTATION = 4  # the model has none for it
    REFUSED = 5  # a value is missing or not finite, or the vector is zero


class Trust(enum.IntEnum):
    """Whether a reading's angles can be trusted, as kiv run's column trust says it."""

    NONE = -1  # there are no angles
    GOOD = 0  # none of what follows
    OUTSIDE_LIMITS = 1  # a tilt is outside its table or the file's level limits
    MIRROR_NEAR = 2  # a second, mirrored pose fits and is within the limits, too
    SEAM = 3  # the two levels' angles lie on both sides of 180 degrees
    LEVELS_DISAGREE = 4  # the two levels show turns that differ by over 0.1 degrees
    TWO_SIGNS = 5  # dual level: z and level Y differ in sign
    NEAR_LEVEL_SIGHT = 6  # pendulum: z is so close to 0 that digits cancel
    ROLL_UNSEEN = 7  # the level hardly shows the turn about the line of sight
    NOT_SETTLED = 8  # the result does not show its level's reading again
    REFERENCE = 9  # local frame: the reference was not good
    NO_ROTATION = 10  # the matrix of the frame in use is no rotation
    READING_LOST = 11  # a parameter leaves a reading without effect
    RY_NEAR_90 = 12  # ry is so close to 90 degrees that rx and rz are unsure
    SPARE_DISAGREES = 13  # dual level: the levels ask for another elevation than the encoder's


@lru_cache(maxsize=None)
def emptied(has_matrix: bool) -> Tuple[Tuple[Iterable[str], Array], ...]:
    """Columns, and by state whether they are NaN in such a row."""
    modelled = [State.OK, State.NO_REFERENCE, State.REFERENCE]
    filled: Tuple[Tuple[Iterable[str], List[State]], ...] = (
        (_corrected, [state for state in State if state != State.REFUSED]),
        (_angles, [State.OK]),
        (_qvc, [] if has_matrix else modelled),
        (MATRIX, [State.OK] if has_matrix else []),
    )
    return tuple((fields, ~np.isin(list(State), states)) for fields, states in filled)


def is_pandas(values: object, kind: str) -> bool:
    pandas = sys.modules.get("pandas")  # who has a frame has loaded it
    return pandas is not None and isinstance(values, getattr(pandas, kind))


def is_frame(values: object) -> bool:
    return is_pandas(values, "DataFrame")


def _is_number(value: object) -> bool:
    return isinstance(value, numbers.Real) and not isinstance(value, np.timedelta64)


class Readings:
    """Checked columns of readings, all of one length, which is count."""

    def __init__(self, argument: str, readings: Any) -> None:
        self._argument = argument
        self._index = readings.index if is_frame(readings) else None
        names = self._names(readings)
        for name in _reading_fields:
            if name not in names:
                raise self._error(name, None, "a column of this name", "none")
        self._columns = {name: self._numbers(name, readings[name]) for name in _reading_fields}
        self.count = len(self._columns["status"])
        for name, values in self._columns.items():
            if len(values) != self.count:
                raise self._error(
                    name, None, f"{self.count} rows as in column status", f"{len(values)}"
                )
        self._no_use: Optional[Array] = None
        with np.errstate(invalid="ignore"):
            status, blocked = self._columns["status"], self._columns["ref_blocked"]
            self._require("status", status.astype(np.int32) != status, "a whole number of 32 bits")
            self._require("ref_blocked", (blocked != 0) != blocked, "0, 1, false or true")

    def _names(self, readings: Any) -> Any:
        if is_frame(readings):
            return readings.columns
        if isinstance(readings, Mapping):
            return readings
        if isinstance(readings, np.ndarray) and readings.dtype.names is not None:
            return readings.dtype.names
        raise TypeError(
            f"{self._argument}: expected a dict of arrays, a structured array or a DataFrame, "
            f"found {type(readings).__name__}"
        )

    def _error(self, name: str, row: Optional[int], expected: str, found: str) -> ReadingsError:
        index = None if row is None or self._index is None else self._index[row]
        return ReadingsError(self._argument, name, row, expected, found, index)

    def _numbers(self, name: str, values: Any) -> Array:
        """A column's values; a missing one is NaN."""
        if is_frame(values):
            raise self._error(name, None, "one column of this name", str(values.shape[1]))
        if isinstance(values, np.ma.MaskedArray) and values.dtype.kind in "biufO":
            wide = values.astype(object if values.dtype.kind == "O" else np.float64)
            values = np.ma.filled(wide, np.nan)  # type: ignore[no-untyped-call]
        elif hasattr(values, "to_numpy") and not isinstance(values.dtype, np.dtype):
            values = values.to_numpy(object, na_value=np.nan)  # a type of pandas' own
        try:
            array = np.asarray(values)
            if array.dtype.kind in "SU":  # of what is a list numbers, too, are text now
                array = np.asarray(values, object)
        except ValueError:  # rows of different lengths
            array = np.empty((0, 0))
        if array.ndim != 1:
            raise self._error(name, None, "one dimension", f"the shape {array.shape}")
        if array.dtype.kind in "biuf":
            return array
        if array.dtype.kind in "mM" and len(array) > 0:  # in a list they are whole numbers
            raise self._error(name, 0, "a number", str(array[0]))
        for row, value in enumerate(array.tolist()):
            if value is not None and not _is_number(value):
                raise self._error(name, row, "a number", repr(value))
        return array.astype(np.float64)

    def _require(self, name: str, wrong: Array, expected: str) -> None:
        """A missing value makes the row no use, another wrong one is an error."""
        if not wrong.any():
            return
        values = self._columns[name]
        missing = np.isnan(values)
        if (wrong & ~missing).any():
            row = int(np.argmax(wrong & ~missing))
            raise self._error(name, row, expected, str(values[row]))
        self._no_use = missing if self._no_use is None else self._no_use | missing

    def fill(self, records: Array, start: int) -> None:
        """The rows from start on, one for each of the records."""
        part = slice(start, start + len(records))
        with np.errstate(over="ignore", invalid="ignore"):  # the library refuses what is not finite
            for name, values in self._columns.items():
                records[name] = values[part]
        if self._no_use is not None:
            records["x"][self._no_use[part]] = np.nan


class Results:
    """The records of n results, and the columns over them; NaN where kiv run leaves a cell empty."""

    def __init__(
        self,
        n: int,
        matrices: bool,
        trust: bool,
        uncertainties: bool,
        calibration: bool,
        has_matrix: bool,
        local: bool,
    ) -> None:
        self._emptied = emptied(has_matrix)
        self._states = np.empty(n, np.uint8)
        self._records = np.empty(n, RESULT)
        self._matrices = np.empty((n, 9)) if matrices else None
        self._trust = np.empty(n, TRUST) if trust else None
        record = UNCERTAINTY[local and has_matrix]
        self._uncertainties = np.empty(n, record) if uncertainties else None
        self._calibration = np.empty(n, CALIBRATION) if calibration else None
        judged = self._trust, self._uncertainties, self._calibration
        self._arrays = self._records, self._matrices, self._states, *judged
        self._judged = [array for array in judged if array is not None]

    def update(self, sensor: _library.Sensor, readings: Array, start: int) -> None:
        """With the results of these readings, the rows from start on."""
        rows = slice(start, start + len(readings))
        parts = [None if array is None else array[rows] for array in self._arrays]
        sensor.judge(readings, *parts)
        records, matrices, states = self._records[rows], parts[1], self._states[rows]

        others = np.flatnonzero(states != State.OK)
        became = states[others]
        for fields, lacks in self._emptied:
            empty = slice(None) if lacks[State.OK] else others[lacks[became]]
            if fields is not MATRIX:
                for name in fields:
                    records[name][empty] = np.nan
            elif matrices is not None:
                matrices[empty] = np.nan
        records["state"] = states

    def table(self, like: Any) -> Any:
        """Of the kind of the readings."""
        columns = _columns_of(self._records)
        if self._matrices is not None:
            columns.update(zip(MATRIX, self._matrices.T))
        for further in self._judged:
            columns.update(_columns_of(further))
        if is_frame(like):
            columns["state"] = _words(self._states.view(np.int8), State)
            if self._trust is not None:
                columns["trust"] = _words(columns["trust"], Trust)
            return sys.modules["pandas"].DataFrame(columns, index=like.index, copy=False)
        columns["state"] = self._states
        if isinstance(like, Mapping):
            return columns
        if len(columns) == len(RESULT.names or ()):
            return self._records
        table = np.empty(len(self._records), [(name, a.dtype) for name, a in columns.items()])
        for name, values in columns.items():
            table[name] = values
        return table


def _columns_of(records: Array) -> Dict[str, Any]:
    return {name: records[name] for name in records.dtype.names or ()}


def _words(codes: Array, names: Type[enum.IntEnum]) -> Any:
    """A categorical of pandas; -1 is none."""
    words = [each.name.lower() for each in names if each >= 0]
    return sys.modules["pandas"].Categorical.from_codes(codes, words)
