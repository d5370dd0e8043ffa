"""A sensor's parameter file."""

from __future__ import annotations

import os
import warnings
from typing import Any, Callable, Dict, Tuple, Union

import numpy as np
from numpy.typing import NDArray

from . import _library
from .errors import ParameterFileError, ParameterFileWarning


def _path_bytes(path: Union[str, bytes, os.PathLike[Any]]) -> bytes:
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("path: expected none with a null character")
    return encoded


class Parameters:
    """The calibration parameters of one sensor, read from its parameter file; never changed.

    path: where the name is Tg<sensor ID>.prm, the file has to be that sensor's. Raises
    ParameterFileError with the place of the fault, OSError for a file that cannot be read. Warns,
    by ParameterFileWarning, of what ``kiv check`` warns of.

    A block's values stand under the name that ``kiv info --json`` prints, in the file's units:
    angles in degrees.

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
    def from_text(cls, text: Union[bytes, str]) -> Parameters:
        """Of a parameter file's text in memory."""
        made = cls.__new__(cls)
        made._handle = _library.Parameters()
        as_bytes = text.encode() if isinstance(text, str) else bytes(text)
        made._check(made._handle.load_text(as_bytes), "text")
        return made

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

    def __getitem__(self, block: str) -> Union[int, str, NDArray[np.float32]]:
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

    def __copy__(self) -> Parameters:
        return self

    def __deepcopy__(self, memo: Dict[int, Any]) -> Parameters:
        return self

    def __reduce__(self) -> Tuple[Callable[[bytes], Parameters], Tuple[bytes]]:
        return Parameters.from_text, (self.text,)

    def __repr__(self) -> str:
        return f"<kiv.Parameters of sensor {self['serial_number']}>"
