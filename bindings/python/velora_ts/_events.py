"""Events and their parameters: which ones are asked for, and how they are read."""

from __future__ import annotations

from typing import Dict, Iterator, List, NamedTuple, Optional, Tuple

from ._database import Row, State, rows
from ._executions import Executions, instruments_of
from ._runs import Root
from ._stored import AFTER_ALL_TIMES, Moment, finite_number_of, stored_text, stored_time, text_of, time_of, value_of
from .records import Event, Parameter, ParameterName, Reading

_FIRST_MONTHLY_KEY = 2_000_010_000_000_000

_BELOW_ACTIVITY = (
    "EXISTS (WITH RECURSIVE up(execution_id, parent_id, version_id) AS (SELECT execution_id, parent_id, version_id "
    "FROM executions WHERE execution_id = v.execution_id UNION ALL SELECT e.execution_id, e.parent_id, e.version_id "
    "FROM up CROSS JOIN executions e WHERE e.execution_id = up.parent_id AND up.parent_id < up.execution_id) "
    "SELECT 1 FROM up CROSS JOIN activity_versions w CROSS JOIN activities a WHERE w.version_id = up.version_id "
    "AND a.activity_id = w.activity_id AND (w.name = :activity OR a.name = :activity))"
)
_HAS_PARAMETER = "EXISTS (SELECT 1 FROM parameters q WHERE q.event_id = v.event_id AND q.name = :parameter)"


class Filter(NamedTuple):
    """Which events are asked for. None stands for any."""

    since: Optional[Moment] = None
    until: Optional[Moment] = None
    instrument: Optional[str] = None
    activity: Optional[str] = None  # of the event's execution or of one above it: an activity or a version of it
    node: Optional[str] = None  # of the event's execution
    event: Optional[str] = None  # the name of the event
    parameter: Optional[str] = None  # the name of a parameter

    def since_until(self) -> Tuple[str, str]:
        """Stored times."""
        return (
            "" if self.since is None else stored_time(self.since),
            AFTER_ALL_TIMES if self.until is None else stored_time(self.until),
        )


class Question:
    """The questions for the events of a run in the order of saving, or of a time in the order of their times. They
    read along the index of a run or of times, and no other events."""

    def __init__(self, state: State, root: Optional[Root], asked: Filter) -> None:
        self.state = state
        since, until = asked.since_until()
        self.values: Dict[str, object] = {"since": since, "until": until}
        conditions = ["v.at >= :since AND v.at < :until"]
        for name in ("instrument", "activity", "node", "event", "parameter"):
            given = getattr(asked, name)
            if given is not None:
                self.values[name] = stored_text(given)
        if asked.event is not None:
            conditions.append("v.name = :event")
        if asked.instrument is not None:
            conditions.append("v.session_id IN (SELECT session_id FROM sessions WHERE instrument = :instrument)")
        if asked.activity is not None:
            conditions.append(_BELOW_ACTIVITY)
        of_node = "" if asked.node is None else " AND o.node = :node"
        self.order = "v.at, v.event_id" if root is None else "v.event_id"
        self._of_parameters = "p.event_id = v.event_id"
        if root is not None:
            # As a list, which SQLite sorts once, and not as a join, whose rows it would sort with all their values.
            conditions.append(
                "v.event_id IN (SELECT e.event_id FROM executions o JOIN events e ON e.execution_id = o.execution_id "
                f"WHERE o.root_id = :root{of_node})"
            )
            self.values["root"] = root.key
        else:
            if of_node:
                conditions.append(f"EXISTS (SELECT 1 FROM executions o WHERE o.execution_id = v.execution_id{of_node})")
            if state.is_server:
                self._limit_keys(conditions)
        self._condition = " AND ".join(conditions)
        self._has_parameter = asked.parameter is not None

    def events(self, columns: str) -> str:
        """A question for columns of the events v."""
        also = f" AND {_HAS_PARAMETER}" if self._has_parameter else ""
        return f"SELECT {columns} FROM events v WHERE {self._condition}{also} ORDER BY {self.order}"

    def parameters(self, columns: str, joins: str = "", only: bool = False, order: bool = True) -> str:
        """A question for columns of all parameters p of the events, or only of those of the name that is asked for."""
        also = "" if not self._has_parameter else " AND p.name = :parameter" if only else f" AND {_HAS_PARAMETER}"
        ordered = f" ORDER BY {self.order}, p.position" if order else ""
        return (
            f"SELECT {columns} FROM events v CROSS JOIN parameters p {joins} WHERE {self._condition} AND "
            f"{self._of_parameters}{also}{ordered}"
        )

    def of_keys(self, columns: str, table: str, only: bool = False) -> Tuple[str, str]:
        """The same question about those events whose keys are :keys, in their order, and that about the events whose
        keys go from :first to :last. They are for a server, and for the table `events v` or `parameters p`."""
        key = f"{table[-1]}.event_id"
        position = ", p.position" if table == "parameters p" else ""
        also = " AND p.name = :parameter" if self._has_parameter and only else ""
        asked = "unnest(CAST(:keys AS bigint[])) WITH ORDINALITY AS asked(key, place)"
        return (
            f"SELECT {columns} FROM {asked} JOIN {table} ON {key} = asked.key{also} ORDER BY asked.place{position}",
            f"SELECT {columns} FROM {table} WHERE {key} BETWEEN :first AND :last{also} ORDER BY {key}{position}",
        )

    def _limit_keys(self, conditions: List[str]) -> None:
        """A key of a server's own events begins with the month, so the keys say which partitions the server need not
        read. Those of other stores are below, in a partition of their own."""
        ranges = self.state.ask(
            "SELECT MIN(v.event_id + 0), MAX(v.event_id + 0) FROM events v WHERE v.at >= :since AND v.at < :until "
            f"GROUP BY v.event_id >= {_FIRST_MONTHLY_KEY}",
            {"since": self.values["since"], "until": self.values["until"]},
        )
        among = [f"{{0}}.event_id BETWEEN {lowest} AND {highest}" for lowest, highest in ranges]
        any_of = f"({' OR '.join(among)})" if among else "{0}.event_id = 0"  # keys begin with 1
        conditions.append(any_of.format("v"))
        self._of_parameters += " AND " + any_of.format("p")


def events(question: Question) -> Iterator[Event]:
    """The events with all their parameters. Two questions are answered side by side, and both hold a chunk."""
    state = question.state
    executions, instruments = Executions(state), instruments_of(state)
    parameters = rows(
        state.chunks(question.parameters("p.event_id, p.name, p.kind, p.value_text, p.value_number"), question.values)
    )
    waiting: Optional[Row] = next(parameters, None)
    for chunk in state.chunks(
        question.events("v.event_id, v.at, v.name, v.execution_id, v.session_id"), question.values
    ):
        places = executions.of(row[3] for row in chunk)
        for number, at, name, execution, session in chunk:
            place = places[execution]
            found: List[Parameter] = []
            while waiting is not None and waiting[0] == number:
                _, parameter, kind, text, value = waiting
                found.append(Parameter(text_of(parameter), kind, value_of(kind, text, value)))
                waiting = next(parameters, None)
            yield Event(
                number,
                time_of(at),
                place.run,
                place.guid,
                place.node,
                place.activity,
                text_of(name),
                instruments.get(session, ""),
                place.path,
                tuple(found),
            )


def readings(question: Question) -> Iterator[Reading]:
    """Each parameter with its event."""
    executions, instruments = Executions(question.state), instruments_of(question.state)
    columns = (
        "v.event_id, v.at, v.name, v.execution_id, v.session_id, "
        "p.position, p.name, p.kind, p.value_text, p.value_number"
    )
    for chunk in question.state.chunks(question.parameters(columns, only=True), question.values):
        places = executions.of(row[3] for row in chunk)
        for number, at, event, execution, session, position, parameter, kind, text, value in chunk:
            place = places[execution]
            yield Reading(
                number,
                time_of(at),
                place.run,
                place.guid,
                place.node,
                place.activity,
                text_of(event),
                instruments.get(session, ""),
                place.path,
                position,
                text_of(parameter),
                kind,
                value_of(kind, text, value),
            )


class _Use:
    """What the values of a name are like, while they are read."""

    def __init__(self) -> None:
        self.events: "set[str]" = set()
        self.kinds: "set[str]" = set()
        self.count = 0
        self.lowest: Optional[float] = None
        self.highest: Optional[float] = None
        self.first_at, self.last_at = AFTER_ALL_TIMES, ""


def parameter_names(question: Question, units: Dict[str, str]) -> List[ParameterName]:
    """What the parameters of each name are like."""
    uses: Dict[str, _Use] = {}
    columns = "p.name, v.name, p.kind, p.value_text, p.value_number, v.at"
    for name, event, kind, text, number, at in rows(
        question.state.chunks(question.parameters(columns, only=True, order=False), question.values)
    ):
        use = uses.setdefault(name, _Use())
        use.count += 1
        use.events.add(event)
        use.kinds.add(kind)
        use.first_at, use.last_at = min(use.first_at, at), max(use.last_at, at)
        found = number if text is None and kind != "bool" else finite_number_of(kind, text, number)
        if found is not None:
            use.lowest = found if use.lowest is None else min(use.lowest, found)
            use.highest = found if use.highest is None else max(use.highest, found)
    return [
        ParameterName(
            name=text_of(name),
            unit=units.get(text_of(name), ""),
            events=tuple(map(text_of, sorted(use.events))),
            kinds=tuple(sorted(use.kinds)),
            count=use.count,
            min=use.lowest,
            max=use.highest,
            first_at=time_of(use.first_at),
            last_at=time_of(use.last_at),
        )
        for name, use in sorted(uses.items())
    ]
