"""Recordings and activities, as blocks of a script."""

from __future__ import annotations

import contextlib
import os
import traceback
import warnings
from types import TracebackType
from typing import Dict, Mapping, Optional, Tuple, Type, Union

from velora_ts._session import Session
from velora_ts._values import Value, storable, to_text
from velora_ts.errors import Error, NotAvailable, NotAvailableWarning

FileName = Union[str, "os.PathLike[str]"]

_NO_PARAMETERS: Mapping[str, Value] = {}

# In an exception: the guids of the activity that recorded it and of all above that one.
_RECORDED = "_velora_ts_recorded"

_HERE = os.path.dirname(__file__)


def open(
    configuration: FileName = "instrument.xml", activities: FileName = "activities.xml", *, required: bool = False
) -> Recording:
    """Begins a session with TS.

    The files are taken from the current directory, or else from the folder of the component's library. TSAL.config is
    beside them. Where TS cannot be used, this warns once with the reason, and everything records nothing; if
    `required`, it raises NotAvailable. A file with an error in it raises Error.
    """
    session = Session(_name_of(configuration), _name_of(activities))
    if session.reason and required:
        raise NotAvailable(session.reason)
    if session.reason:
        warnings.warn(f"nothing is recorded: {session.reason}", NotAvailableWarning, stacklevel=2)
    return Recording(session)


def _name_of(file: FileName) -> str:
    return os.fspath(file) if isinstance(file, os.PathLike) else file


class Recording:
    """A session with TS, which open() begins. The end of its block closes it."""

    def __init__(self, session: Session) -> None:
        self._open_session: Optional[Session] = session
        self._reason = session.reason

    @property
    def available(self) -> bool:
        """Whether this records."""
        return not self._reason

    @property
    def reason(self) -> str:
        """Why this does not record; empty if it does."""
        return self._reason

    def activity(self, version: str, node: str = "", description: str = "") -> Activity:
        """An activity at the top.

        version: the name of an activity version of the activities file. node: where it runs, in the terms of the
        script. description: what it is, as a free text.
        """
        return Activity(self, None, version, node, description)

    def event(self, name: str, parameters: Mapping[str, Value] = _NO_PARAMETERS, /, **more: Value) -> None:
        """Records an event outside every activity. Activity.event says more."""
        self._session().record_event(name, parameters, more, b"")

    def close(self) -> None:
        """Ends the recording. Can be repeated."""
        session, self._open_session = self._open_session, None
        if session is not None:
            session.end()

    def __enter__(self) -> Recording:
        self._session()
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        try:
            self.close()
        except Error:
            if error is None:  # nothing that fails here may hide it
                raise

    def _session(self) -> Session:
        if self._open_session is None:
            raise Error("the recording is closed; expected its use before the end of its block")
        return self._open_session


class Activity:
    """A step of a run, which begins and ends with its block.

    It is done if its block ends in order. If an exception leaves the block, the activity stays unfinished, with an
    event "Exception" in the innermost activity that the exception leaves.
    """

    def __init__(
        self, recording: Recording, parent: Optional[Activity], version: str, node: str, description: str
    ) -> None:
        self._recording = recording
        self._parent = parent
        self._texts = (version, node, description)
        self._guid: Optional[bytes] = None
        self._left = False

    @property
    def guid(self) -> str:
        """The identity of the execution in the record; empty if nothing is recorded."""
        return to_text(self._entered_guid())

    def activity(self, version: str, node: str = "", description: str = "") -> Activity:
        """An activity below this one. Recording.activity says what the texts are."""
        return Activity(self._recording, self, version, node, description)

    def event(self, name: str, parameters: Mapping[str, Value] = _NO_PARAMETERS, /, **more: Value) -> None:
        """Records an event of this activity, with its parameters: those of a mapping first, then the keywords.

        It is on the disk when this returns. A bool, int or float is recorded as bool, int or double; str, bytes, paths
        and datetimes as text; Bool, Int, Double and Text as what they say.
        """
        guid = self._guid
        if guid is None or self._left:
            guid = self._inside_guid()
        self._recording._session().record_event(name, parameters, more, guid)

    def __enter__(self) -> Activity:
        if self._guid is not None:
            raise Error(f"{self._in_words()} was entered before; expected another one for each block")
        parent = self._parent._inside_guid() if self._parent else None
        self._guid = self._recording._session().create_execution(parent, *self._texts)
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        guid = self._inside_guid()
        if error is None:
            self._recording._session().update_execution(guid)
        elif guid not in error.__dict__.get(_RECORDED, ()):
            self._record(error)
        self._left = True  # last, so that it can be left again if its end could not be recorded

    def _record(self, error: BaseException) -> None:
        """Records what left the block. Nothing that fails here may hide it."""
        try:
            self._recording._session().record_event(
                "Exception", _described(error), _NO_PARAMETERS, self._entered_guid()
            )
            error.__dict__[_RECORDED] = self._guids()
        except Exception as failure:
            with contextlib.suppress(Exception):  # warnings can be made errors
                warnings.warn(
                    f"{self._in_words()} was left by an exception that is not in the record: {failure}",
                    RuntimeWarning,
                    stacklevel=3,
                )

    def _guids(self) -> Tuple[bytes, ...]:
        above = self._parent._guids() if self._parent else ()
        return (*above, self._entered_guid())

    def _entered_guid(self) -> bytes:
        if self._guid is None:
            raise Error(f"{self._in_words()} has not begun; expected its use in its block")
        return self._guid

    def _inside_guid(self) -> bytes:
        if self._left:
            raise Error(f"{self._in_words()} has ended; expected its use in its block")
        return self._entered_guid()

    def _in_words(self) -> str:
        version, node, _ = self._texts
        return f"activity {version!r}" + (f" of node {node!r}" if node else "")


def _message_of(error: BaseException) -> str:
    """The text of an exception, as far as there is one and UTF-8 can hold it."""
    try:
        return storable(str(error))
    except Exception as failure:
        return f"<str() raised {type(failure).__qualname__}>"


def _described(error: BaseException) -> Dict[str, Value]:
    kind = type(error)
    module = "" if kind.__module__ in ("builtins", "__main__") else f"{kind.__module__}."
    described: Dict[str, Value] = {"Type": module + kind.__qualname__, "Message": _message_of(error)}
    for frame, line in traceback.walk_tb(error.__traceback__):  # the last one of the script raised it
        if os.path.dirname(frame.f_code.co_filename) != _HERE:
            described["Where"] = f"{frame.f_code.co_filename}, line {line}, in {frame.f_code.co_name}"
    return described
