"""Whether a process reads a file with the same SQLite with which it records into it.

Some builds of Python have a copy of SQLite of their own. The locks that SQLite takes belong to the process, so two
copies in one process take each other's locks away, and then another process can remove the log of a host that records.
"""

from __future__ import annotations

import ctypes
import os
import sys
from importlib.util import find_spec
from typing import Optional

_TSAL = "libTSAL.so"
_SYMBOL = "sqlite3_libversion"


def records_with_another_sqlite(file: str) -> bool:
    """Whether this process has the file open, and TSAL has another SQLite than Python. On Windows, locks belong to who
    took them, so this does not matter there."""
    if sys.platform == "win32" or not _is_open_here(file):
        return False
    try:
        of_tsal = _address(ctypes.CDLL(_TSAL, mode=os.RTLD_NOLOAD | os.RTLD_NOW))
    except OSError:  # it is not loaded
        return False
    if of_tsal is None or _address(ctypes.CDLL(None)) is not None:  # the latter is what everything here calls
        return False
    of_python = find_spec("_sqlite3")
    if of_python is None or not of_python.origin or not os.path.exists(of_python.origin):
        return True  # a part of the interpreter
    return of_tsal != _address(ctypes.CDLL(of_python.origin))


def _address(library: ctypes.CDLL) -> Optional[int]:
    """Where the SQLite is that a library calls."""
    return ctypes.cast(getattr(library, _SYMBOL), ctypes.c_void_p).value if hasattr(library, _SYMBOL) else None


def _is_open_here(file: str) -> bool:
    found = os.stat(file)
    for descriptor in os.listdir("/proc/self/fd") if os.path.isdir("/proc/self/fd") else ():
        try:
            if os.path.samestat(os.stat(f"/proc/self/fd/{descriptor}"), found):
                return True
        except OSError:  # closed meanwhile
            continue
    return False
