"""What the package raises beside Python's own exceptions."""

from __future__ import annotations

from typing import Any, NamedTuple, Optional, Tuple


class Error(Exception):
    """The library refused a call; code is its status code, as docs/host-guide.md lists them."""

    def __init__(self, code: int, text: str) -> None:
        super().__init__(code, text)
        self.code = code

    def __str__(self) -> str:
        return str(self.args[1])


class Fault(NamedTuple):
    """A place in a parameter file; line and column count from 1, the column in bytes."""

    line: int
    column: int
    expected: str
    found: str

    def __str__(self) -> str:
        return f"{self.line}:{self.column}: expected {self.expected}, found {self.found}"


class ParameterFileError(Error):
    """A parameter file that does not follow its format, or has a value that cannot be read.

    line, column, expected and found are those of the first fault; faults has all of them.
    """

    def __init__(self, path: str, faults: Tuple[Fault, ...]) -> None:
        super().__init__(553, "\n".join(f"{path}:{fault}" for fault in faults))
        self.args = (path, faults)
        self.path = path
        self.faults = faults
        self.line, self.column, self.expected, self.found = faults[0]

    def __str__(self) -> str:
        return "\n".join(f"{self.path}:{fault}" for fault in self.faults)


class ParameterFileWarning(UserWarning):
    """A parameter file with values that a sensor's should not be, as kiv check warns of them."""


class FileError(OSError):
    """A file that the system gives and the library does not take: no regular one, or one with
    several names. errno is None."""

    def __str__(self) -> str:
        return f"{self.filename}: {self.strerror}"


class ReadingsError(Error, ValueError):
    """Readings that do not fit; nothing of them has reached the sensor.

    argument is the name of the argument, column that of the column, row the place of the first row
    that does not fit, from 0, whatever the index of a frame; the last two are None where the fault
    is not in one. index is the row's label in a frame, else None.
    """

    def __init__(
        self,
        argument: str,
        column: Optional[str],
        row: Optional[int],
        expected: str,
        found: str,
        index: Any = None,
    ) -> None:
        super().__init__(20, "")
        self.args = (argument, column, row, expected, found, index)
        self.argument, self.column, self.row, self.index = argument, column, row, index
        self.expected, self.found = expected, found

    def __str__(self) -> str:
        place = self.argument
        if self.column is not None:
            place += f": column {self.column}"
        if self.row is not None:
            place += f", row {self.row} (from 0)"
        if self.index is not None and self.index != self.row:
            place += f", index {self.index}"
        return f"{place}: expected {self.expected}, found {self.found}"
