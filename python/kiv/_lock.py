"""The lock of a sensor."""

from __future__ import annotations

import os
import threading
import weakref


class Lock:
    """Keeps the calls of other threads out of a sensor.

    A forked process has the forking thread alone: a sensor that another one was in stays as that
    left it, in the middle of a run, and is refused there.
    """

    def __init__(self) -> None:
        self._lock = threading.RLock()
        self.lost = False
        _all.add(self)

    def __enter__(self) -> None:
        if self.lost:
            raise RuntimeError(
                "sensor: expected no run on another thread when this process was forked, found one; "
                "make the sensor anew here, or fork between the runs"
            )
        self._lock.acquire()

    def __exit__(self, *exception: object) -> None:
        self._lock.release()

    def _forked(self) -> None:
        if self._lock.acquire(blocking=False):
            self._lock.release()
        else:
            self.lost = True


_all: weakref.WeakSet[Lock] = weakref.WeakSet()


def _forked() -> None:
    for lock in list(_all):
        lock._forked()


if hasattr(os, "register_at_fork"):
    os.register_at_fork(after_in_child=_forked)
