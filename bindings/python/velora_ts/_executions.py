"""The executions to which events belong, with the way down to each."""

from __future__ import annotations

from itertools import islice
from typing import Dict, Iterable, Iterator, List, NamedTuple, Optional, Set, Tuple

from ._database import Row, State
from ._stored import text_of

_MOST_KNOWN = 100_000
_ASKED_AT_ONCE = 500


class Place(NamedTuple):
    """An execution."""

    guid: str
    node: str
    activity: Optional[str]
    run: str  # the guid of the root
    path: Tuple[str, ...]


class Outside(NamedTuple):
    """What stands for an execution outside every run."""

    guid: None = None
    node: None = None
    activity: None = None
    run: None = None
    path: Tuple[str, ...] = ()


OUTSIDE = Outside()


class Executions:
    """Finds executions by their keys, many at once, and keeps what it found in limited memory."""

    def __init__(self, state: State) -> None:
        self._state = state
        self._known: Dict[int, Place] = {}

    def of(self, keys: Iterable[Optional[int]]) -> Dict[Optional[int], "Place | Outside"]:
        """The executions with these keys, for as long as they are needed. None is outside every run."""
        if len(self._known) > _MOST_KNOWN:
            self._known.clear()
        wanted = set(keys)
        self._find({key for key in wanted if key is not None and key not in self._known})
        return {key: OUTSIDE if key is None else self._known.get(key, OUTSIDE) for key in wanted}

    def _find(self, keys: Set[int]) -> None:
        """Finds executions and those above them, from which their paths are made from the top down."""
        found: Dict[int, Tuple[Optional[int], str, str, Optional[str]]] = {}
        while keys:
            for key, parent, guid, node, activity in self._rows(keys):
                found[key] = (parent, guid, text_of(node), None if activity is None else text_of(activity))
            above = {parent for parent, *_ in found.values() if parent is not None}
            keys = {key for key in above if key not in found and key not in self._known} - keys
        for key in sorted(found):  # a parent has a lower key
            parent, guid, node, activity = found[key]
            above_it = self._known.get(parent) if parent is not None else None
            self._known[key] = Place(
                guid, node, activity, above_it.run if above_it else guid, (*(above_it.path if above_it else ()), node)
            )

    def _rows(self, keys: Set[int]) -> Iterator[Row]:
        remaining = iter(sorted(keys))
        while True:
            batch: List[int] = list(islice(remaining, _ASKED_AT_ONCE))
            if not batch:
                return
            yield from self._state.ask(
                "SELECT e.execution_id, e.parent_id, e.guid, e.node, v.name FROM executions e LEFT JOIN "
                "activity_versions v ON v.version_id = e.version_id WHERE e.execution_id IN "
                f"({', '.join(map(str, batch))})"
            )


def instruments_of(state: State) -> Dict[int, str]:
    """The instruments of all sessions by their keys."""
    return {key: text_of(name) for key, name in state.ask("SELECT session_id, instrument FROM sessions")}
