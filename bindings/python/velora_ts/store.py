"""Reading a store: velora_ts.Store."""

from __future__ import annotations

import os
from types import TracebackType
from typing import TYPE_CHECKING, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Type, Union

from . import _events, _runs, _statistics
from ._database import Database, State
from ._diff import compare, with_exact_values
from ._events import Filter, Question
from ._postgresql import PostgreSqlServer
from ._runs import RunName
from ._settings import Place, place_of
from ._sqlite import SqliteFile
from ._stored import Moment
from ._unknown import or_warned, warn_of_unknown
from .records import (
    Comparison,
    Configuration,
    Event,
    Execution,
    Note,
    ParameterName,
    Reading,
    Run,
    Statistics,
    Status,
)

if TYPE_CHECKING:
    from ._frames import Frames


def _database_at(place: Place) -> Database:
    if place.is_server:
        return PostgreSqlServer(place.where)
    return SqliteFile(place.where)


class Store:
    """A store, to be read: the folder with its TSAL.config, its file (a backup, too, or one that `velora-ts rotate` put
    aside), or a connection to a PostgreSQL server.

    Each question is answered from one state of the store, the present one, whatever hosts record meanwhile. Nothing is
    changed. Iterators read while they are used; several can be used side by side.

    A run is named as `velora-ts` takes it: a guid, its first letters, "last", or a node that only one run has; a Run
    names itself. A time is a datetime (local, if it has no zone), a date, or a text such as "2026-11-24 21:55".
    A name of an event or of a parameter that is nowhere in the store is a warning. Everything that fails raises
    velora_ts.Error.
    """

    def __init__(self, where: Union[str, "os.PathLike[str]"]) -> None:
        self._place = place_of(where)
        self._database: Database = _database_at(self._place)
        with self._database.state():  # so that what cannot be read is said here
            pass

    def __enter__(self) -> "Store":
        return self

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        self.close()

    def close(self) -> None:
        """Closes connections to a server that no iterator uses. A further question opens one again."""
        self._database.close()

    @property
    def units(self) -> Dict[str, str]:
        """The units of parameters that TSAL.config states."""
        return dict(self._place.units)

    @property
    def frames(self) -> "Frames":
        """The same questions, answered as frames of pandas."""
        from ._frames import Frames

        return Frames(self)

    def runs(
        self,
        since: Optional[Moment] = None,
        until: Optional[Moment] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        unfinished: bool = False,
        limit: Optional[int] = None,
    ) -> List[Run]:
        """The runs that started from one time to before another, the newest first."""
        with self._database.state() as state:
            return list(_runs.runs(state, since, until, instrument, activity, node, unfinished, limit))

    def tree(self, run: RunName) -> List[Execution]:
        """The executions of a run, each one before those below it."""
        with self._database.state() as state:
            return _runs.tree(state, _runs.root_named(state, run))

    def statuses(self, run: RunName) -> List[Status]:
        """All statuses of the executions of a run, in the order of saving."""
        with self._database.state() as state:
            return _runs.statuses(state, _runs.root_named(state, run))

    def notes(self, run: RunName) -> List[Note]:
        """The notes about a run."""
        with self._database.state() as state:
            return _runs.notes(state, _runs.root_named(state, run))

    def configurations(self, run: RunName) -> List[Configuration]:
        """The configurations of the instrument that were in force at the events of a run."""
        with self._database.state() as state:
            return _runs.configurations(state, _runs.root_named(state, run))

    def events(
        self,
        run: Optional[RunName] = None,
        since: Optional[Moment] = None,
        until: Optional[Moment] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
        parameter: Optional[str] = None,
    ) -> Iterator[Event]:
        """The events that have all that is stated, with all their parameters: those of a run in the order of saving, or
        those of any run and of none in the order of their times."""
        with self._database.state() as state:
            asked = Filter(since, until, instrument, activity, node, event, parameter)
            yield from or_warned(state, asked, _events.events(self._question(state, run, asked)))

    def parameters(
        self,
        run: Optional[RunName] = None,
        since: Optional[Moment] = None,
        until: Optional[Moment] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
        parameter: Optional[str] = None,
    ) -> Iterator[Reading]:
        """Each parameter of such events, or each one of a name, with its event."""
        with self._database.state() as state:
            asked = Filter(since, until, instrument, activity, node, event, parameter)
            yield from or_warned(state, asked, _events.readings(self._question(state, run, asked)))

    def parameter_names(
        self,
        run: Optional[RunName] = None,
        since: Optional[Moment] = None,
        until: Optional[Moment] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
    ) -> List[ParameterName]:
        """Which parameters such events have, and from where to where, as `velora-ts parameters` says."""
        with self._database.state() as state:
            asked = Filter(since, until, instrument, activity, node, event)
            found = _events.parameter_names(self._question(state, run, asked), self._place.units)
            if not found:
                warn_of_unknown(state, asked)
            return found

    def stats(
        self,
        parameter: str,
        by: str = "",
        run: Optional[RunName] = None,
        since: Optional[Moment] = None,
        until: Optional[Moment] = None,
        instrument: Optional[str] = None,
        activity: Optional[str] = None,
        node: Optional[str] = None,
        event: Optional[str] = None,
        against: Optional[Tuple[Moment, Moment]] = None,
    ) -> Statistics:
        """What the numbers of a parameter are like, as `velora-ts stats` counts them: by run, day, month (both local),
        instrument or activity. The drift is counted from the time before `since`, or from the one of `against`."""
        with self._database.state() as state:
            root = None if run is None else _runs.root_named(state, run)
            asked = Filter(since, until, instrument, activity, node, event, parameter)
            found = _statistics.statistics(state, root, asked, by, against, self._place.units.get(parameter, ""))
            if not found.groups and not found.not_counted:
                warn_of_unknown(state, asked)
            return found

    def diff(
        self,
        run: RunName,
        against: Optional[RunName] = None,
        store: Optional["Store"] = None,
        tolerance: Optional[Mapping[str, Union[float, str]]] = None,
        ignore: Sequence[str] = (),
        slower: Optional[float] = None,
    ) -> Comparison:
        """How a run differs from another one, or from the newest finished one like it, as `velora-ts diff` says; that
        program is asked.

        store: the store of the other run. tolerance: by how much numbers may differ, as {"Defocus": 0.1} or
        {"Defocus": "1%"}; the name "" stands for all others. ignore: names of parameters and events to leave out.
        slower: a factor, from which on durations make two runs different.
        """
        with self._database.state() as state:
            first = _runs.root_named(state, run).guid
        second = None
        if against is not None:
            with (store or self)._database.state() as state:
                second = _runs.root_named(state, against).guid
        place_of_against = None if store is None else store._place
        found = compare(self._place, first, second, place_of_against, tolerance or {}, ignore, slower)
        return with_exact_values(found, self._database, (store or self)._database)

    def _question(self, state: State, run: Optional[RunName], asked: Filter) -> Question:
        return Question(state, None if run is None else _runs.root_named(state, run), asked)
