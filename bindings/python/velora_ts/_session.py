"""The session with TS into which the recordings of this process record."""

from __future__ import annotations

import os
import re
import sys
import threading
import weakref
from typing import List, Mapping, NamedTuple, Optional

from velora_ts._library import Library, Missing, library_of_process
from velora_ts._names import ActivityNames, folder_of_settings
from velora_ts._values import Value, named_bytes, parameters_of
from velora_ts.errors import Error

# What the library says of a file that somebody has to mend, unlike one that is not there.
_FAULT_IN_FILE = re.compile(r"^file '.*', line \d+: ", re.MULTILINE)


class Place(NamedTuple):
    """The files of a session, and the folder from which they are taken, where that is known."""

    configuration: str
    activities: str
    folder: Optional[str]


class Session:
    """What a recording records into; nothing, if there is a reason why TS cannot be used."""

    def __init__(self, configuration: str, activities: str) -> None:
        self.reason = ""
        self._logging = 0
        self._files = (
            named_bytes("the name of the instrument configuration", configuration),
            named_bytes("the name of the activities file", activities),
        )
        with _beginning:
            library = self._library_if_available()
            folder = folder_of_settings(activities, library.folder_of_component() if library else None)
            self._place = Place(configuration, activities, folder)
            self._names = ActivityNames(folder, activities) if folder else None
            self._library = None if self.reason else library
            if self._library is not None:
                self._begin(self._library)

    def _library_if_available(self) -> Optional[Library]:
        try:
            library = library_of_process()
        except Missing as missing:
            self.reason = str(missing)
            return None
        self.reason = library.why_not_available(*self._files)
        if _FAULT_IN_FILE.search(self.reason):
            raise Error(self.reason)
        return library

    def _begin(self, library: Library) -> None:
        """All records of a process belong to its newest session, so those that are open at once need one place."""
        for other in _those_that_record():
            if other._place != self._place:
                raise Error(
                    f"a recording with {_in_words(other._place)} is open in this process; "
                    f"expected it to be closed before one with {_in_words(self._place)} begins"
                )
        try:
            self._logging = library.create_logging(*self._files)
        except Error as failure:  # which could not be foreseen, such as a disk without room for a session
            self.reason = str(failure)
            self._library = None
        else:
            _begun[self._logging] = self
            for other in _those_that_record():
                other._names = self._names  # the process has registered these now

    def end(self) -> None:
        """Gives the library back what it gave. What was recorded stays."""
        if self._library is not None:
            _begun.pop(self._logging, None)
            self._library.close_logging(self._logging)

    def create_execution(self, parent: Optional[bytes], version: str, node: str, description: str) -> bytes:
        """The guid of a new execution; empty if nothing is recorded."""
        texts = (
            named_bytes("the name of an activity", version),
            named_bytes(f"the node of activity {version!r}", node),
            named_bytes(f"the description of activity {version!r}", description),
        )
        if self._names is not None:
            self._names.expect(version)
        if self._library is None:
            return b""
        guid = self._library.create_execution(self._logging, parent, *texts)
        if not guid:
            raise Error(f"activity {version!r} was not recorded, because TS is not available any more")
        return guid

    def update_execution(self, guid: bytes) -> None:
        """Marks an execution as done."""
        if self._library is not None:
            self._library.update_execution(self._logging, guid)

    def record_event(self, name: str, parameters: Mapping[str, Value], more: Mapping[str, Value], guid: bytes) -> None:
        """Records an event of an execution; of none, if the guid is empty."""
        recorded = parameters_of(name, parameters, more)
        event = named_bytes("the name of an event", name)
        if self._library is not None:
            self._library.record_event(self._logging, event, recorded, guid)


def _in_words(place: Place) -> str:
    where = f" in '{place.folder}'" if place.folder else ""
    return f"'{place.configuration}' and '{place.activities}'{where}"


_begun: weakref.WeakValueDictionary[int, Session] = weakref.WeakValueDictionary()  # by their handles
_beginning = threading.Lock()


def _those_that_record() -> List[Session]:
    """At one moment: others can end while this list is used, in another thread or in a handler of a signal."""
    return [session for session in (reference() for reference in _begun.valuerefs()) if session is not None]


def _renew_lock() -> None:
    """In a forked child, which does not have the thread that held the lock."""
    global _beginning
    _beginning = threading.Lock()


if sys.platform != "win32":
    os.register_at_fork(after_in_child=_renew_lock)
