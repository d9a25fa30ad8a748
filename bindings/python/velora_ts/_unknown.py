"""Names that are asked for and that no event in the store has. They are probably misspelt, so nothing is an answer that
misleads. But a script can also ask for what never happened: that is no error."""

from __future__ import annotations

import difflib
import warnings
from typing import Iterator, TypeVar

from ._database import State
from ._events import Filter
from ._stored import stored_text, text_of

T = TypeVar("T")

_NAMED = (("event", "events", "is named"), ("parameter", "parameters", "has a parameter named"))
_MOST_NAMES = 3


def warn_of_unknown(state: State, asked: Filter, stacklevel: int = 3) -> None:
    """Warns of names that are nowhere. Reads the names of the whole store, so call it only if nothing was found."""
    for member, table, words in _NAMED:
        name = getattr(asked, member)
        if name is None or state.ask(f"SELECT 1 FROM {table} WHERE name = :name LIMIT 1", {"name": stored_text(name)}):
            continue
        known = [text_of(one) for one, in state.ask(f"SELECT DISTINCT name FROM {table}")]
        nearest = difflib.get_close_matches(name, known, _MOST_NAMES, cutoff=0)
        if nearest:  # else nothing was recorded yet
            expected = ", ".join(f"'{one}'" for one in nearest)
            warnings.warn(f"no event {words} '{name}'; expected a name, such as {expected}", stacklevel=stacklevel)


def or_warned(state: State, asked: Filter, answers: Iterator[T]) -> Iterator[T]:
    """The answers. If there are none, this warns of names that are nowhere."""
    first = next(answers, None)
    if first is None:
        warn_of_unknown(state, asked, stacklevel=4)
    else:
        yield first
        yield from answers
