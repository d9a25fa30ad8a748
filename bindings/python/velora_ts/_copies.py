"""Whether a process reads a file with the same SQLite with which it records into it.

Some builds of Python have a copy of SQLite of their own. The locks that SQLite takes belong to the process, so two
copies in one process take each other's locks away, and then another process can remove the log of a host that records.
"""

from __future__ import annotations

import ctypes
import os
import sys
import threading
from contextlib import contextmanager
from importlib.util import find_spec
from typing import Dict, Iterator, Optional, Set, Tuple

_TSAL = "libTSAL.so"
_SYMBOL = "sqlite3_libversion"

File = Tuple[int, int]  # a device and a file on it

_own: Dict[File, Set[int]] = {}  # the descriptors of this package's connections
_changing = threading.RLock()  # is held while they change; the collector of garbage can close one meanwhile
if hasattr(os, "register_at_fork"):
    os.register_at_fork(before=_changing.acquire, after_in_parent=_changing.release, after_in_child=_changing.release)


@contextmanager
def own_connection(file: File) -> Iterator[None]:
    """While a connection of this package is opened or closed: finds out which descriptors are those of this package."""
    with _changing:
        before = _descriptors(file)
        yield
        after = _descriptors(file)
        own = _own.pop(file, set()) & after
        opened = after - before - own
        if len(opened) == 1:  # of two, one is of a recording that began just now
            own |= opened
        if own:
            _own[file] = own


def records_with_another_sqlite(file: File) -> bool:
    """Whether others in this process have the file open, and TSAL has another SQLite than Python. On Windows, locks
    belong to who took them, so this does not matter there."""
    if sys.platform == "win32" or not _descriptors(file) - _own.get(file, set()):
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


def _descriptors(file: File) -> Set[int]:
    """Which descriptors of this process are of the file."""
    found = set()
    for descriptor in os.listdir("/proc/self/fd") if os.path.isdir("/proc/self/fd") else ():
        try:
            opened = os.stat(f"/proc/self/fd/{descriptor}")
        except OSError:  # closed meanwhile
            continue
        if (opened.st_dev, opened.st_ino) == file:
            found.add(int(descriptor))
    return found
