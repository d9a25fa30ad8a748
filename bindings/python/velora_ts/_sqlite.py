"""A store in a file. Reading changes nothing that was recorded, and does not wait for the hosts that write. Beside a
log without its index, SQLite makes the file `-shm`, as it does for velora-ts."""

from __future__ import annotations

import os
import sqlite3
import stat
from contextlib import contextmanager
from pathlib import Path
from typing import Iterator, List, Mapping, Optional

from ._copies import own_connection, records_with_another_sqlite
from ._database import CHUNK, Row, expect_same_process, no_store, version_of
from .errors import Error

_LONGEST_WAIT = 5  # seconds, for a host that recovers after a crash

_kept: List[sqlite3.Connection] = []  # which cannot be closed without ending the locks of a recording


class SqliteState:
    """One state of the file: one transaction."""

    is_server = False

    def __init__(self, path: str) -> None:
        self._path = path
        self._process = os.getpid()
        # SQLite follows links, and keeps its log and journal beside the file to which they lead.
        self._file = os.path.realpath(path)
        found = self._expect_readable()
        self._identity = (found.st_dev, found.st_ino)
        self._written = found.st_mtime_ns
        # If a host has the file open, its log lies beside it. If there is no log, SQLite would make one for a reader
        # too, which would stay behind, and would fail for a user who may not write to the folder.
        journal = self._file + "-journal"
        has_journal = os.path.exists(journal) and os.path.getsize(journal) > 0
        self._closed = not os.path.exists(self._file + "-wal") and not has_journal
        uri = Path(self._file).as_uri() + ("?immutable=1" if self._closed else "?mode=ro")
        try:
            with own_connection(self._identity):
                self._connection = sqlite3.connect(
                    uri, uri=True, timeout=_LONGEST_WAIT, isolation_level=None, check_same_thread=False
                )
        except sqlite3.Error as error:
            raise Error(f"TS database '{path}' cannot be opened: {error}") from error
        try:
            self._begin()
            self.version = self._find_version()
        except BaseException:
            self.close()
            raise

    def ask(self, question: str, values: Optional[Mapping[str, object]] = None) -> List[Row]:
        return [row for chunk in self.chunks(question, values) for row in chunk]

    def chunks(
        self, question: str, values: Optional[Mapping[str, object]] = None, size: int = CHUNK
    ) -> Iterator[List[Row]]:
        try:
            cursor = self._connection.execute(question, dict(values or {}))
            while True:
                chunk = cursor.fetchmany(size)
                self.expect_untouched()  # before anybody uses these rows
                if not chunk:
                    return
                yield chunk
        except sqlite3.Error as error:
            self.expect_untouched()
            raise Error(f"TS database '{self._path}' cannot be read: {error}") from error

    def expect_untouched(self) -> None:
        """Raises when a host began to write meanwhile, so that what was read can be a mixture of two states. In a
        forked process nothing keeps hosts from that."""
        expect_same_process(self._process)
        if not self._closed:
            return
        try:
            written = os.stat(self._file).st_mtime_ns
        except OSError as error:
            raise Error(
                f"TS database '{self._path}' was not in use, and is not there any more: {error.strerror}; expected "
                "that it stays while it is read"
            ) from None
        if written != self._written:
            raise Error(
                f"TS database '{self._path}' was not in use, and a host began to write to it while it was read; read "
                "it again"
            )

    def close(self) -> None:
        if records_with_another_sqlite(self._identity):
            _kept.append(self._connection)
            return
        with own_connection(self._identity):
            self._connection.close()

    def _expect_readable(self) -> os.stat_result:
        try:
            found = os.stat(self._file)
        except OSError as error:
            if isinstance(error, FileNotFoundError):
                words = f"there is no TS store '{self._path}'; the first host that records makes it"
            else:
                words = f"TS database '{self._path}' cannot be opened: {error.strerror}"
            raise Error(words) from None
        if not stat.S_ISREG(found.st_mode):
            raise Error(f"TS database '{self._path}' is not a regular file; expected one")
        if found.st_nlink > 1:
            raise Error(
                f"TS database '{self._path}' has {found.st_nlink} names (hard links), and what hosts record may be in "
                "a log beside another one; expected one name: remove the others"
            )
        if records_with_another_sqlite((found.st_dev, found.st_ino)):
            raise Error(
                f"TS database '{self._path}' cannot be read in the process that records into it, because this Python "
                "has an SQLite of its own, and would end the locks of the host; expected another process"
            )
        return found

    def _begin(self) -> None:
        try:
            self._connection.execute("BEGIN")
            self._connection.execute("SELECT 1 FROM sqlite_master").fetchone()
        except sqlite3.OperationalError as error:
            words = f"TS database '{self._path}' cannot be read: {error}"
            if not self._closed:
                words += (
                    f"; beside '{self._file}' is the log of a host, or what a program left that ended while it wrote: "
                    "expected a user who may write there to open it first, such as the next host"
                )
            raise Error(words) from error
        except sqlite3.DatabaseError as error:
            raise Error(f"TS database '{self._path}' cannot be read: {error}") from error

    def _find_version(self) -> int:
        if not self.ask("SELECT 1 FROM sqlite_master WHERE name = 'ts_schema'"):
            raise no_store(self._path)
        return version_of(self._path, [version for (version,) in self.ask("SELECT version FROM ts_schema")])


class SqliteFile:
    """The file of a store, which each question opens anew: what is not asked holds nothing open."""

    def __init__(self, path: str) -> None:
        self.name = path

    @contextmanager
    def state(self) -> Iterator[SqliteState]:
        state = SqliteState(self.name)
        try:
            yield state
            state.expect_untouched()
        finally:
            state.close()

    def close(self) -> None:
        """Nothing is open between two questions."""
