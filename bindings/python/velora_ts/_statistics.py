"""What the numbers of a parameter are like, counted as `velora-ts stats` counts."""

from __future__ import annotations

import math
from datetime import datetime, timezone
from typing import Callable, Dict, List, Optional, Tuple

from ._database import Row, State, rows
from ._events import Filter, Question
from ._runs import Root
from ._stored import Moment, finite_number_of, stored_time, text_of, time_of
from .errors import Error
from .records import Group, Statistics

_QUANTILES = (0.05, 0.25, 0.5, 0.75, 0.95)
_OF_EXECUTION = "LEFT JOIN executions x ON x.execution_id = v.execution_id "

# For each way to make groups: two columns that tell them apart, and the tables of these.
_WAYS = {
    "": ("'', ''", ""),
    "day": ("'', ''", ""),
    "month": ("'', ''", ""),
    "run": ("r.execution_id, r.started_at", _OF_EXECUTION + "LEFT JOIN executions r ON r.execution_id = x.root_id"),
    "instrument": ("n.instrument, ''", "LEFT JOIN sessions n ON n.session_id = v.session_id"),
    "activity": ("w.name, w.version", _OF_EXECUTION + "LEFT JOIN activity_versions w ON w.version_id = x.version_id"),
}


class _Numbers:
    """The numbers of a group, all of which are kept, so that quantiles are exact."""

    def __init__(self) -> None:
        self.numbers: List[float] = []
        self.first_at, self.last_at = "", ""

    def add(self, number: float, at: str) -> None:
        self.numbers.append(number)
        if not self.first_at or at < self.first_at:
            self.first_at = at
        if at > self.last_at:
            self.last_at = at

    def median(self) -> Optional[float]:
        return _quantile(sorted(self.numbers), 0.5) if self.numbers else None


def statistics(
    state: State, root: Optional[Root], asked: Filter, by: str, against: Optional[Tuple[Moment, Moment]], unit: str
) -> Statistics:
    """Reads the numbers of the parameter that the filter names, and those of the time before."""
    if by not in _WAYS:
        raise Error(f"by '{by}': expected one of {', '.join(filter(None, _WAYS))}, or nothing")
    has_twins = by in ("instrument", "activity")
    period = _period_before(asked, against)
    before, medians = None, {}
    if period:
        earlier = asked._replace(since=period[0], until=period[1])
        found, _ = _groups(state, root, earlier, by if has_twins else "")
        medians = {name: group.median() for name, group in found.items()}
        before = _group("before", None, _all(found), None)._replace(
            first_at=time_of(stored_time(period[0])), last_at=time_of(stored_time(period[1]))
        )
    groups, others = _groups(state, root, asked, by)
    listed = []
    for name in sorted(groups, key=lambda name: name.encode("utf-8", "surrogateescape")):
        compared = medians.get(name) if has_twins else before.median if before else None
        shown, run = _run_of(state, name) if by == "run" else (name, None)
        listed.append(_group(shown, run, groups[name], compared))
    return Statistics(
        parameter=asked.parameter or "",
        unit=unit,
        by=by,
        not_counted=others,
        groups=listed,
        all=_group("all", None, _all(groups), before.median if before else None),
        before=before,
    )


def _period_before(asked: Filter, against: Optional[Tuple[Moment, Moment]]) -> Optional[Tuple[Moment, Moment]]:
    """The time from which drifts are counted: by default one as long as that of the filter, directly before it."""
    if against is not None:
        return against
    if asked.since is None:
        return None
    since = time_of(stored_time(asked.since))
    until = datetime.now(timezone.utc) if asked.until is None else time_of(stored_time(asked.until))
    try:
        return (since - (until - since), since) if until > since else None
    except OverflowError:
        raise Error(f"since {since}: there is not a time before it of the same length; expected `against`") from None


def _groups(state: State, root: Optional[Root], asked: Filter, by: str) -> Tuple[Dict[str, _Numbers], int]:
    """The numbers by the names of their groups, and how many values are no finite numbers."""
    columns, joins = _WAYS[by]
    question = Question(state, root, asked)
    asked_for = question.parameters(
        f"p.kind, p.value_text, p.value_number, v.at, {columns}", joins, only=True, order=False
    )
    name_of = _namer(by)
    groups: Dict[str, _Numbers] = {}
    others = 0
    for row in rows(state.chunks(asked_for, question.values)):
        number = finite_number_of(*row[:3])
        if number is None:
            others += 1
        else:
            name = name_of(row)
            if name not in groups:
                groups[name] = _Numbers()
            groups[name].add(number, row[3])
    return groups, others


def _namer(by: str) -> Callable[[Row], str]:
    if by in ("day", "month"):
        length = len("2026-11-24" if by == "day" else "2026-11")
        return lambda row: time_of(row[3]).astimezone().isoformat()[:length]
    if by == "run":
        return lambda row: f"{row[5] or ''} {row[4] or ''}"
    if by:
        return lambda row: " ".join(text_of(part) for part in row[4:6] if part)
    return lambda row: ""


def _run_of(state: State, name: str) -> Tuple[str, Optional[str]]:
    """The node and the guid of the run whose time and key are the name of a group."""
    key = name.partition(" ")[2]
    found = state.ask(f"SELECT node, guid FROM executions WHERE execution_id = {int(key)}") if key else []
    return (text_of(found[0][0]), found[0][1]) if found else ("", None)


def _all(groups: Dict[str, _Numbers]) -> _Numbers:
    together = _Numbers()
    for group in groups.values():
        together.numbers += group.numbers
    together.first_at = min((group.first_at for group in groups.values()), default="")
    together.last_at = max((group.last_at for group in groups.values()), default="")
    return together


def _group(name: str, run: Optional[str], found: _Numbers, before: Optional[float]) -> Group:
    numbers = sorted(found.numbers)
    if not numbers:
        return Group(name, run, None, None, 0, *([None] * 10))
    q05, q25, median, q75, q95 = (_quantile(numbers, part) for part in _QUANTILES)
    mean, deviation = _mean_and_deviation(numbers)
    return Group(
        name=name,
        run=run,
        first_at=time_of(found.first_at),
        last_at=time_of(found.last_at),
        count=len(numbers),
        min=numbers[0],
        q05=q05,
        q25=q25,
        median=median,
        q75=q75,
        q95=q95,
        max=numbers[-1],
        mean=mean,
        deviation=deviation,
        drift=None if before is None else median - before,
    )


def _quantile(numbers: List[float], part: float) -> float:
    """A quantile of sorted numbers, on the line between two of them."""
    place = part * (len(numbers) - 1)
    below = int(place)
    above = numbers[min(below + 1, len(numbers) - 1)]
    return _between(numbers[below], above, place - below)


def _between(low: float, high: float, share: float) -> float:
    """A number on the line between two, rounded as std::lerp() of C++ rounds it."""
    if low <= 0 <= high:
        return share * high + (1 - share) * low
    return min(low + share * (high - low), high)


def _mean_and_deviation(numbers: List[float]) -> Tuple[float, Optional[float]]:
    """The sums are exact, and of numbers below 1, so that they neither overflow nor lose what is small."""
    _, exponent = math.frexp(max(abs(numbers[0]), abs(numbers[-1])))
    scaled = [math.ldexp(number, -exponent) for number in numbers]
    mean = math.fsum(scaled) / len(scaled)
    if len(scaled) == 1:
        return numbers[0], None
    squares = math.fsum((number - mean) ** 2 for number in scaled)
    return _scaled(mean, exponent), _scaled(math.sqrt(squares / (len(scaled) - 1)), exponent)


def _scaled(number: float, exponent: int) -> float:
    try:
        return math.ldexp(number, exponent)
    except OverflowError:
        return math.inf  # as the sum of two numbers would be
