"""One reading into the library's record, the records of one result into a row."""

from __future__ import annotations

import math
import struct
from collections.abc import Mapping
from operator import itemgetter
from typing import Any, TypedDict, cast

import numpy as np

from . import _library
from ._columns import MATRIX, READING, RESULT, TRUST, Readings, Results, State, Trust, is_pandas
from .errors import ReadingsError

_names = READING.names or ()
_values_of = itemgetter(*_names)
_packed = struct.Struct("=4xi9f4x?3x")  # READING
_plain = frozenset([bool, int, float, *(np.dtype(code).type for code in "?bhilqBHILQefd")])
_states = tuple(State)
_trusts = {int(trust): trust for trust in Trust}


class _Row(TypedDict):
    state: State
    azimuth_corrected_deg: float
    elevation_corrected_deg: float
    level_x_corrected_deg: float
    level_y_corrected_deg: float
    rx_deg: float
    ry_deg: float
    rz_deg: float
    qvc_x: float
    qvc_y: float
    qvc_z: float


class Result(_Row, total=False):
    """What Sensor.update gives: a dict with the names and values of a row that Sensor.run gives."""

    m00: float
    m01: float
    m02: float
    m10: float
    m11: float
    m12: float
    m20: float
    m21: float
    m22: float
    trust: Trust
    model_error_deg: float
    u_rx_deg: float
    u_ry_deg: float
    u_rz_deg: float
    u_reference_rx_deg: float
    u_reference_ry_deg: float
    u_reference_rz_deg: float


def _mapping(argument: str, reading: Any) -> Mapping[str, Any]:
    if isinstance(reading, Mapping):
        return reading
    if isinstance(reading, tuple) and hasattr(reading, "_fields"):
        return dict(zip(reading._fields, reading))
    if is_pandas(reading, "Series"):
        if not reading.index.is_unique:
            for name in reading.index[reading.index.duplicated()].intersection(list(_names)):
                raise ReadingsError(argument, name, None, "one value of this name", "more")
        return dict(zip(reading.index, reading.tolist()))
    names = getattr(getattr(reading, "dtype", None), "names", None)  # a row of a structured array
    if names:
        return {name: reading[name] for name in names}
    raise TypeError(
        f"{argument}: expected a dict, a named tuple, a Series or a row of a structured array, "
        f"found {type(reading).__name__}"
    )


def packed(argument: str, reading: Any) -> bytes:
    """The record of a reading; ReadingsError as for a table of this row alone."""
    row = _mapping(argument, reading)
    try:
        values = _values_of(row)
        if _plain.issuperset(map(type, values)):
            status = int(values[0])
            if status == values[0] and values[-1] in (0, 1):
                return _packed.pack(status, *values[1:])
    except (KeyError, ValueError, OverflowError, struct.error):
        pass  # what is missing, or fits no record, has its rules in Readings
    record = np.zeros(1, READING)
    given = {name: row[name] for name in _names if name in row}
    columns = {name: [None if value is np.ma.masked else value] for name, value in given.items()}
    Readings(argument, columns).fill(record, 0)
    return record.tobytes()


class Row(Results):
    """The records of one result, for one update after another."""

    def __init__(self, matrices: bool, *others: bool) -> None:
        super().__init__(1, matrices, *others)
        self._places = [_library.pointer(array) for array in self._arrays]
        self._empty = {
            state: {
                name: math.nan
                for fields, lacks in self._emptied
                for name in fields
                if lacks[state] and (matrices or fields is not MATRIX)
            }
            for state in State
        }

    def of(self, sensor: _library.Sensor, reading: bytes) -> Result:
        sensor.judge_one(reading, *self._places)
        state = _states[self._states.item()]
        row = dict(zip(RESULT.names or (), self._records.item()))
        row["state"] = state
        if self._matrices is not None:
            row.update(zip(MATRIX, self._matrices[0].tolist()))
        row.update(self._empty[state])
        for further in self._judged:
            row.update(zip(further.dtype.names or (), further.item()))
        if self._trust is not None:
            row["trust"] = _trusts[row["trust"]]
        return cast(Result, row)
