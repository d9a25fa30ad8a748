"""Columns of numpy, made of rows by chunks. Only frames use this, because only they need numpy and pandas."""

from __future__ import annotations

from typing import Any, Dict, Iterable, Iterator, List, Optional, Sequence, Tuple

import numpy
import pandas

from ._stored import nan_of, text_of, time_of

_DOUBLE, _INT, _BOOL, _TEXT = range(4)
_KINDS = {"double": _DOUBLE, "int": _INT, "bool": _BOOL}  # all others are texts


class Codes(Dict[Any, int]):
    """Numbers for values, from 0 on in the order in which they come."""

    def __missing__(self, value: Any) -> int:
        self[value] = code = len(self)
        return code

    def of(self, values: Sequence[Any]) -> Any:
        """The number of each value."""
        return numpy.fromiter(map(self.__getitem__, values), dtype=numpy.int32, count=len(values))


def objects(values: Iterable[Any]) -> Any:
    """A column of any values."""
    listed = list(values)
    column = numpy.empty(len(listed), dtype=object)
    column[:] = listed
    return column


def joined(parts: List[Any], dtype: Any = numpy.int64) -> Any:
    """One column of several."""
    return numpy.concatenate(parts) if parts else numpy.empty(0, dtype=dtype)


def times_of(stored: Sequence[str]) -> Any:
    """Stored times as datetime64 in nanoseconds; NaT if these cannot hold it."""
    try:
        exact = numpy.array(stored, dtype="S26").astype("datetime64[us]")
    except ValueError:
        exact = numpy.array([time_of(one).replace(tzinfo=None) for one in stored], dtype="datetime64[us]")
    return pandas.to_datetime(exact, errors="coerce").to_numpy(dtype="datetime64[ns]")


class Places:
    """Finds in which row of a frame an event is."""

    def __init__(self, numbers: Any) -> None:
        self.count = len(numbers)
        self._order = None if numpy.all(numbers[1:] > numbers[:-1]) else numpy.argsort(numbers)
        self._sorted = numbers if self._order is None else numbers[self._order]

    def of(self, numbers: Any) -> Any:
        """The row of each event."""
        found = numpy.searchsorted(self._sorted, numbers)
        return found if self._order is None else self._order[found]


class Parameters:
    """Parameters of events, in the order of reading."""

    def __init__(self) -> None:
        self._names, self._kinds = Codes(), Codes()
        self._parts: List[Tuple[Any, ...]] = []

    def add(
        self,
        events: Sequence[int],
        names: Sequence[str],
        kinds: Sequence[str],
        texts: Sequence[Optional[str]],
        numbers: Sequence[Optional[float]],
    ) -> None:
        """Adds rows, which are given as columns."""
        of_kind = self._kinds.of(kinds).astype(numpy.int8)
        values = numpy.array(numbers, dtype=numpy.float64)
        recorded = objects(texts)
        for place in numpy.flatnonzero(numpy.isnan(values)):  # a number that is stored is never NaN
            text = texts[place]
            if text is None or text[:1] not in "\\-N":
                continue
            if kinds[place] == "double" and (text == "-0.0" or text.startswith("NaN:")):
                recorded[place] = None
                values[place] = -0.0 if text == "-0.0" else nan_of(text)
            else:
                recorded[place] = text_of(text)
        self._parts.append((numpy.array(events, dtype=numpy.int64), self._names.of(names), of_kind, values, recorded))

    def finish(self) -> None:
        """Joins what was added."""
        types = (numpy.int64, numpy.int32, numpy.int8, numpy.float64, object)
        columns = zip(*self._parts) if self._parts else [()] * len(types)
        self.events, self.names, kinds, self.numbers, self.texts = (
            joined(list(column), dtype) for column, dtype in zip(columns, types)
        )
        self._parts.clear()
        self.kind_names = objects(self._kinds)
        self.kinds = kinds
        self._kind_codes = numpy.array([_KINDS.get(kind, _TEXT) for kind in self._kinds], dtype=numpy.int8)
        self.name_texts = objects(map(text_of, self._names))

    def value_column(self, chosen: Any, rows: Any, count: int) -> Any:
        """A column with the values of the chosen parameters in their rows, and nothing in the others. It has the type
        of the values, or that of Python's objects if they have several."""
        kinds = {int(self._kind_codes[kind]) for kind in numpy.unique(self.kinds[chosen])}
        numbers = self.numbers[chosen]
        if kinds == {_INT} and numpy.all(numbers == numpy.trunc(numbers)):
            return pandas.arrays.IntegerArray(*_masked(numbers.astype(numpy.int64), rows, count))
        if kinds == {_BOOL} and numpy.all((numbers == 0) | (numbers == 1)):
            return pandas.arrays.BooleanArray(*_masked(numbers == 1, rows, count))
        if kinds <= {_DOUBLE, _INT}:
            column = numpy.full(count, numpy.nan)
            column[rows] = numbers
            return column
        column = numpy.full(count, None, dtype=object)
        column[rows] = self.texts[chosen] if kinds == {_TEXT} else objects(self._values(chosen))
        return column

    def _values(self, chosen: Any) -> Iterator[Any]:
        kinds = self._kind_codes[self.kinds[chosen]]
        for kind, number, text in zip(kinds, self.numbers[chosen].tolist(), self.texts[chosen]):
            if text is not None:
                yield text
            else:
                yield int(number) if kind == _INT else bool(number) if kind == _BOOL else number


def _masked(values: Any, rows: Any, count: int) -> Tuple[Any, Any]:
    """Values in their rows, and where there is none."""
    column = numpy.zeros(count, dtype=values.dtype)
    absent = numpy.ones(count, dtype=bool)
    column[rows] = values
    absent[rows] = False
    return column, absent


def pivot(parameters: Parameters, places: Places, fixed: Iterable[str]) -> Iterator[Tuple[str, Any]]:
    """A column for each name, and for each time that an event has it again, in the order in which they first came."""
    order = numpy.argsort(parameters.names, kind="stable")
    ends = numpy.cumsum(numpy.bincount(parameters.names, minlength=len(parameters.name_texts)))
    rows = places.of(parameters.events)
    columns = []
    for name, chosen in zip(parameters.name_texts, numpy.split(order, ends[:-1])):
        if len(chosen):
            occurrences = _occurrences(rows[chosen])
            for occurrence in range(int(occurrences.max()) + 1):
                one = chosen[occurrences == occurrence]
                columns.append((int(one[0]), name, occurrence + 1, one))
    taken = set(fixed)
    for _, name, occurrence, chosen in sorted(columns, key=lambda column: column[0]):
        yield _unique(taken, name, occurrence), parameters.value_column(chosen, rows[chosen], places.count)


def _occurrences(rows: Any) -> Any:
    """How many neighbours before each one are of the same row."""
    places = numpy.arange(len(rows))
    begins = numpy.ones(len(rows), dtype=bool)
    begins[1:] = rows[1:] != rows[:-1]
    return places - numpy.maximum.accumulate(numpy.where(begins, places, 0))


def _unique(taken: "set[str]", name: str, occurrence: int) -> str:
    unique = name if occurrence == 1 else f"{name} ({occurrence})"
    while unique in taken:
        occurrence += 1
        unique = f"{name} ({occurrence})"
    taken.add(unique)
    return unique
