"""Copies of what holds a handle of the library."""

from __future__ import annotations

import copy
from typing import Any, ClassVar, Dict, Tuple, TypeVar

_Self = TypeVar("_Self", bound="Copied")


class Copied:
    """A deep copy is a copy whose other attributes are deep copies."""

    _held: ClassVar[Tuple[str, ...]] = ("_handle",)  # of one object alone, and in no pickle

    def __deepcopy__(self: _Self, memo: Dict[int, Any]) -> _Self:
        made = copy.copy(self)
        memo[id(self)] = made
        made.__dict__.update(copy.deepcopy(self._others(), memo))
        return made

    def _others(self) -> Dict[str, Any]:
        return {name: value for name, value in self.__dict__.items() if name not in self._held}
