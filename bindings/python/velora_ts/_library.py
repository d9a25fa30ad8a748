"""The C library velora_ts: where it is, and its calls, one at a time."""

from __future__ import annotations

import atexit
import ctypes
import ctypes.util
import os
import sys
import threading
from ctypes import c_char_p, c_double, c_int32, c_size_t, c_void_p
from typing import Any, Callable, Iterable, Optional, Tuple, TypeVar

from velora_ts import _values
from velora_ts._logger import Logger
from velora_ts.errors import Error

T = TypeVar("T")

_INTERFACE = 1  # the VELORA_TS_INTERFACE_VERSION that this package was written for
_NOT_AVAILABLE = 4
_GUID_CAPACITY = 40
_ON_WINDOWS = sys.platform == "win32"
_NAME = "velora_ts.dll" if _ON_WINDOWS else "libvelora_ts.so.0"
_COMPONENT = "VeloraTsLogging.dll" if _ON_WINDOWS else "libVeloraTsLogging.so.0"

_TEXT = (c_char_p, c_size_t)
_PROTOTYPES: Tuple[Tuple[str, Any, Tuple[Any, ...]], ...] = (
    ("interface_version", c_int32, ()),
    ("last_error", c_void_p, (c_void_p,)),
    ("available", c_int32, _TEXT * 2),
    ("create_logging", c_int32, _TEXT * 2 + (c_void_p,)),
    ("close_logging", c_int32, (c_void_p,)),
    ("create_execution", c_int32, (c_void_p, *_TEXT * 3, c_char_p, c_size_t, c_void_p)),
    ("create_execution_under", c_int32, (c_void_p, *_TEXT * 4, c_char_p, c_size_t, c_void_p)),
    ("update_execution", c_int32, (c_void_p, *_TEXT)),
    ("create_event", c_int32, (c_void_p, *_TEXT)),
    ("save_event", c_int32, (c_void_p, *_TEXT * 2)),
    ("add_bool", c_int32, (c_void_p, *_TEXT * 2, c_int32)),
    ("add_double", c_int32, (c_void_p, *_TEXT * 2, c_double)),
    ("add_int", c_int32, (c_void_p, *_TEXT * 2, c_int32)),
    ("add_text", c_int32, (c_void_p, *_TEXT * 3)),
    ("set_logger", c_int32, (c_void_p,)),
)


class Missing(Exception):
    """Why the C library cannot be used."""


def _load() -> ctypes.CDLL:
    """The library that VELORA_TS_LIBRARY names, as a file or by its folder; else the one that the system finds."""
    file = os.environ.get("VELORA_TS_LIBRARY", "")
    if os.path.isdir(file):
        file = os.path.join(file, _NAME)
    if not file and sys.platform == "win32":
        file = ctypes.util.find_library(_NAME) or _NAME  # PATH, which is not looked through for libraries
    try:
        if sys.platform == "win32" and os.path.dirname(file):
            os.add_dll_directory(os.path.dirname(os.path.abspath(file)))  # the libraries below it
        library = ctypes.CDLL(file or _NAME)
        for name, result, arguments in _PROTOTYPES:
            function = getattr(library, f"velora_ts_{name}")
            function.restype, function.argtypes = result, arguments
    except (OSError, AttributeError) as reason:
        raise Missing(
            f"the C library cannot be used: {reason}; "
            f"expected {_NAME} where the system looks for libraries, or its file in VELORA_TS_LIBRARY"
        ) from None
    version = library.velora_ts_interface_version()
    if version < _INTERFACE:
        raise Missing(f"the C library has version {version} of the interface; expected {_INTERFACE} or a later one")
    return library


class Library:
    """The loaded library, in which one thread of this package is at a time.

    The calls of an event belong together, but the library's own lock holds for one call.
    """

    def __init__(self) -> None:
        self._c = c = _load()
        self._create_event, self._save_event = c.velora_ts_create_event, c.velora_ts_save_event
        adders = {
            _values.BOOL: c.velora_ts_add_bool,
            _values.DOUBLE: c.velora_ts_add_double,
            _values.INT: c.velora_ts_add_int,
            _values.TEXT: c.velora_ts_add_text,
        }
        self._add = [adders[kind] for kind in sorted(adders)]
        self._lock = threading.RLock()
        self._inside = False  # whether the thread that holds the lock is in a call
        self._refusal = ""  # why nobody may enter
        self._has_session = False
        self._logger = Logger(c.velora_ts_set_logger)
        atexit.register(self._end)
        if sys.platform != "win32":
            os.register_at_fork(after_in_child=self._after_fork)

    def folder_of_component(self) -> Optional[str]:
        """The folder of the component's file, where the loader can tell it."""
        try:
            if sys.platform == "win32":
                path = ctypes.create_unicode_buffer(32768)
                kernel = ctypes.WinDLL("kernel32")
                kernel.GetModuleHandleW.restype = c_void_p
                kernel.GetModuleFileNameW.argtypes = (c_void_p, ctypes.c_wchar_p, ctypes.c_uint32)
                kernel.GetModuleFileNameW(kernel.GetModuleHandleW(_COMPONENT), path, len(path))
                return os.path.dirname(path.value) or None
            rtld_di_origin = 6
            component = ctypes.CDLL(_COMPONENT, mode=os.RTLD_NOLOAD | os.RTLD_NOW)
            folder = ctypes.create_string_buffer(4096)
            dlinfo = ctypes.CDLL(None).dlinfo
            dlinfo.argtypes = (c_void_p, ctypes.c_int, c_char_p)
            if dlinfo(component._handle, rtld_di_origin, folder) != 0:
                return None
            # The component asks the system which file is mapped: not a link to it.
            return os.path.dirname(os.path.realpath(os.path.join(os.fsdecode(folder.value), _COMPONENT)))
        except (OSError, AttributeError):
            return None

    def why_not_available(self, configuration: bytes, activities: bytes) -> str:
        """Why TS cannot be used with these files; empty if it can."""
        return self._alone(self._why_not_available, configuration, activities)

    def create_logging(self, configuration: bytes, activities: bytes) -> int:
        """Begins a session, and returns the handle of the logging object."""
        return self._alone(self._create_logging, configuration, activities)

    def close_logging(self, logging: int) -> None:
        """Gives the handle back."""
        self._alone(self._do, self._c.velora_ts_close_logging, logging)

    def create_execution(self, logging: int, parent: Optional[bytes], *texts: bytes) -> bytes:
        """Creates an execution of a version with a node and a description, and returns its guid."""
        return self._alone(self._create_execution, logging, parent, texts)

    def update_execution(self, logging: int, guid: bytes) -> None:
        """Marks an execution as done."""
        self._alone(self._do, self._c.velora_ts_update_execution, logging, guid, len(guid))

    def record_event(
        self, logging: int, name: bytes, parameters: Iterable[Tuple[bytes, int, Tuple[Any, ...]]], guid: bytes
    ) -> None:
        """Creates an event, adds its parameters and saves it."""
        self._alone(self._record_event, logging, name, parameters, guid)

    def _alone(self, work: Callable[..., T], *arguments: Any) -> T:
        with self._lock:
            if self._inside:  # this thread itself: waiting would never end
                raise Error("a handler of a signal or of the log cannot record while its thread is recording")
            try:
                self._inside = True
                if self._refusal:
                    raise Error(self._refusal)
                return work(*arguments)
            finally:
                self._inside = False

    def _do(self, function: Callable[..., int], *arguments: Any) -> None:
        if function(*arguments):
            raise Error(self._last_error())

    def _last_error(self) -> str:
        size = c_size_t()
        text = self._c.velora_ts_last_error(ctypes.byref(size))
        return _values.to_text(ctypes.string_at(text, size.value))

    def _why_not_available(self, configuration: bytes, activities: bytes) -> str:
        status = self._c.velora_ts_available(configuration, len(configuration), activities, len(activities))
        if status == 0:
            return ""
        if status != _NOT_AVAILABLE:
            raise Error(self._last_error())
        return self._last_error().partition(": ")[2] or "TS is not installed or available"

    def _create_logging(self, configuration: bytes, activities: bytes) -> int:
        logging = c_void_p()
        self._has_session = True
        self._logger.put_in_place()
        self._do(
            self._c.velora_ts_create_logging,
            configuration,
            len(configuration),
            activities,
            len(activities),
            ctypes.byref(logging),
        )
        return logging.value or 0

    def _create_execution(self, logging: int, parent: Optional[bytes], texts: Tuple[bytes, ...]) -> bytes:
        guid = ctypes.create_string_buffer(_GUID_CAPACITY)
        create = self._c.velora_ts_create_execution
        if parent is not None:
            create, texts = self._c.velora_ts_create_execution_under, (parent, *texts)
        self._do(create, logging, *(part for text in texts for part in (text, len(text))), guid, len(guid), None)
        return guid.value

    def _record_event(
        self, logging: int, name: bytes, parameters: Iterable[Tuple[bytes, int, Tuple[Any, ...]]], guid: bytes
    ) -> None:
        size = len(name)
        add = self._add
        if self._create_event(logging, name, size):
            raise Error(self._last_error())
        for parameter, kind, value in parameters:
            if add[kind](logging, name, size, parameter, len(parameter), *value):
                raise Error(self._last_error())
        if self._save_event(logging, name, size, guid, len(guid)):
            raise Error(self._last_error())

    def _end(self) -> None:
        """Lets nothing into the library while the interpreter ends: the log could not be written any more."""
        if not self._refusal:
            self._alone(self._logger.remove)
            self._refusal = "nothing is recorded while the interpreter ends"

    def _after_fork(self) -> None:
        if self._has_session or self._inside:
            self._refusal = (
                "a process that was forked has no recording, because its parent's goes on; "
                'use multiprocessing.get_context("spawn"), or open the first recording in the new process'
            )
        self._lock = threading.RLock()
        self._inside = False


_loaded: Optional[Library] = None


def library_of_process() -> Library:
    """The library of the process, for one thread at a time. Raises Missing, and looks for it again the next time."""
    global _loaded
    if _loaded is None:
        _loaded = Library()
    return _loaded
