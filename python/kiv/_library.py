"""The functions of kiv.h over the library; nothing else of the package knows ctypes."""

from __future__ import annotations

import ctypes
import errno
import os
import sys
import weakref
from ctypes import byref, c_bool, c_char_p, c_double, c_int, c_int32, c_int64, c_size_t, c_void_p
from typing import Any, Callable, List, Optional, Tuple

import numpy as np
from numpy.typing import NDArray

from .errors import Error, Fault, FileError

BAD_ARGUMENT, NO_MEMORY, CANNOT_OPEN, BAD_FORMAT = 20, 21, 550, 553
LOCAL, MACHINE = 0, 1
INTEGER, WORD, NUMBERS, MATRIX, ENCODER_TABLE, TILT_TABLE = range(6)

Array = NDArray[Any]


def _library() -> ctypes.CDLL:
    name = "kiv.dll" if sys.platform == "win32" else "libkiv.so.1"
    beside = os.path.join(os.path.dirname(os.path.abspath(__file__)), name)
    path = os.environ.get("KIV_LIBRARY") or (beside if os.path.exists(beside) else name)  # name: the system's own
    try:
        return ctypes.CDLL(path)
    except OSError as error:
        raise ImportError(f"cannot load the library {path}, see KIV_LIBRARY: {error}") from error


_dll = _library()


def _text(name: str, *arguments: Any) -> Callable[..., Optional[str]]:
    function = getattr(_dll, name)
    function.argtypes, function.restype = arguments, c_char_p

    def call(*values: Any) -> Optional[str]:
        text = function(*values)
        return None if text is None else _decoded(text)

    return call


def _decoded(text: Optional[bytes]) -> str:
    return (text or b"").decode("utf-8", "backslashreplace")


_last_error = _text("kiv_last_error")
version = _text("kiv_version")
block_name = _text("kiv_block_name", c_size_t)
uncertainty_name = _text("kiv_uncertainty_name", c_size_t)


def names(name_of: Callable[[int], Optional[str]]) -> Tuple[str, ...]:
    found: List[str] = []
    while (name := name_of(len(found))) is not None:
        found.append(name)
    return tuple(found)


def check(code: int, path: str = "") -> None:
    """Raises what the library refused; path is that of the file that the call was about."""
    if code == 0:
        return
    detail = _last_error() or ""
    if code == NO_MEMORY:
        raise MemoryError(detail)
    if code == CANNOT_OPEN:
        reason = detail.rsplit(": ", 1)[-1]
        number = _last_system_error()
        if number == 0 and os.path.isdir(path):
            raise IsADirectoryError(errno.EISDIR, reason, path)
        if number == 0:
            raise FileError(None, reason, path)
        if sys.platform == "win32":
            raise OSError(0, reason, path, number)
        raise OSError(number, reason, path)
    raise Error(code, f"{detail} ({code})")


def _asked(name: str, *arguments: Any) -> Callable[..., int]:
    function = getattr(_dll, name)
    function.argtypes, function.restype = arguments, c_int
    return function  # type: ignore[no-any-return]


def _called(name: str, *arguments: Any) -> Callable[..., None]:
    """Like _asked; a status code other than 0 is raised."""
    function = _asked(name, *arguments)

    def call(*values: Any) -> None:
        check(function(*values))

    return call


_last_system_error = _asked("kiv_last_system_error")
_P = c_void_p  # a handle, an array, or a place for one value
_parameters_new = _called("kiv_parameters_new", _P)
_parameters_load = _asked("kiv_parameters_load", _P, c_char_p)
_parameters_load_text = _asked("kiv_parameters_load_text", _P, c_char_p, c_size_t)
_parameters_fault_count = _called("kiv_parameters_fault_count", _P, _P)
_parameters_fault = _called("kiv_parameters_fault", _P, c_size_t, _P, _P, _P, _P)
_parameters_warning_count = _called("kiv_parameters_warning_count", _P, _P)
_parameters_warning = _called("kiv_parameters_warning", _P, c_size_t, _P, _P, _P, _P)
_parameters_text = _called("kiv_parameters_text", _P, _P, _P)
_parameters_rewrite = _asked("kiv_parameters_rewrite", _P, c_char_p)
_parameters_integer = _called("kiv_parameters_integer", _P, c_char_p, _P)
_parameters_word = _called("kiv_parameters_word", _P, c_char_p, _P)
_parameters_number_count = _called("kiv_parameters_number_count", _P, c_char_p, _P)
_parameters_numbers = _called("kiv_parameters_numbers", _P, c_char_p, _P, c_size_t)
_parameters_limits = _called("kiv_parameters_limits", _P, c_char_p, _P)
_block_kind = _called("kiv_block_kind", c_char_p, _P)
_sensor_new = _called("kiv_sensor_new", _P, _P)
_sensor_copy = _called("kiv_sensor_copy", _P, _P)
_sensor_set_frame = _called("kiv_sensor_set_frame", _P, c_int)
_sensor_frame = _called("kiv_sensor_frame", _P, _P)
_sensor_mount_mode = _called("kiv_sensor_mount_mode", _P, _P)
_sensor_has_matrix = _called("kiv_sensor_has_matrix", _P, _P)
_sensor_set_uncertainty = _asked("kiv_sensor_set_uncertainty", _P, c_char_p, c_double)
_sensor_set_calibration = _called("kiv_sensor_set_calibration", _P, _P, c_size_t, _P)
_sensor_judge = _called("kiv_sensor_judge_calibrated", _P, _P, c_size_t, *[_P] * 6)
_sensor_has_reference = _called("kiv_sensor_has_reference", _P, _P)
_sensor_reference_reading = _called("kiv_sensor_reference_reading", _P, _P)
_sensor_reference_index = _called("kiv_sensor_reference_index", _P, _P)
_sensor_capture_reference = _called("kiv_sensor_capture_reference", _P, _P)
for _free in ("kiv_parameters_free", "kiv_sensor_free"):
    getattr(_dll, _free).argtypes, getattr(_dll, _free).restype = (_P,), None


def block_kind(block: str) -> int:
    kind = c_int32()
    _block_kind(block.encode(), byref(kind))
    return kind.value


def pointer(array: Optional[Array]) -> Optional[int]:
    return None if array is None else array.ctypes.data


class _Handle:
    """Owns what made(place) hands out."""

    def __init__(self, made: Callable[[Any], None], free: str) -> None:
        place = c_void_p()
        made(byref(place))
        self.pointer = place.value
        weakref.finalize(self, getattr(_dll, free), place.value)


class Parameters(_Handle):
    def __init__(self) -> None:
        super().__init__(_parameters_new, "kiv_parameters_free")

    def load(self, path: bytes) -> int:
        return _parameters_load(self.pointer, path)

    def load_text(self, text: bytes) -> int:
        return _parameters_load_text(self.pointer, text, len(text))

    def faults(self) -> Tuple[Fault, ...]:
        return self._findings(_parameters_fault_count, _parameters_fault)

    def warnings(self) -> Tuple[Fault, ...]:
        return self._findings(_parameters_warning_count, _parameters_warning)

    def _findings(self, ask_count: Any, ask_one: Any) -> Tuple[Fault, ...]:
        count, line, column = c_size_t(), c_int64(), c_int64()
        expected, found = c_char_p(), c_char_p()
        ask_count(self.pointer, byref(count))
        findings: List[Fault] = []
        for i in range(count.value):
            ask_one(self.pointer, i, byref(line), byref(column), byref(expected), byref(found))
            words = _decoded(expected.value), _decoded(found.value)
            findings.append(Fault(line.value, column.value, *words))
        return tuple(findings)

    def text(self) -> bytes:
        text, size = c_void_p(), c_size_t()
        _parameters_text(self.pointer, byref(text), byref(size))
        return ctypes.string_at(text.value or 0, size.value)

    def integer(self, block: str) -> int:
        value = c_int32()
        _parameters_integer(self.pointer, block.encode(), byref(value))
        return value.value

    def word(self, block: str) -> str:
        word = c_char_p()
        _parameters_word(self.pointer, block.encode(), byref(word))
        return _decoded(word.value)

    def numbers(self, block: str) -> NDArray[np.float32]:
        count = c_size_t()
        _parameters_number_count(self.pointer, block.encode(), byref(count))
        values = np.empty(count.value, np.float32)
        _parameters_numbers(self.pointer, block.encode(), pointer(values), count.value)
        return values

    def limits(self, block: str) -> NDArray[np.float32]:
        values = np.empty(3, np.float32)
        _parameters_limits(self.pointer, block.encode(), pointer(values))
        return values

    def rewrite(self, path: bytes) -> int:
        return _parameters_rewrite(self.pointer, path)


class Sensor(_Handle):
    def __init__(self, made: Callable[[Any], None]) -> None:
        super().__init__(made, "kiv_sensor_free")

    @staticmethod
    def new(parameters: Parameters) -> Sensor:
        return Sensor(lambda place: _sensor_new(parameters.pointer, place))

    def copy(self) -> Sensor:
        return Sensor(lambda place: _sensor_copy(self.pointer, place))

    def _number(self, ask: Callable[..., None], place: Any) -> int:
        ask(self.pointer, byref(place))
        return int(place.value)

    def frame(self) -> int:
        return self._number(_sensor_frame, c_int32())

    def set_frame(self, frame: int) -> None:
        _sensor_set_frame(self.pointer, frame)

    def mount_mode(self) -> int:
        return self._number(_sensor_mount_mode, c_int32())

    def has_matrix(self) -> bool:
        return bool(self._number(_sensor_has_matrix, c_bool()))

    def has_reference(self) -> bool:
        return bool(self._number(_sensor_has_reference, c_bool()))

    def reference_index(self) -> int:
        return self._number(_sensor_reference_index, c_int64())

    def reference_reading(self, record: Array) -> None:
        _sensor_reference_reading(self.pointer, pointer(record))

    def capture_reference(self, record: bytes) -> None:
        _sensor_capture_reference(self.pointer, record)

    def set_uncertainty(self, name: bytes, value: float) -> int:
        return _sensor_set_uncertainty(self.pointer, name, value)

    def set_calibration(self, names: List[str], covariance: Array) -> None:
        texts = (c_char_p * len(names))(*[name.encode() for name in names])
        _sensor_set_calibration(self.pointer, texts, len(names), pointer(covariance))

    def judge(self, readings: Array, *results: Optional[Array]) -> None:
        """Results, matrices, states, trust, uncertainties, the calibration's; the interpreter lock is
        free meanwhile."""
        pointers = [pointer(array) for array in results]
        _sensor_judge(self.pointer, pointer(readings), len(readings), *pointers)

    def judge_one(self, reading: bytes, *results: Optional[int]) -> None:
        """The same for one, with the places of the results."""
        _sensor_judge(self.pointer, reading, 1, *results)
