"""The rows of a question as columns, some rows at once. Only frames use this."""

from __future__ import annotations

from typing import Any, Dict, Iterator, Mapping, Sequence, Tuple

import numpy

from ._events import Question
from ._postgresql import PostgreSqlState

_ROWS = 500  # that are made columns of at once; more are slower, because they leave the caches
_EVENTS = 2000  # whose columns a server sends at once
_LONG = 5_000  # bytes of a text

# What a server makes of a column: the array in binary form, or JSON.
_WHOLE = {
    "i": "array_send(array_agg({0}))",
    "f": "array_send(array_agg(COALESCE({0}, 'NaN')))",
    "s": "json_agg(CASE WHEN octet_length({0}) <= {1} THEN {0} END)",
}
_NUMBERS = {"i": ">i8", "f": ">f8"}
_HEADER = 20  # bytes of an array before its first element


class Chunks:
    """Columns of the events of a question and of their parameters. Types are i for whole numbers, f for numbers, where
    one that is absent is None or NaN, and s for texts, where it is None.

    psycopg takes microseconds for each row. So a server tells the keys of the events first, and then makes one row of
    the columns of many events."""

    def __init__(self, question: Question) -> None:
        self._question = question
        self._state = state = question.state
        if isinstance(state, PostgreSqlState):
            keys = f"SELECT array_send(array_agg(event_id)) FROM ({question.events('v.event_id')}) AS asked"
            self._keys = _array(state.row(keys, question.values)[0], "i")

    def events(self, columns: str, types: str) -> Iterator[Sequence[Any]]:
        """Columns of the events v."""
        if isinstance(self._state, PostgreSqlState):
            return self._from_server(self._state, self._question.of_keys(columns, "events v"), types)
        return self._by_rows(self._question.events(columns), self._question.values)

    def parameters(self, columns: str, types: str, only: bool = False) -> Iterator[Sequence[Any]]:
        """Columns of the parameters p, or only of those of the name that is asked for."""
        if isinstance(self._state, PostgreSqlState):
            return self._from_server(self._state, self._question.of_keys(columns, "parameters p", only), types)
        return self._by_rows(self._question.parameters(columns, only=only), self._question.values)

    def _by_rows(self, question: str, values: Mapping[str, object]) -> Iterator[Sequence[Any]]:
        for chunk in self._state.chunks(question, values, _ROWS):
            yield tuple(zip(*chunk))

    def _from_server(self, state: PostgreSqlState, questions: Tuple[str, str], types: str) -> Iterator[Sequence[Any]]:
        names = [f"column_{place}" for place in range(len(types))]
        columns = ", ".join(_WHOLE[one].format(name, _LONG) for name, one in zip(names, types))
        longest = ", ".join(f"MAX(octet_length({name}))" for name, one in zip(names, types) if one == "s")
        for begin in range(0, len(self._keys), _EVENTS):
            question, keys = _about(questions, self._keys[begin : begin + _EVENTS])
            values = {**self._question.values, **keys}
            whole = f"SELECT GREATEST({longest}), {columns} FROM ({question}) AS asked({', '.join(names)})"
            length, *found = state.row(whole, values)
            if length is not None and length > _LONG:  # together they can be more than a row can hold
                yield from self._by_rows(question, values)
            elif found[0] is not None:
                yield [value if one == "s" else _array(value, one) for value, one in zip(found, types)]


def _about(questions: Tuple[str, str], keys: Any) -> Tuple[str, Dict[str, object]]:
    """The question for these keys, with its values. Where none is missing between them, an index has them in order."""
    of_any, of_range = questions
    if numpy.all(numpy.diff(keys) == 1):
        return of_range, {"first": int(keys[0]), "last": int(keys[-1])}
    return of_any, {"keys": "{" + ",".join(map(str, keys.tolist())) + "}"}


def _array(sent: Any, kind: str) -> Any:
    """The numbers of an array in the binary form of a server, where the length of each is before it."""
    numbers = numpy.frombuffer(sent or bytes(_HEADER), [("length", ">i4"), ("number", _NUMBERS[kind])], offset=_HEADER)
    return numbers["number"].astype(_NUMBERS[kind][1:])
