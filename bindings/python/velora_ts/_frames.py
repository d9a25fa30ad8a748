"""The answers of a store as frames of pandas. Only this module needs pandas."""

from __future__ import annotations

from datetime import datetime
from typing import TYPE_CHECKING, Any, Dict, Iterable, List, Optional, Sequence, Type, get_type_hints

from . import records
from ._events import Filter
from ._executions import Executions, instruments_of
from ._stored import text_of
from ._unknown import warn_of_unknown
from .errors import Error

try:
    import numpy
    import pandas

    from ._chunks import Chunks
    from ._columns import Codes, Parameters, Places, joined, objects, pivot, times_of
except ImportError as missing:
    raise Error(
        f"frames need pandas, which cannot be imported ({missing}); expected the package python3-pandas of Debian, or: "
        "pip install pandas"
    ) from None

if TYPE_CHECKING:
    from ._database import State
    from ._runs import RunName
    from ._stored import Moment
    from .store import Store

_JOINT = " > "  # between the nodes of a path


class Frames:
    """The questions of a Store, with the same arguments. Times are datetime64 in UTC, texts str. Whole numbers and
    truth values are int64 and bool, or Int64 and boolean where one is absent; what is absent is NaN, <NA>, NaT or None.
    A time that pandas cannot hold, before 1678 or after 2261, is NaT. attrs["units"] has the units that TSAL.config
    states."""

    def __init__(self, store: "Store") -> None:
        self._store = store

    def runs(self, **asked: Any) -> pandas.DataFrame:
        """A row for each run."""
        return _frame(records.Run, self._store.runs(**asked))

    def tree(self, run: "RunName") -> pandas.DataFrame:
        """A row for each execution of a run."""
        return _frame(records.Execution, self._store.tree(run))

    def statuses(self, run: "RunName") -> pandas.DataFrame:
        """A row for each status of the executions of a run."""
        return _frame(records.Status, self._store.statuses(run))

    def notes(self, run: "RunName") -> pandas.DataFrame:
        """A row for each note about a run."""
        return _frame(records.Note, self._store.notes(run))

    def configurations(self, run: "RunName") -> pandas.DataFrame:
        """A row for each configuration that was in force in a run."""
        return _frame(records.Configuration, self._store.configurations(run))

    def parameter_names(self, run: Optional["RunName"] = None, **asked: Any) -> pandas.DataFrame:
        """A row for each name of parameters."""
        return _frame(records.ParameterName, self._store.parameter_names(run, **asked), _LISTED)

    def stats(self, parameter: str, **asked: Any) -> pandas.DataFrame:
        """A row for each group, the last one for all numbers."""
        found = self._store.stats(parameter, **asked)
        return _frame(records.Group, [*(found.groups if found.by else []), found.all])

    def diff(self, run: "RunName", against: Optional["RunName"] = None, **asked: Any) -> pandas.DataFrame:
        """A row for each difference of two runs."""
        return _frame(records.Difference, self._store.diff(run, against, **asked).differences)

    def events(
        self,
        run: Optional["RunName"] = None,
        since: Optional["Moment"] = None,
        until: Optional["Moment"] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
        parameter: Optional[str] = None,
    ) -> pandas.DataFrame:
        """A row for each event and a column for each parameter, named as in a table of `velora-ts export`: if one event
        has a name twice, or a parameter has the name of a column before it, there is a column `Name (2)`."""
        asked = Filter(since, until, instrument, activity, node, event, parameter)
        with self._store._database.state() as state:
            chunks = Chunks(self._store._question(state, run, asked))
            columns = self._event_columns(state, chunks)
            found = Parameters()
            for part in chunks.parameters(Parameters.COLUMNS, Parameters.TYPES):
                found.add(*part)
            if not len(columns["number"]):
                warn_of_unknown(state, asked)
        found.finish()
        columns.update(pivot(found, Places(columns["number"]), columns))
        return self._with_units(pandas.DataFrame(columns, copy=False))

    def parameters(
        self,
        run: Optional["RunName"] = None,
        since: Optional["Moment"] = None,
        until: Optional["Moment"] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
        parameter: Optional[str] = None,
    ) -> pandas.DataFrame:
        """A row for each parameter of such events. The column `value` has the type of the values, if all have one."""
        asked = Filter(since, until, instrument, activity, node, event, parameter)
        with self._store._database.state() as state:
            chunks = Chunks(self._store._question(state, run, asked))
            events = self._event_columns(state, chunks)
            found, positions = Parameters(), []
            for position, *part in chunks.parameters(
                f"p.position, {Parameters.COLUMNS}", "i" + Parameters.TYPES, only=True
            ):
                found.add(*part)
                positions.append(numpy.array(position, dtype=numpy.int64))
            if not positions:
                warn_of_unknown(state, asked)
        found.finish()
        rows = Places(events["number"]).of(found.events)
        columns = {name: column[rows] for name, column in events.items()}
        columns["position"] = joined(positions)
        columns["parameter"] = found.names[found.names_of_words][found.words]
        columns["kind"] = found.kinds_of_words[found.words]
        everything = numpy.arange(len(rows))
        columns["value"] = found.value_column(everything, everything, len(rows))
        return self._with_units(pandas.DataFrame(columns, copy=False))

    def _event_columns(self, state: "State", chunks: Chunks) -> Dict[str, Any]:
        """The columns that all events have, those of `velora-ts events --csv`."""
        names, executions, sessions = Codes(), Codes(), Codes()
        parts: List[List[Any]] = [[], [], [], [], []]
        wanted = "v.event_id, v.at, v.name, COALESCE(v.execution_id, 0), v.session_id"
        for number, at, name, execution, session in chunks.events(wanted, "issii"):
            columns = (
                numpy.array(number, dtype=numpy.int64),
                times_of(at),
                names.of(name),
                executions.of(execution),
                sessions.of(session),
            )
            for part, column in zip(parts, columns):
                part.append(column)
        times = pandas.to_datetime(joined(parts[1], "datetime64[us]"), utc=True, errors="coerce")
        of_name, of_execution, of_session = (joined(part, numpy.int32) for part in parts[2:])
        found = Executions(state).of(key or None for key in executions)
        places = [found[key or None] for key in executions]
        by_session = instruments_of(state)
        return {
            "number": joined(parts[0]),
            "at": times.array,
            "run": objects(place.run for place in places)[of_execution],
            "execution": objects(place.guid for place in places)[of_execution],
            "node": objects(place.node for place in places)[of_execution],
            "activity": objects(place.activity for place in places)[of_execution],
            "event": objects(map(text_of, names))[of_name],
            "instrument": objects(by_session.get(session, "") for session in sessions)[of_session],
            "path": objects(_JOINT.join(place.path) for place in places)[of_execution],
        }

    def _with_units(self, frame: pandas.DataFrame) -> pandas.DataFrame:
        frame.attrs["units"] = self._store.units
        return frame


_LISTED = ", "


def _frame(kind: Type[Any], rows: Iterable[Any], joint: str = _JOINT) -> pandas.DataFrame:
    """A frame of records, whose columns have the types of the fields."""
    listed = list(rows)
    hints = get_type_hints(kind)
    return pandas.DataFrame(
        {name: _column(hints[name], [row[place] for row in listed], joint) for place, name in enumerate(kind._fields)}
    )


def _column(hint: Any, values: List[Any], joint: str) -> Any:
    if hint in (datetime, Optional[datetime]):
        return pandas.to_datetime(values, utc=True, errors="coerce")
    for kinds, dtype in (((int,), "int64"), ((Optional[int],), "Int64"), ((float, Optional[float]), "float64")):
        if hint in kinds:
            return pandas.array(values, dtype=dtype)
    if hint is bool:
        return numpy.array(values, dtype=bool)
    return objects(_in_words(value, joint) if isinstance(value, tuple) else value for value in values)


def _in_words(parts: Sequence[Any], joint: str) -> str:
    return joint.join(part.node if isinstance(part, records.Step) else part for part in parts)
