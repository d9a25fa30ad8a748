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
    """Stored times as datetime64."""
    try:
        return numpy.array(stored, dtype="S26").astype("datetime64[us]")
    except ValueError:  # numpy does not say which one
        return numpy.array([time_of(one).replace(tzinfo=None) for one in stored], dtype="datetime64[us]")


class Places:
    """Finds in which row of a frame an event is."""

    def __init__(self, numbers: Any) -> None:
        self.count = len(numbers)
        self._order = None if numpy.all(numbers[1:] > numbers[:-1]) else numpy.argsort(numbers)
        self._sorted = numbers if self._order is None else numbers[self._order]

    def of(self, numbers: Any) -> Any:
        """The row of each event. Neighbours are mostly parameters of the same one, which is looked for once."""
        begins = numpy.flatnonzero(_differ_from_before(numbers))
        found = numpy.searchsorted(self._sorted, numbers[begins])
        rows = found if self._order is None else self._order[found]
        return numpy.repeat(rows, numpy.diff(begins, append=len(numbers)))


class Parameters:
    """Parameters of events, in the order of reading."""

    COLUMNS = "p.event_id, p.kind || ' ' || p.name, p.value_number, p.value_text"
    TYPES = "isfs"

    def __init__(self) -> None:
        self._words = Codes()  # kinds with names
        self._parts: List[Tuple[Any, ...]] = []
        self._texts: List[str] = []

    def add(
        self, events: Sequence[int], words: Sequence[str], numbers: Sequence[float], texts: Sequence[Optional[str]]
    ) -> None:
        """Adds rows, which are given as columns."""
        values = numpy.array(numbers, dtype=numpy.float64)
        codes = self._words.of(words)
        with_text = numpy.flatnonzero(numpy.isnan(values))  # a number that is stored is never NaN
        found = [texts[place] or "" for place in with_text.tolist()]
        for number, text in enumerate(found):
            if text.startswith(("\\x", "-0.0", "NaN:")):
                place = with_text[number]
                if not words[place].startswith("double ") or text.startswith("\\x"):
                    found[number] = text_of(text)
                else:
                    values[place] = -0.0 if text == "-0.0" else nan_of(text)
        of_text = numpy.full(len(values), -1, dtype=numpy.int32)
        of_text[with_text] = numpy.arange(len(self._texts), len(self._texts) + len(found))
        self._texts += found
        self._parts.append((numpy.array(events, dtype=numpy.int64), codes, values, of_text))

    def finish(self) -> None:
        """Joins what was added."""
        types = (numpy.int64, numpy.int32, numpy.float64, numpy.int32)
        columns = zip(*self._parts) if self._parts else [()] * len(types)
        self.events, self.words, self.numbers, self._of_text = (
            joined(list(column), dtype) for column, dtype in zip(columns, types)
        )
        self._parts.clear()
        self._all_texts = objects(self._texts)
        self._texts.clear()
        kinds, _, names = zip(*(word.partition(" ") for word in self._words)) if self._words else ((), (), ())
        self.kinds_of_words = objects(kinds)
        self._codes_of_words = numpy.array([_KINDS.get(kind, _TEXT) for kind in kinds], dtype=numpy.int8)
        of_name = Codes()
        self.names_of_words = of_name.of([text_of(name) for name in names])
        self.names = objects(of_name)

    def value_column(self, chosen: Any, rows: Any, count: int) -> Any:
        """A column with the values of the chosen parameters in their rows, and nothing in the others. It has the type
        of the values, or that of Python's objects if they have several."""
        kinds = set(self._codes_of_words[numpy.unique(self.words[chosen])].tolist())
        numbers = self.numbers[chosen]
        if kinds == {_INT} and numpy.all(numbers == numpy.trunc(numbers)):
            return _in_rows(numbers.astype(numpy.int64), rows, count, pandas.arrays.IntegerArray)
        if kinds == {_BOOL} and numpy.all((numbers == 0) | (numbers == 1)):
            return _in_rows(numbers == 1, rows, count, pandas.arrays.BooleanArray)
        if kinds <= {_DOUBLE, _INT}:
            column = numpy.full(count, numpy.nan)
            column[rows] = numbers
            return column
        column = numpy.full(count, None, dtype=object)
        column[rows] = self._all_texts[self._of_text[chosen]] if kinds == {_TEXT} else self._values(chosen)
        return column

    def _values(self, chosen: Any) -> Any:
        kinds = self._codes_of_words[self.words[chosen]].tolist()
        numbers, texts = self.numbers[chosen].tolist(), self._of_text[chosen].tolist()
        return objects(
            number if kind == _DOUBLE else self._all_texts[text] if text >= 0 else _whole(kind, number)
            for kind, number, text in zip(kinds, numbers, texts)
        )


def _whole(kind: int, number: float) -> Any:
    return bool(number) if kind == _BOOL else int(number)


def _in_rows(values: Any, rows: Any, count: int, with_absent: Any) -> Any:
    """A column with values in their rows. If there is nothing in others, it has a type that can say so."""
    column = numpy.zeros(count, dtype=values.dtype)
    column[rows] = values
    if len(rows) == count:
        return column
    absent = numpy.ones(count, dtype=bool)
    absent[rows] = False
    return with_absent(column, absent)


def pivot(parameters: Parameters, places: Places, fixed: Iterable[str]) -> Iterator[Tuple[str, Any]]:
    """A column for each name, and for each time that an event has it again, in the order in which they first came."""
    names = parameters.names_of_words[parameters.words]
    if len(parameters.names) <= numpy.iinfo(numpy.int16).max:
        names = names.astype(numpy.int16)  # which are sorted in one go
    order = numpy.argsort(names, kind="stable")
    ends = numpy.cumsum(numpy.bincount(names, minlength=len(parameters.names)))
    rows = places.of(parameters.events)
    columns = []
    for name, chosen in zip(parameters.names, numpy.split(order, ends[:-1])):
        for occurrence, one in enumerate(_by_occurrence(chosen, rows[chosen]), 1):
            columns.append((int(one[0]), name, occurrence, one))
    taken = set(fixed)
    for _, name, occurrence, chosen in sorted(columns, key=lambda column: column[0]):
        yield _unique(taken, name, occurrence), parameters.value_column(chosen, rows[chosen], places.count)


def _by_occurrence(chosen: Any, rows: Any) -> List[Any]:
    """Those that are the first ones in their rows, the second ones and so on."""
    begins = _differ_from_before(rows)
    if numpy.all(begins):
        return [chosen] if len(chosen) else []
    places = numpy.arange(len(rows))
    occurrences = places - numpy.maximum.accumulate(numpy.where(begins, places, 0))
    return [chosen[occurrences == one] for one in range(int(occurrences.max()) + 1)]


def _differ_from_before(values: Any) -> Any:
    differ = numpy.ones(len(values), dtype=bool)
    differ[1:] = values[1:] != values[:-1]
    return differ


def _unique(taken: "set[str]", name: str, occurrence: int) -> str:
    unique = name if occurrence == 1 else f"{name} ({occurrence})"
    while unique in taken:
        occurrence += 1
        unique = f"{name} ({occurrence})"
    taken.add(unique)
    return unique
