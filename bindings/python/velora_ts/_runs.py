"""The runs of a store, and what belongs to one."""

from __future__ import annotations

from datetime import datetime
from typing import Any, Dict, Iterator, List, NamedTuple, Optional, Union

from ._database import Row, State
from ._stored import AFTER_ALL_TIMES, Moment, stored_text, stored_time, text_of, time_of
from .errors import Error
from .records import RUNNING, Configuration, Execution, Note, Run, Status

RunName = Union[str, Run]

_NUMBERS_OF_A_STORE = 10_000_000_000  # docs/forwarding.md
_FIRST_MONTHLY_KEY = 2_000_010_000_000_000
_SHORT_GUID = 8
_MOST = 2**62  # what both databases take as a number

_STATUS = "(SELECT {} FROM statuses WHERE execution_id = {}.execution_id ORDER BY status_id DESC LIMIT 1)"
_COLUMNS = (
    "e.execution_id, e.guid, e.node, e.description, e.started_at, n.instrument, n.host, v.name, v.version, "
    + f"{_STATUS.format('code', 'e')}, {_STATUS.format('at', 'e')}"
)
_TABLES = (
    "FROM executions e LEFT JOIN sessions n ON n.session_id = e.session_id LEFT JOIN activity_versions v "
    "ON v.version_id = e.version_id LEFT JOIN activities a ON a.activity_id = v.activity_id"
)
_IS_RUNNING = f"{RUNNING} = {_STATUS.format('code', 'x')}"


class Root(NamedTuple):
    """A run by its key."""

    key: int
    guid: str


def root_named(state: State, name: RunName) -> Root:
    """The one run with a guid, its first letters or a node, or the last one."""
    wanted = name.guid if isinstance(name, Run) else name
    if not isinstance(wanted, str):
        raise Error(f'run {name!r}: expected a guid, its first characters, "last", a node or a Run')
    found = _last(state) if wanted == "last" else _named(state, wanted)
    if not wanted or not found:
        raise Error(f"no run matches '{wanted}'; expected a guid, its first characters, \"last\" or a node")
    if len(found) > 1:
        runs = "; ".join(f"{guid} of {started}" for _, guid, started in found)
        raise Error(f"several runs match '{wanted}'; name one of them by its guid: {runs}")
    return Root(found[0][0], found[0][1])


def _named(state: State, name: str) -> List[Row]:
    # The plus sign and the empty text keep SQLite from the indexes of parents and times.
    found = state.ask(
        "SELECT execution_id, guid, started_at FROM executions WHERE +parent_id IS NULL AND guid >= :guid "
        "AND guid < :end ORDER BY started_at || '', execution_id",
        {"guid": stored_text(name.lower()), "end": stored_text(name.lower() + "g")},
    )
    if not found or len(name) < _SHORT_GUID:  # so few letters can also be a node
        found += [row for row in _of_node(state, name) if row not in found]
    return found


def _of_node(state: State, node: str) -> List[Row]:
    return state.ask(
        "SELECT execution_id, guid, started_at FROM executions WHERE parent_id IS NULL AND node = :node "
        "ORDER BY started_at || '', execution_id",
        {"node": stored_text(node)},
    )


def _last(state: State) -> List[Row]:
    """Within a store by the key and not by the time, because the clock of a host can be set back."""
    stores = "stores" if state.version >= 3 else "(SELECT 1 AS store_id)"
    return state.ask(
        f"SELECT e.execution_id, e.guid, e.started_at FROM {stores} s CROSS JOIN executions e WHERE e.execution_id = "
        "(SELECT r.root_id FROM executions r CROSS JOIN executions x WHERE r.root_id >= s.store_id AND r.root_id < "
        f"s.store_id + {_NUMBERS_OF_A_STORE - 1} AND x.execution_id = r.root_id AND +x.parent_id IS NULL "
        "ORDER BY r.root_id DESC LIMIT 1) ORDER BY e.started_at DESC, e.execution_id DESC LIMIT 1"
    )


def notes_running(state: State) -> bool:
    """Whether the store keeps a table of what runs, as those of earlier versions do not."""
    question = (
        "SELECT 1 FROM pg_trigger WHERE tgrelid = to_regclass('statuses') AND tgname = 'statuses_running' "
        "AND tgenabled IN ('O', 'A')"
        if state.is_server
        else "SELECT 1 FROM sqlite_master WHERE name = 'statuses_begin' AND type = 'trigger'"
    )
    return bool(state.ask(question))


def _unfinished(state: State) -> str:
    """A condition for runs e that are not finished."""
    if notes_running(state):
        of_store = "running CROSS JOIN executions x WHERE x.execution_id = running.execution_id AND"
        return f"e.execution_id IN (SELECT x.root_id FROM {of_store} {_IS_RUNNING})"
    return f"EXISTS (SELECT 1 FROM executions x WHERE x.root_id = e.execution_id AND {_IS_RUNNING})"


def runs(
    state: State,
    since: Optional[Moment],
    until: Optional[Moment],
    instrument: Optional[str],
    activity: Optional[str],
    node: Optional[str],
    unfinished: bool,
    limit: Optional[int],
) -> Iterator[Run]:
    """The runs that fulfil all that is not None, the newest first."""
    is_unfinished = _unfinished(state)
    values: Dict[str, object] = {
        "since": "" if since is None else stored_time(since),
        "until": AFTER_ALL_TIMES if until is None else stored_time(until),
    }
    conditions = ["e.parent_id IS NULL AND e.started_at >= :since AND e.started_at < :until"]
    few: List[str] = []  # queries for the few runs among which they are
    if node is not None:
        few.append("SELECT execution_id FROM executions WHERE node = :node AND parent_id IS NULL")
        values["node"] = stored_text(node)
    if instrument is not None:
        few.append(
            "SELECT r.execution_id FROM sessions s CROSS JOIN executions r WHERE s.instrument = :instrument "
            "AND r.session_id = s.session_id AND r.parent_id IS NULL"
        )
        values["instrument"] = stored_text(instrument)
    if activity is not None:
        conditions.append("(v.name = :activity OR a.name = :activity)")
        values["activity"] = stored_text(activity)
    if unfinished:
        conditions.append(is_unfinished)
    # Few are sorted. All others are read along the index of parents and times; PostgreSQL uses that for the order only
    # if ORDER BY names all its columns.
    order = "e.parent_id DESC, e.started_at DESC"
    if few or unfinished:
        conditions[0] = conditions[0].replace("e.parent_id", "+e.parent_id", 1)
        conditions.extend(f"e.execution_id IN ({question})" for question in few)
        order = "e.started_at || '' DESC"
    question = (
        f"SELECT {_COLUMNS}, CASE WHEN {is_unfinished} THEN 1 ELSE 0 END {_TABLES} WHERE {' AND '.join(conditions)} "
        f"ORDER BY {order}, e.execution_id DESC"
    )
    if limit is not None:
        if not isinstance(limit, int) or limit < 0:
            raise Error(f"limit {limit!r}: expected a whole number from 0 on")
        question += " LIMIT :limit"
        values["limit"] = min(limit, _MOST)
    for chunk in state.chunks(question, values):
        for row in chunk:
            one = _execution_members(row)
            last = _last_recorded(state, row[0]) if row[11] else one["status_at"]
            yield Run(**one, finished=not row[11], last_recorded_at=last)


def _execution_members(row: Row) -> Dict[str, Any]:
    """What runs and executions have in common, of a row of _COLUMNS."""
    names = ("node", "description", "instrument", "host", "activity", "version")
    texts = (row[2], row[3], row[5], row[6], row[7], row[8])
    members: Dict[str, Any] = {name: text_of(text or "") for name, text in zip(names, texts)}
    started_at, status, status_at = time_of(row[4]), row[9], None if row[10] is None else time_of(row[10])
    seconds = None
    if status_at is not None and status != RUNNING:
        seconds = (status_at - started_at).total_seconds()
    return {
        "guid": row[1],
        **members,
        "started_at": started_at,
        "status": status,
        "status_at": status_at,
        "seconds": seconds,
    }


def _last_recorded(state: State, root: int) -> Optional[datetime]:
    """Looks up the newest row of each execution, and reads no others."""
    after, up_to = keys_beside(root)
    ((status_at, event_at),) = state.ask(
        f"SELECT MAX({_STATUS.format('at', 'x')}), MAX((SELECT at FROM events WHERE execution_id = x.execution_id AND "
        "event_id > :after AND event_id <= :up_to ORDER BY event_id DESC LIMIT 1)) FROM executions x "
        "WHERE x.root_id = :root",
        {"root": root, "after": after, "up_to": up_to},
    )
    newest = max(status_at or "", event_at or "")
    return time_of(newest) if newest else None


def keys_beside(key: int) -> "tuple[int, int]":
    """Above and up to which keys the rows are of the store that the row with this key is from."""
    if key < _NUMBERS_OF_A_STORE or key >= _FIRST_MONTHLY_KEY:
        return -1, _MOST
    shift = key // _NUMBERS_OF_A_STORE * _NUMBERS_OF_A_STORE
    return shift, shift + _NUMBERS_OF_A_STORE - 1


def tree(state: State, root: Root) -> List[Execution]:
    """The executions of a run, each one before those below it."""
    rows = state.ask(
        f"SELECT {_COLUMNS}, e.parent_id {_TABLES} WHERE e.root_id = :root ORDER BY e.execution_id", {"root": root.key}
    )
    below: Dict[Optional[int], List[Row]] = {}
    for row in rows:
        below.setdefault(row[11], []).append(row)
    guids = {row[0]: row[1] for row in rows}
    executions: List[Execution] = []
    waiting = [(row, 0) for row in rows if row[0] == root.key]
    while waiting:
        row, depth = waiting.pop()
        members = _execution_members(row)
        del members["instrument"], members["host"]
        parent = guids.get(row[11])
        executions.append(Execution(number=row[0], parent=parent, run=root.guid, depth=depth, **members))
        waiting.extend((child, depth + 1) for child in reversed(below.get(row[0], [])) if child[0] > row[0])
    return executions


def statuses(state: State, root: Root) -> List[Status]:
    """All statuses of the executions of a run, in the order of saving."""
    return [
        Status(key, guid, text_of(node), code, time_of(at))
        for key, guid, node, code, at in state.ask(
            "SELECT s.status_id, e.guid, e.node, s.code, s.at FROM executions e JOIN statuses s ON s.execution_id = "
            "e.execution_id WHERE e.root_id = :root ORDER BY s.status_id",
            {"root": root.key},
        )
    ]


def notes(state: State, root: Root) -> List[Note]:
    """The notes about a run, in the order of their times."""
    if state.version < 3:
        return []
    return [
        Note(key, text_of(author), kind, text_of(text), time_of(at))
        for key, author, kind, text, at in state.ask(
            "SELECT note_id, author, kind, text, at FROM notes WHERE root_id = :root ORDER BY at, note_id",
            {"root": root.key},
        )
    ]


def configurations(state: State, root: Root) -> List[Configuration]:
    """The configurations of the instrument that were in force at the events of a run."""
    return [
        Configuration(key, guid, time_of(at), *map(text_of, texts))
        for key, guid, at, *texts in state.ask(
            "SELECT c.configuration_id, c.guid, c.saved_at, c.vendor_name, c.host_name, c.option_text, "
            "c.instrument_class, c.model_name, c.configuration_text FROM configurations c WHERE c.configuration_id IN "
            "(SELECT v.configuration_id FROM executions e JOIN events v ON v.execution_id = e.execution_id "
            "WHERE e.root_id = :root) ORDER BY c.configuration_id",
            {"root": root.key},
        )
    ]
