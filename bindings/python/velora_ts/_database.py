"""One way into both databases. Questions are SQL that both accept, with values named like :since."""

from __future__ import annotations

import os
from typing import Any, ContextManager, Iterator, List, Mapping, Optional, Protocol, Sequence, Tuple

from .errors import Error

SCHEMA_VERSION = 3  # the newest that this package knows
CHUNK = 2000  # rows that are read at once

Row = Tuple[Any, ...]


class State(Protocol):
    """One state of a store, whatever hosts record meanwhile."""

    is_server: bool
    version: int  # of the schema

    def ask(self, question: str, values: Optional[Mapping[str, object]] = None) -> List[Row]:
        """All rows of an answer."""

    def chunks(
        self, question: str, values: Optional[Mapping[str, object]] = None, size: int = CHUNK
    ) -> Iterator[List[Row]]:
        """The rows of an answer that can be long, some at once."""


class Database(Protocol):
    """A store that can be asked."""

    name: str

    def state(self) -> ContextManager[State]:
        """The present state, to ask one or several questions."""

    def close(self) -> None:
        """Closes what is open."""


def rows(chunks: Iterator[List[Row]]) -> Iterator[Row]:
    """The rows of chunks, one by one."""
    for chunk in chunks:
        yield from chunk


def expect_same_process(process: int) -> None:
    """Raises in a process that was forked from the one that asked, which has the connection and its locks."""
    if process != os.getpid():
        raise Error("this iterator was begun in another process, which forked this one; ask again here")


def version_of(name: str, entries: Sequence[int]) -> int:
    """The version of the schema, by what ts_schema has. A version that only adds is negative there."""
    if not entries or not 1 <= max(entries) <= SCHEMA_VERSION:
        newest = str(max(entries)) if entries else "none"
        raise Error(
            f"TS store '{name}' has a schema of version {newest}; this package reads versions 1 to {SCHEMA_VERSION}: "
            "expected a newer version of it"
        )
    return max(abs(entry) for entry in entries)


def no_store(name: str) -> Error:
    """What to raise if the database has no tables of a store."""
    return Error(f"'{name}' is not a TS store; expected a database with the tables of a TS store")
