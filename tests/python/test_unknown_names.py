"""A name that is nowhere in the store is probably misspelt: the answer is empty, and a warning says so."""

from __future__ import annotations

from pathlib import Path
from typing import Any, Callable

import pytest

import velora_ts
from velora_ts import Store

pytest.importorskip("pandas")


@pytest.fixture
def store(folder: Path) -> Store:
    with velora_ts.open() as ts, ts.activity("TiltSeries", node="grid 3") as series:
        series.event("Exposure", Dose=3.0, Defocus=-1.5)
        series.event("Focus", Defocus=-1.5)
    return Store(folder)


DOZE = "no event has a parameter named 'Doze'; expected a name, such as 'Dose', "
EXPOSRE = "no event is named 'Exposre'; expected a name, such as 'Exposure', "


@pytest.mark.parametrize(
    "ask, words",
    [
        (lambda store: list(store.events(event="Exposre")), EXPOSRE),
        (lambda store: list(store.events("last", parameter="Doze")), DOZE),
        (lambda store: list(store.parameters(parameter="Doze")), DOZE),
        (lambda store: store.parameter_names(event="Exposre"), EXPOSRE),
        (lambda store: store.stats("Doze").groups, DOZE),
        (lambda store: store.frames.events(event="Exposre"), EXPOSRE),
        (lambda store: store.frames.parameters(parameter="Doze"), DOZE),
        # What is known, but not among what is asked for, is no mistake.
        (lambda store: list(store.events(event="Focus", parameter="Dose")), None),
        (lambda store: store.frames.events(event="Exposure", until="2000-01-01"), None),
        (lambda store: list(store.events(node="grid 4")), None),
    ],
)
@pytest.mark.filterwarnings("error:no event")
def test_only_a_name_that_is_nowhere_is_a_warning(store: Store, ask: Callable[[Store], Any], words: Any) -> None:
    if words is None:
        assert len(ask(store)) == 0
        return
    with pytest.warns(UserWarning, match=words) as caught:
        assert len(ask(store)) == 0
    assert [one.filename for one in caught] == [__file__]  # where the script asks
