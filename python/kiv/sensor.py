"""A sensor, which turns readings into orientations."""

from __future__ import annotations

import copy
import numbers
from typing import (
    TYPE_CHECKING,
    Any,
    Dict,
    Literal,
    Mapping,
    Optional,
    Tuple,
    TypeVar,
    Union,
    overload,
)

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _calibration, _columns, _library, _rows
from ._copied import Copied
from ._lock import Lock
from .errors import Error
from .parameters import Parameters

if TYPE_CHECKING:
    from pandas import DataFrame

Frame = Literal["machine", "local"]
_Self = TypeVar("_Self", bound="Sensor")
_FRAMES: Dict[Frame, int] = {"local": _library.LOCAL, "machine": _library.MACHINE}
_UNCERTAINTIES = _library.names(_library.uncertainty_name)
_PART = 1 << 14  # rows of readings at a time: they stay in the processor's cache


class Sensor(Copied):
    """One sensor with the parameters of its file.

    frame: of the angles; "machine", those of the sensor in machine coordinates, or "local", those
    of its motion since the reference orientation. Mount modes 7 and above know no frames.

    uncertainties: where the angles' are wanted, standard uncertainties (one standard deviation) of
    readings and parameters, by the names of ``kiv run --uncertainties``: x, y, z of the vector, or
    vector_along and vector_across the line of sight, azimuth_deg, elevation_deg, level_x, level_y,
    temperature, azimuth_offset_deg, elevation_offset_deg, tilt_offset_x_deg, tilt_offset_y_deg; from
    0 to 1e6 in the units of the readings. Those that are not given are 0, exactly known. ValueError
    for another name, for what the mount mode does not read and for the vector in both ways.

    calibration: where its part in the angles' uncertainty is wanted, what ``kiv calibrate --result``
    wrote beside the parameter file: a path, or the object of its JSON. ValueError for another shape
    and for the result that belongs to another parameter file.

    The first reading that qualifies becomes the reference orientation and yields no angles. A copy
    (module copy) and a pickle have the reference with them.

    Sensors share nothing: two of them on two threads use two processors. Calls on one sensor wait
    for one another, a run as a whole: a frame that is set meanwhile is that of the next run; an
    update that must not wait has a sensor of its own, such as a copy. In a process that is forked
    during a run, that sensor raises RuntimeError.

    >>> import pandas
    >>> sensor = Sensor(Parameters("Tg5.prm"))
    >>> results = sensor.run(pandas.read_csv("readings.csv"))
    >>> results["state"].value_counts()[["ok", "reference"]].tolist()
    [1999, 1]
    >>> [round(float(angle), 4) for angle in results.loc[1, ["rx_deg", "ry_deg", "rz_deg"]]]
    [-2.8215, 3.8208, 3.7047]
    >>> sensor = Sensor(Parameters("Tg5.prm"), uncertainties={"azimuth_deg": 0.001, "level_y": 0.002})
    >>> results = sensor.run(pandas.read_csv("readings.csv"))
    >>> results.trust[1], round(float(results.u_rz_deg[1]), 4)
    ('good', 0.001)
    """

    _held = ("_handle", "_lock", "_rows")

    def __init__(
        self,
        parameters: Parameters,
        frame: Frame = "machine",
        uncertainties: Optional[Mapping[str, float]] = None,
        calibration: Optional[_calibration.Calibration] = None,
    ) -> None:
        if not isinstance(parameters, Parameters):
            raise TypeError(
                f"parameters: expected kiv.Parameters, found {type(parameters).__name__}"
            )
        self._parameters = parameters
        self._uncertainties = None if uncertainties is None else dict(uncertainties)
        self._calibration = None if calibration is None else _calibration.result(calibration)
        self._own(_library.Sensor.new(parameters._handle))
        self._give(frame)

    def _own(self, handle: _library.Sensor) -> None:
        self._handle = handle
        self._lock = Lock()
        self._rows: Dict[Tuple[bool, bool], _rows.Row] = {}  # of this frame

    def _give(self, frame: Frame) -> None:
        for name, value in (self._uncertainties or {}).items():
            self._set_uncertainty(name, value)
        if self._calibration is not None:
            names, covariance = _calibration.of_file(self._calibration, self._parameters.text)
            try:
                self._handle.set_calibration(names, covariance)
            except Error as error:
                raise ValueError(f"calibration: {error}") from None
        self.frame = frame

    def _set_uncertainty(self, name: str, value: float) -> None:
        if name not in _UNCERTAINTIES:
            raise ValueError(
                f"uncertainties: expected one of {', '.join(_UNCERTAINTIES)}, found {name!r}"
            )
        give = self._handle.set_uncertainty
        if give(name.encode(), 0) == _library.BAD_ARGUMENT:  # whatever the number
            raise ValueError(
                f"uncertainties: expected what mount mode {self.mount_mode} reads, of the vector "
                f"x, y and z or vector_along and vector_across, found {name!r}"
            )
        if not isinstance(value, numbers.Real) or give(name.encode(), float(value)):
            raise ValueError(
                f"uncertainties: expected a number from 0 to 1e6 for {name!r}, found {value!r}"
            )

    @property
    def uncertainties(self) -> Optional[Dict[str, float]]:
        """As they were given; None where they were not."""
        return None if self._uncertainties is None else dict(self._uncertainties)

    @property
    def calibration(self) -> Optional[Dict[str, Any]]:
        """The object of the result's JSON; None where there is none."""
        return copy.deepcopy(self._calibration)

    @property
    def parameters(self) -> Parameters:
        return self._parameters

    @property
    def frame(self) -> Frame:
        """"machine" or "local"; the next readings' angles are in it."""
        with self._lock:
            return {value: name for name, value in _FRAMES.items()}[self._handle.frame()]

    @frame.setter
    def frame(self, frame: Frame) -> None:
        if frame not in _FRAMES:
            raise ValueError(f"frame: expected 'machine' or 'local', found {frame!r}")
        with self._lock:
            self._handle.set_frame(_FRAMES[frame])
            self._rows.clear()

    @property
    def mount_mode(self) -> int:
        """1 to 10, which says the model."""
        with self._lock:
            return self._handle.mount_mode()

    @property
    def reference(self) -> Optional[Dict[str, Union[int, float, bool]]]:
        """The reading that is the reference, by the names of its columns; None without one."""
        record = self._reference_record()
        return None if record is None else dict(zip(_columns.READING.names or (), record[0].item()))

    @property
    def reference_row(self) -> Optional[int]:
        """Its place among all rows that were run, from 0; None where it was captured."""
        with self._lock:
            index = self._handle.reference_index() if self._handle.has_reference() else -1
        return None if index < 0 else index

    def capture_reference(self, reading: Any) -> None:
        """Makes a reading the reference, in place of one that is there.

        reading: as of update. A later part of a recording then gives what it gives within the
        whole. Raises Error (code 554) where run would not make it the reference.
        """
        record = _rows.packed("reading", reading)
        with self._lock:
            self._handle.capture_reference(record)

    def _reference_record(self) -> Optional[NDArray[np.void]]:
        record = np.zeros(1, _columns.READING)
        with self._lock:
            if not self._handle.has_reference():
                return None
            self._handle.reference_reading(record)
        return record

    def update(self, reading: Any, matrices: bool = False, trust: bool = True) -> _rows.Result:
        """The orientation of one reading, in a fifth to a tenth of the time of run.

        reading: numbers by the names of run's columns: a dict, a row of ``DataFrame.itertuples``, a
        row of a frame (Series) or of a structured array. Gives a dict with the names and values of
        the row that run gives, state a kiv.State and trust a kiv.Trust.
        """
        record = _rows.packed("reading", reading)
        with self._lock:
            row = self._rows.get((matrices, trust))
            if row is None:
                row = _rows.Row(*self._kind_of_results(matrices, trust))
                self._rows[matrices, trust] = row
            return row.of(self._handle, record)

    @overload
    def run(
        self, readings: NDArray[np.void], matrices: bool = False, trust: bool = True
    ) -> NDArray[np.void]: ...

    @overload
    def run(
        self, readings: Mapping[str, ArrayLike], matrices: bool = False, trust: bool = True
    ) -> Dict[str, NDArray[Any]]: ...

    @overload
    def run(
        self, readings: DataFrame, matrices: bool = False, trust: bool = True
    ) -> DataFrame: ...

    def run(self, readings: Any, matrices: bool = False, trust: bool = True) -> Any:
        """Orientations of n readings, in the order in which they were measured.

        readings: a dict of arrays, a structured array or a DataFrame, n rows with numbers in the
        columns

        - status: 2 for a measurement that yields an orientation
        - x, y, z: the measured vector in the instrument frame, z up, the instrument's length unit
        - azimuth_deg, elevation_deg: raw encoder angles, degrees
        - level_x, level_y: raw tilt readings, in the unit of the tilt tables' first column
        - temperature: in the unit of the thermal factors
        - ref_metric: at 0.4 or less the row may become the reference
        - ref_blocked: true or 1, the row does not become the reference; false or 0

        Others are not looked at. All are taken in single precision.

        Gives a table of the same kind, n rows (a frame with the index of the readings), with

        - state: in a frame a categorical of the words of ``kiv run``: ok, status, no_reference,
          reference, no_orientation, refused; else the numbers of kiv.State
        - azimuth_corrected_deg, elevation_corrected_deg, level_x_corrected_deg,
          level_y_corrected_deg: degrees
        - rx_deg, ry_deg, rz_deg: rotations about x, y and z, degrees; Rx Ry Rz, in the local frame
          Rz Ry Rx
        - qvc_x, qvc_y, qvc_z: the QVC vector of mount modes 7 and above
        - with matrices, m00 to m22: the rotation matrix of mount modes 1 to 6, row by row
        - with trust, trust: in a frame a categorical of the words of ``kiv run``, good or the first
          reason why the angles cannot be trusted like others; else the numbers of kiv.Trust
        - with trust, model_error_deg: bound of the model's own error of the largest of the angles,
          degrees
        - with the sensor's uncertainties, u_rx_deg, u_ry_deg, u_rz_deg: standard uncertainties of the
          angles, degrees
        - and in the local frame, u_reference_rx_deg, u_reference_ry_deg, u_reference_rz_deg: from the
          readings of the reference, which all rows have in common; not contained in u_rx_deg, ...
        - with the sensor's calibration, u_calibration_rx_deg, u_calibration_ry_deg,
          u_calibration_rz_deg: from its parameters, common to all rows and not contained in the others

        in single, the matrix in double precision; NaN where there is none. A row with a value that
        is missing (NaN, masked) or not finite in single precision is refused and never reaches the
        sensor, as is one with a zero vector. Raises ReadingsError, before the first row, for a
        column that is not there or does not fit, and for a value that is no number.

        The arrays of a dict and the columns of a frame are views of common records.
        """
        given = _columns.Readings("readings", readings)
        part = np.zeros(min(given.count, _PART), _columns.READING)
        with self._lock:
            results = _columns.Results(given.count, *self._kind_of_results(matrices, trust))
            for start in range(0, given.count, _PART):
                filled = part[: given.count - start]
                given.fill(filled, start)
                results.update(self._handle, filled, start)
        return results.table(readings)

    def _kind_of_results(self, matrices: bool, trust: bool) -> Tuple[bool, ...]:
        given = self._uncertainties is not None, self._calibration is not None
        return matrices, trust, *given, self._handle.has_matrix(), self.frame == "local"

    def __copy__(self: _Self) -> _Self:
        made = type(self).__new__(type(self))
        made.__dict__.update(self.__dict__)
        with self._lock:
            made._own(self._handle.copy())
        return made

    def __getstate__(self) -> Tuple[Dict[str, Any], Frame, Optional[bytes]]:
        with self._lock:
            record, frame = self._reference_record(), self.frame
        return self._others(), frame, None if record is None else record.tobytes()

    def __setstate__(self, state: Tuple[Dict[str, Any], Frame, Optional[bytes]]) -> None:
        others, frame, reference = state
        self.__dict__.update(others)
        self._own(_library.Sensor.new(self._parameters._handle))
        self._give(frame)
        if reference is not None:
            self._handle.capture_reference(reference)

    def __repr__(self) -> str:
        if self._lock.lost:
            return "<kiv.Sensor, in a run when the process was forked>"
        with self._lock:
            has = "with a" if self._handle.has_reference() else "without a"
            return f"<kiv.Sensor, mount mode {self.mount_mode}, {self.frame} frame, {has} reference>"
