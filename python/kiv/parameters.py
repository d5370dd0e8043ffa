"""A sensor's parameter file."""

from __future__ import annotations

import os
import warnings
from typing import Any, Dict, Iterator, Mapping, Tuple, Type, TypeVar, Union

import numpy as np
from numpy.typing import NDArray

from . import _library
from ._copied import Copied
from .errors import ParameterFileError, ParameterFileWarning


def _path_bytes(path: Union[str, bytes, os.PathLike[Any]]) -> bytes:
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("path: expected none with a null character")
    return encoded


Value = Union[int, str, NDArray[np.float32]]
_Self = TypeVar("_Self", bound="Parameters")


class Parameters(Copied, Mapping[str, Value]):
    """The calibration parameters of one sensor, read from its parameter file; never changed.

    path: where the name is Tg<sensor ID>.prm, the file has to be that sensor's. Raises
    ParameterFileError with the place of the fault, OSError for a file that cannot be read. Warns,
    by ParameterFileWarning, of what ``kiv check`` warns of.

    A mapping: a block's values stand under the name that ``kiv info --json`` prints, in the file's
    units, angles in degrees. Two of them are equal when they are one object.

    >>> parameters = Parameters("Tg5.prm")
    >>> parameters["mounting_mode"]
    4
    >>> parameters["angle_offset"].tolist()
    [12.5, -3.25]
    >>> parameters["tilt_x_calibration_table"].shape
    (41, 2)
    """

    blocks: Tuple[str, ...] = _library.names(_library.block_name)
    """The names of the blocks, in the order of the file."""

    def __init__(self, path: Union[str, bytes, os.PathLike[Any]]) -> None:
        encoded = _path_bytes(path)
        self._handle = _library.Parameters()
        self._check(self._handle.load(encoded), os.fsdecode(path))

    @classmethod
    def from_text(cls: Type[_Self], text: Union[bytes, str]) -> _Self:
        """Of a parameter file's text in memory."""
        if not isinstance(text, (str, bytes, bytearray, memoryview)):
            raise TypeError(f"text: expected str or bytes, found {type(text).__name__}")
        made = cls.__new__(cls)
        made._load(text.encode() if isinstance(text, str) else bytes(text))
        return made

    def _load(self, text: bytes) -> None:
        self._handle = _library.Parameters()
        self._check(self._handle.load_text(text), "text")

    def _check(self, code: int, name: str) -> None:
        if code == _library.BAD_FORMAT:
            raise ParameterFileError(name, self._handle.faults())
        _library.check(code, name)
        for f in self._handle.warnings():
            warnings.warn(f"{name}:{f}", ParameterFileWarning, stacklevel=3)

    @property
    def text(self) -> bytes:
        """The file's text, byte for byte."""
        return self._handle.text()

    def __getitem__(self, block: str) -> Value:
        """The block's value: a number, a word, an array, a 3 x 3 matrix or a table of 2 columns."""
        if block not in self.blocks:
            raise KeyError(block)
        kind = _library.block_kind(block)
        if kind == _library.INTEGER:
            return self._handle.integer(block)
        if kind == _library.WORD:
            return self._handle.word(block)
        shapes = {_library.NUMBERS: (-1,), _library.MATRIX: (3, 3)}
        return self._handle.numbers(block).reshape(shapes.get(kind, (-1, 2)))

    def __iter__(self) -> Iterator[str]:
        return iter(self.blocks)

    def __len__(self) -> int:
        return len(self.blocks)

    __eq__ = object.__eq__  # arrays have no single truth
    __hash__ = object.__hash__

    def limits(self, block: str) -> Tuple[float, float]:
        """Low and high limit of a tilt table, degrees."""
        if block not in self.blocks or _library.block_kind(block) != _library.TILT_TABLE:
            raise KeyError(block)
        low, high, _ = self._handle.limits(block).tolist()
        return low, high

    def rewrite(self, path: Union[str, bytes, os.PathLike[Any]]) -> None:
        """Writes the parameters in the library's own layout, that of ``kiv rewrite``.

        A file that is there is replaced as a whole, and keeps its owner, group and mode; a link is
        followed. Raises OSError with the reason, also for what is no regular file, has several
        names or is read-only: it stays as it is.
        """
        _library.check(self._handle.rewrite(_path_bytes(path)), os.fsdecode(path))

    def __copy__(self: _Self) -> _Self:
        made = type(self).__new__(type(self))
        made.__dict__.update(self.__dict__)
        return made

    def __getstate__(self) -> Tuple[Dict[str, Any], bytes]:
        return self._others(), self.text

    def __setstate__(self, state: Tuple[Dict[str, Any], bytes]) -> None:
        others, text = state
        self.__dict__.update(others)
        self._load(text)

    def __repr__(self) -> str:
        return f"<kiv.Parameters of sensor {self['serial_number']}>"
