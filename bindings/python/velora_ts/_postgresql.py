"""A store on a PostgreSQL server, by psycopg."""

from __future__ import annotations

import itertools
import os
import re
from contextlib import contextmanager
from typing import TYPE_CHECKING, Any, Dict, Iterator, List, Mapping, Optional

from ._database import CHUNK, Row, expect_same_process, no_store, version_of
from .errors import Error

if TYPE_CHECKING:
    import psycopg

    Connection = psycopg.Connection[Any]

# A server that is gone is found out soon. What the connection or the environment says counts instead.
_DEFAULTS = {
    "connect_timeout": ("PGCONNECT_TIMEOUT", "3"),
    "fallback_application_name": ("", "Velora"),
    "keepalives_count": ("", "2"),
    "keepalives_idle": ("", "2"),
    "keepalives_interval": ("", "1"),
    "tcp_user_timeout": ("", "4000"),
}

# The schemas in which a store is looked for. A path that the connection states is the only one.
_PATHS = r"""
    SELECT current_setting('search_path'),
      EXISTS (SELECT FROM pg_settings WHERE name = 'search_path' AND source = 'client'),
      (SELECT substring(setting FROM '^search_path=(.*)$')
       FROM pg_db_role_setting s JOIN pg_database d ON d.oid = s.setdatabase, unnest(setconfig) AS setting
       WHERE datname = current_database() AND setrole = 0 AND setting LIKE 'search\_path=%')"""
_STORE = r"""
    SELECT quote_ident(nspname) FROM unnest(current_schemas(false)) WITH ORDINALITY AS seen(nspname, number)
    JOIN pg_namespace n USING (nspname) JOIN pg_class c ON c.relnamespace = n.oid
    WHERE relname = 'ts_schema' AND relkind = 'r' AND nspname !~ '^pg_' ORDER BY number LIMIT 1"""

_BEGIN = "BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"

_names = itertools.count(1)

# Connections of the processes from which this one was forked. To use or to close one here would disturb theirs.
_of_others: "List[Connection]" = []


def for_server(question: str) -> str:
    """The question with its values named as psycopg has them."""
    return re.sub(r":([a-z_]+)", r"%(\1)s", question.replace("%", "%%"))


class PostgreSqlState:
    """One state of the store: one transaction."""

    is_server = True

    def __init__(self, connection: "Connection", name: str, version: int) -> None:
        self._connection = connection
        self._name = name
        self._process = os.getpid()
        self.version = version

    def ask(self, question: str, values: Optional[Mapping[str, object]] = None) -> List[Row]:
        expect_same_process(self._process)
        with _in_words(self._name):
            return self._connection.execute(for_server(question).encode(), dict(values or {})).fetchall()

    def chunks(
        self, question: str, values: Optional[Mapping[str, object]] = None, size: int = CHUNK
    ) -> Iterator[List[Row]]:
        with _in_words(self._name):
            cursor = self._connection.cursor(name=f"velora_{next(_names)}")
            try:
                cursor.execute(for_server(question).encode(), dict(values or {}), binary=True)
                while True:
                    expect_same_process(self._process)
                    chunk = cursor.fetchmany(size)
                    if not chunk:
                        return
                    yield chunk
            finally:
                if self._process == os.getpid():
                    cursor.close()

    def row(self, question: str, values: Mapping[str, object]) -> Row:
        """The only row of an answer, in binary form."""
        with _in_words(self._name):
            row: Row = self._connection.execute(for_server(question).encode(), dict(values), binary=True).fetchall()[0]
            return row


class PostgreSqlServer:
    """A server. A connection that no question uses stays open for the next one, outside every transaction."""

    def __init__(self, address: str) -> None:
        self._options = options = _options_of(address)
        host = options.get("host") or options.get("hostaddr") or os.environ.get("PGHOST")
        database = options.get("dbname") or options.get("service") or os.environ.get("PGDATABASE")
        self.name = (database or "of this user") + (f" on {host}" if host else "")
        self._idle: "List[tuple[int, Connection]]" = []  # with the processes that opened them

    @contextmanager
    def state(self) -> Iterator[PostgreSqlState]:
        process, connection = os.getpid(), self._take()
        try:
            with _in_words(self.name):
                connection.execute("SET LOCAL cursor_tuple_fraction = 1")  # every result is read completely
                connection.execute("SET LOCAL jit = off")
                if not connection.execute("SELECT to_regclass('ts_schema')::text").fetchone() == ("ts_schema",):
                    raise no_store(self.name)
                entries = connection.execute("SELECT version FROM ts_schema").fetchall()
            yield PostgreSqlState(connection, self.name, version_of(self.name, [entry for (entry,) in entries]))
        finally:
            self._give_back(process, connection)

    def close(self) -> None:
        for connection in iter(self._pop, None):
            connection.close()

    def _pop(self) -> "Optional[Connection]":
        """An idle connection of this process."""
        while True:
            try:
                process, connection = self._idle.pop()
            except IndexError:
                return None
            if process == os.getpid():
                return connection
            _of_others.append(connection)

    def _take(self) -> "Connection":
        """A connection that has begun a transaction. The server can have ended one that was idle."""
        import psycopg

        for connection in iter(self._pop, None):
            try:
                connection.execute(_BEGIN)
                return connection
            except psycopg.OperationalError:
                connection.close()
        connection = self._connect()
        connection.execute(_BEGIN)
        return connection

    def _give_back(self, process: int, connection: "Connection") -> None:
        import psycopg

        if process != os.getpid():
            _of_others.append(connection)
            return
        try:
            connection.execute("ROLLBACK")
            self._idle.append((process, connection))
        except psycopg.Error:
            connection.close()

    def _connect(self) -> "Connection":
        import psycopg
        from psycopg.conninfo import make_conninfo

        with _in_words(self.name, "cannot be reached"):
            connection: "Connection" = psycopg.connect(make_conninfo(**self._options), autocommit=True)
        with _in_words(self.name):
            current, is_stated, of_database = connection.execute(_PATHS).fetchone() or ("", True, None)
            paths = [current] if is_stated else [current, of_database, '"$user", public']
            for path in filter(None, paths):
                connection.execute("SELECT set_config('search_path', %s, false)", (path,))
                store = connection.execute(_STORE).fetchone()
                if store:
                    connection.execute("SELECT set_config('search_path', %s, false)", (f"{store[0]}, pg_temp",))
                    break
        return connection


@contextmanager
def _in_words(name: str, what: str = "cannot be read") -> Iterator[None]:
    import psycopg

    try:
        yield
    except psycopg.Error as error:
        raise Error(f"TS database '{name}' {what}: {str(error).strip()}") from error


def _options_of(address: str) -> Dict[str, str]:
    try:
        from psycopg import ProgrammingError
        from psycopg.conninfo import conninfo_to_dict
    except ImportError:
        raise Error(
            "a store on a PostgreSQL server needs psycopg 3, which is not installed; expected the package "
            "python3-psycopg of Debian 12, or: pip install 'psycopg[binary]'"
        ) from None
    try:
        options = {key: str(value) for key, value in conninfo_to_dict(address).items()}
    except ProgrammingError:
        options = {"host": "@"}
    # An unescaped "@" or "/" in a password ends a part of a URI too early; the rest would be in errors. So would be
    # the reason that the library gives.
    if (
        "@" in options.get("host", "")
        or re.search("[^0-9,]", options.get("port", ""))
        or re.search("[@=]|://", options.get("dbname", ""))
    ):
        raise Error(
            "PostgreSQL does not understand this connection; expected 'KEYWORD=VALUE ...', 'service=NAME' or a URI"
        ) from None
    for keyword, (variable, value) in _DEFAULTS.items():
        if not os.environ.get(variable):
            options.setdefault(keyword, value)
    options["client_encoding"] = "UTF8"
    return options
