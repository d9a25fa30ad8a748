"""Recordings into a real store, read back with the tool."""

from __future__ import annotations

import asyncio
import dataclasses
import gc
import os
import random
import signal
import sys
import threading
import warnings
from pathlib import Path
from types import FrameType
from typing import Any, Callable, Dict, List, Tuple

import pytest

import velora_ts

Show = Callable[..., Any]


def parameters_of(event: Any) -> Dict[str, Any]:
    """The parameters of an event that the tool shows."""
    return {parameter["name"]: parameter["value"] for parameter in event["parameters"]}


def steps_of(run: Any) -> List[Tuple[int, str, str, str]]:
    """Depth, node, activity and state of each execution of a run."""
    return [(one["depth"], one["node"], one["activity"], one["state"]) for one in run["executions"]]


def events_of(run: Any) -> List[Tuple[str, str, Dict[str, Any]]]:
    """Node, name and parameters of each event of a run."""
    return [(one["node"], one["name"], parameters_of(one)) for one in run["events"]]


def test_a_script_records_what_it_does(shown: Show) -> None:
    with velora_ts.open("instrument.xml") as ts, ts.activity("TiltSeries", node="grid 3") as series:
        for angle in (-3.0, 0.0):
            with series.activity("Section", node=f"{angle:+.1f}°", description="one image") as section:
                section.event("Exposure", {"Dose [e/Å^2]": 2}, TiltAngle=angle, File=Path("µ.mrc"), Converged=True)
        series.event("Note", Text="a\0b")
        assert ts.available and ts.reason == ""
    run = shown(series.guid)
    assert steps_of(run) == [
        (0, "grid 3", "TiltSeries", "finished"),
        (1, "-3.0°", "Section", "finished"),
        (1, "+0.0°", "Section", "finished"),
    ]
    assert [one["description"] for one in run["executions"]] == ["", "one image", "one image"]
    assert events_of(run) == [
        ("-3.0°", "Exposure", {"Dose [e/Å^2]": 2, "TiltAngle": -3.0, "File": "µ.mrc", "Converged": True}),
        ("+0.0°", "Exposure", {"Dose [e/Å^2]": 2, "TiltAngle": 0.0, "File": "µ.mrc", "Converged": True}),
        ("grid 3", "Note", {"Text": r"\x610062"}),  # as the store holds a zero byte
    ]
    assert [one["kind"] for one in run["events"][0]["parameters"]] == ["int", "double", "text", "bool"]


@dataclasses.dataclass(frozen=True)
class StageError(Exception):
    """An exception that lets nobody set its attributes."""

    axis: str

    def __str__(self) -> str:
        return f"the stage did not reach {self.axis}"


class SilentError(Exception):
    """An exception without a text."""

    def __str__(self) -> str:
        raise ValueError("no text")


def test_an_exception_is_recorded_once_where_it_left_the_innermost_activity(shown: Show) -> None:
    error = StageError("+60°")
    with pytest.raises(StageError) as raised, velora_ts.open() as ts:
        with ts.activity("TiltSeries", node="grid") as series:
            with pytest.raises(StageError), series.activity("Section", node="tried"):
                raise error
            with series.activity("Section", node="done"):
                pass
            with series.activity("Section", node="tried again"):
                raise error
    assert raised.value is error
    run = shown(series.guid)
    unfinished = [(node, state) for _, node, _, state in steps_of(run) if state != "finished"]
    assert [node for node, _ in unfinished] == ["grid", "tried", "tried again"]
    assert [(node, name) for node, name, _ in events_of(run)] == [("tried", "Exception"), ("tried again", "Exception")]
    recorded = events_of(run)[0][2]
    assert recorded.pop("Where").startswith(f"{__file__}, line ")
    assert recorded == {"Type": "test_recording.StageError", "Message": "the stage did not reach +60°"}


def test_an_exception_of_this_package_is_said_to_come_from_the_script(shown: Show) -> None:
    with pytest.raises(velora_ts.Error), velora_ts.open() as ts, ts.activity("TiltSeries") as series:
        series.event("Image", Bad=None)  # type: ignore[arg-type]
    where = events_of(shown())[0][2]["Where"]
    assert where.startswith(f"{__file__}, line ")


@pytest.mark.parametrize(
    "error, message",
    [
        (SilentError(), "<str() raised ValueError>"),
        (OSError("\ud800 of µ"), r"\ud800 of µ"),
        (OSError("\udcff"), r"\xff"),  # a byte of a name, as the tool shows it
    ],
)
def test_an_exception_is_recorded_whatever_its_text_is(shown: Show, error: Exception, message: str) -> None:
    with pytest.raises(type(error)), velora_ts.open() as ts, ts.activity("TiltSeries"):
        raise error
    [(_, name, recorded)] = events_of(shown())
    assert (name, recorded["Message"]) == ("Exception", message)
    assert recorded["Type"].endswith(type(error).__name__) and recorded["Where"].startswith(f"{__file__}, line ")


def test_an_exception_that_cannot_be_recorded_is_not_hidden(shown: Show) -> None:
    with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
        sections = [series.activity("Section").__enter__() for _ in range(2)]
    lost = StageError("+60°")
    with pytest.warns(
        RuntimeWarning, match="activity 'Section' was left .* not in the record: the recording is closed"
    ):
        sections[0].__exit__(StageError, lost, None)
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        sections[1].__exit__(StageError, lost, None)
    assert shown(series.guid)["events"] == []


def open_names(**names: Any) -> object:
    """Begins a recording with names that mypy would refuse."""
    return velora_ts.open(**names)


@pytest.mark.parametrize(
    "misuse, words",
    [
        (
            lambda ts, series: ts.activity("Secton").__enter__(),
            "activity 'Secton' is not in .*; did you mean 'Section'",
        ),
        (lambda ts, series: series.activity("x").__enter__(), "expected one of: TiltSeries, Section"),
        (lambda ts, series: ts.activity("Section", node=3).__enter__(), "node of activity 'Section' is of type int"),
        (lambda ts, series: ts.activity("Section").event("Image"), "activity 'Section' has not begun"),
        (lambda ts, series: ts.activity("Section").activity("Section").__enter__(), "'Section' has not begun"),
        (lambda ts, series: series.__enter__(), "activity 'TiltSeries' of node 'grid' was entered before"),
        (lambda ts, series: [series.__exit__(None, None, None), series.event("Image")], "'grid' has ended"),
        (lambda ts, series: [series.__exit__(None, None, None), series.__exit__(None, None, None)], "has ended"),
        (lambda ts, series: [ts.close(), series.event("Image")], "the recording is closed"),
        (lambda ts, series: series.event(b"Image"), "the name of an event is of type bytes; expected a str"),
        (lambda ts, series: series.event("Image", {"Dose": 1}, Dose=1), "'Dose' of event 'Image' is given twice"),
        (
            lambda ts, series: open_names(configuration=b"instrument.xml"),
            "instrument configuration is of type bytes; expected a",
        ),
        (lambda ts, series: open_names(activities=3), "the name of the activities file is of type int; expected a"),
        (lambda ts, series: velora_ts.open("\ud800.xml"), r"surrogates not allowed in '\\ud800.xml'"),
        (lambda ts, series: velora_ts.open("other.xml"), "expected it to be closed before one with 'other.xml' and"),
    ],
)
def test_a_misuse_is_an_error_and_records_nothing(folder: Path, shown: Show, misuse: Any, words: str) -> None:
    (folder / "other.xml").write_text("<other/>")
    with velora_ts.open() as ts:
        series = ts.activity("TiltSeries", "grid").__enter__()
        with pytest.raises(velora_ts.Error, match=words):
            misuse(ts, series)
    run = shown()
    assert len(run["executions"]) == 1 and run["events"] == []


def test_recordings_that_are_open_at_once_do_not_harm_each_other(shown: Show) -> None:
    with velora_ts.open() as one, one.activity("TiltSeries", "one") as first:
        with velora_ts.open() as two, two.activity("TiltSeries", "two") as second:
            first.event("Image", N=1)
            second.event("Image", N=2)
        first.event("Image", N=3)
        with first.activity("Section", "below one"):
            pass
    assert [(node, values) for node, _, values in events_of(shown(first.guid))] == [
        ("one", {"N": 1}),
        ("one", {"N": 3}),
    ]
    assert [(node, values) for node, _, values in events_of(shown(second.guid))] == [("two", {"N": 2})]


def test_the_names_are_those_that_the_process_registered_last(folder: Path) -> None:
    with velora_ts.open() as ts:
        renamed = (folder / "activities.xml").read_text().replace("Section", "Tilt")
        (folder / "activities.xml").write_text(renamed)
        velora_ts.open().close()
        with ts.activity("Tilt"), pytest.raises(velora_ts.Error, match="activity 'Section' is not in"):
            ts.activity("Section").__enter__()


def test_files_are_free_again_once_nobody_records_with_others(folder: Path) -> None:
    (folder / "other.xml").write_text("<other/>")
    with velora_ts.open() as ts, pytest.raises(velora_ts.Error) as held, ts.activity("x"):
        pass
    with velora_ts.open("other.xml"):
        assert held.traceback  # as a notebook keeps it, with all that was in use
    velora_ts.open()  # never closed, but nobody can record with it any more
    gc.collect()
    velora_ts.open("other.xml").close()


def test_recordings_can_end_at_any_moment_while_another_begins(folder: Path) -> None:
    (folder / "other.xml").write_text("<other/>")
    ending = [velora_ts.open() for _ in range(100)]

    def end_one(frame: FrameType, event: str, _argument: Any) -> Any:  # as a thread can between two instructions
        if os.path.basename(frame.f_code.co_filename) not in ("_session.py", "weakref.py", "_weakrefset.py"):
            return None
        if event == "line" and ending:
            ending.pop().close()
        return end_one

    before = sys.gettrace()
    sys.settrace(end_one)
    try:
        begun = velora_ts.open(required=True)
    finally:
        sys.settrace(before)
    for one in [begun, *ending]:
        one.close()
    velora_ts.open("other.xml").close()


def test_events_of_threads_stay_whole(shown: Show) -> None:
    def record(series: velora_ts.Activity, number: int) -> None:
        with series.activity("Section", str(number)) as section:
            for count in range(50):
                section.event("Image", First=number, Count=count, Last=number)

    with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
        threads = [threading.Thread(target=record, args=(series, number)) for number in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    events = [(node, values) for node, _, values in events_of(shown(series.guid))]
    assert sorted(events, key=str) == sorted(
        ((str(n), {"First": n, "Count": c, "Last": n}) for n in range(4) for c in range(50)), key=str
    )


def test_tasks_record_below_the_activity_that_they_were_given(shown: Show) -> None:
    async def record(series: velora_ts.Activity, node: str) -> None:
        with series.activity("Section", node) as section:
            await asyncio.sleep(0)
            with section.activity("Section", "below " + node):
                await asyncio.sleep(0)

    async def record_all(series: velora_ts.Activity) -> None:
        await asyncio.gather(record(series, "a"), record(series, "b"))

    with velora_ts.open() as ts, ts.activity("TiltSeries", "grid") as series:
        asyncio.run(record_all(series))
    nodes = [(depth, node) for depth, node, _, _ in steps_of(shown(series.guid))]
    assert nodes == [(0, "grid"), (1, "a"), (2, "below a"), (1, "b"), (2, "below b")]


def test_an_interrupt_leaves_no_half_event_and_nothing_locked(shown: Show) -> None:
    def interrupt(*_: Any) -> None:
        raise KeyboardInterrupt

    before = signal.signal(signal.SIGALRM, interrupt)
    with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
        for number in range(30):
            with pytest.raises(KeyboardInterrupt):
                signal.setitimer(signal.ITIMER_REAL, random.uniform(0.0005, 0.003))
                while True:
                    series.event("Image", First=number, Last=number)
        signal.signal(signal.SIGALRM, before)
        series.event("Image", First=-1, Last=-1)
    values = [values for _, _, values in events_of(shown(series.guid))]
    assert values[-1] == {"First": -1, "Last": -1}
    assert all(list(one) == ["First", "Last"] and one["First"] == one["Last"] for one in values)
