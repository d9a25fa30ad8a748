"""The lines of the component's log, as lines of Python's logging."""

from __future__ import annotations

import ctypes
import logging
import os
from ctypes import c_int32, c_size_t, c_void_p
from typing import Any, Callable, Optional

_log = logging.getLogger("velora_ts")

# By the levels of velora_ts.h. Of the lowest one, the component has about three lines for each call.
_LEVELS = (logging.DEBUG, logging.WARNING, logging.ERROR)

_WRITE = ctypes.CFUNCTYPE(c_int32, c_void_p, c_int32, c_void_p, c_size_t, c_void_p, c_size_t)


class _Callbacks(ctypes.Structure):
    """velora_ts_logger"""

    _fields_ = [
        ("size", c_size_t),
        ("context", c_void_p),
        ("least_level", c_int32),
        ("release", c_void_p),
        ("write", _WRITE),
    ]


class Logger:
    """Puts Python's logging in the place of the component's log, unless VELORA_LOG_FILE names a file for that.

    The lines of the lowest level are left out, unless the level of the logger itself asks for them when a recording
    begins. Each would be a call of Python, in which an interrupt of the user gets lost: no exception can leave it.
    A script that shows what everything else says at this level did not ask for that.
    """

    def __init__(self, set_logger: Callable[[Any], int]) -> None:
        self._set_logger = set_logger
        self._callbacks: Optional[_Callbacks] = None

    def put_in_place(self) -> None:
        """Puts Python's logging in place, for the levels that it wants now."""
        if os.environ.get("VELORA_LOG_FILE"):
            return
        least = 0 if 0 < _log.level <= _LEVELS[0] else 1
        if self._callbacks is None or self._callbacks.least_level != least:
            callbacks = _Callbacks(ctypes.sizeof(_Callbacks), None, least, None, _CALLBACK)
            if self._set_logger(ctypes.byref(callbacks)) == 0:  # else it is a vendor's, which logs in its own way
                self._callbacks = callbacks

    def remove(self) -> None:
        """Puts the component's own log back."""
        if self._callbacks is not None:
            self._set_logger(None)
            self._callbacks = None


def _write(_context: int, level: int, _source: int, _source_size: int, message: int, size: int) -> int:
    _log.log(_LEVELS[level], "%s", ctypes.string_at(message, size).decode("utf-8", "replace"))
    return 0


_CALLBACK = _WRITE(_write)  # for as long as the process: a line can be on its way when the logger is replaced
