"""What the start, the log, the forks and the end of a process have to do with recording."""

from __future__ import annotations

import os
import shutil
import subprocess
from pathlib import Path
from typing import Any, Callable

import pytest

import velora_ts

Run = Callable[..., "subprocess.CompletedProcess[str]"]

WITH_A_RUN = """
with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
    series.event("Image", N=1)
"""


def remove(name: str) -> Callable[[Path], object]:
    """Removes a file of the folder."""
    return lambda folder: (folder / name).unlink()


def write(name: str, text: str) -> Callable[[Path], object]:
    """Writes a file of the folder."""
    return lambda folder: (folder / name).write_text(text)


@pytest.mark.parametrize(
    "prepare, environment, reason",
    [
        (remove("TSAL.config"), {}, "lacks TSAL.config"),
        (remove("instrument.xml"), {}, "instrument.xml' cannot be read"),
        (write("TSAL.config", '<TSAL><Database Backend="sqlite3" Connection="."/></TSAL>'), {}, "is a folder"),
        (None, {"TSAL_SERVICE": "absent"}, "TSAL_SERVICE is 'absent'"),
        (None, {"VELORA_TS_LIBRARY": "/nowhere/velora_ts.so"}, "the C library cannot be used: /nowhere/velora_ts.so"),
    ],
)
def test_without_ts_a_script_goes_on(folder: Path, script: Run, prepare: Any, environment: Any, reason: str) -> None:
    if prepare:
        prepare(folder)
    done = script(WITH_A_RUN + "print(ts.available, len(series.guid), ts.reason)", **environment)
    assert done.returncode == 0 and done.stderr.count("nothing is recorded: ") == 1 and reason in done.stderr
    assert done.stdout.startswith("False 0 ") and reason in done.stdout and "velora_ts_available" not in done.stdout
    required = script("try: velora_ts.open(required=True)\nexcept velora_ts.NotAvailable as e: print(e)", **environment)
    assert reason in required.stdout and required.stderr == ""


def test_files_beside_the_component_are_found_as_it_finds_them(folder: Path, script: Run, shown: Any) -> None:
    (folder / "elsewhere").mkdir()
    for library in Path(os.environ["VELORA_TS_LIBRARY"]).parent.glob("*.so*"):
        shutil.copy(library, folder)
    (folder / "link").symlink_to(folder)
    done = script(
        """
import os
os.chdir("elsewhere")
with velora_ts.open(required=True) as ts, ts.activity("TiltSeries"):
    try: ts.activity("TiltSerie").__enter__()
    except velora_ts.Error as error: print(error)
""",
        LD_LIBRARY_PATH=str(folder / "link"),
        VELORA_TS_LIBRARY="",
    )
    assert done.returncode == 0, done.stderr
    assert done.stdout == f"activity 'TiltSerie' is not in '{folder}/activities.xml'; did you mean 'TiltSeries'?\n"
    assert len(shown()["executions"]) == 1


def test_a_script_goes_on_where_no_session_can_begin(script: Run) -> None:
    assert script("velora_ts.open()").returncode == 0
    done = script(
        "import resource\n"
        "resource.setrlimit(resource.RLIMIT_FSIZE, (32768, 32768))  # as a disk that is almost full\n"
        + WITH_A_RUN
        + "print(ts.available, series.guid)\n"
        "try: velora_ts.open(required=True)\nexcept velora_ts.NotAvailable as e: print(e)"
    )
    assert done.returncode == 0 and done.stderr.count("nothing is recorded: velora_ts_create_logging: TS data") == 1
    assert done.stdout.startswith("False \nvelora_ts_create_logging: TS database ")


def test_an_activity_whose_end_cannot_be_recorded_can_be_left_again(script: Run, shown: Any) -> None:
    done = script(
        """
import resource
free = resource.getrlimit(resource.RLIMIT_FSIZE)
with velora_ts.open(required=True) as ts:
    series = ts.activity("TiltSeries")
    try:
        with series:
            resource.setrlimit(resource.RLIMIT_FSIZE, (0, free[1]))  # as a disk that is full
    except velora_ts.Error as error: print(error)
    resource.setrlimit(resource.RLIMIT_FSIZE, free)
    series.__exit__(None, None, None)
    try: series.event("Late")
    except velora_ts.Error as error: print(error)
"""
    )
    assert done.returncode == 0, done.stderr
    failed, late = done.stdout.splitlines()
    assert failed.startswith("velora_ts_update_execution: ") and late.startswith("activity 'TiltSeries' has ended")
    assert shown()["executions"][0]["state"] == "finished"


@pytest.mark.parametrize(
    "file, text, words",
    [
        (
            "activities.xml",
            "<Activities>\n<Activty/></Activities>",
            "activities.xml', line 2: unknown element 'Activty'",
        ),
        ("TSAL.config", "<TSAL>\n\n</TSAL", "TSAL.config', line 3: "),
    ],
)
def test_a_file_that_is_wrong_is_an_error(folder: Path, file: str, text: str, words: str) -> None:
    (folder / file).write_text(text)
    with pytest.raises(velora_ts.Error, match=words) as error:
        velora_ts.open()
    assert not isinstance(error.value, velora_ts.NotAvailable)


ALL_LINES = "import logging; logging.basicConfig(level=logging.DEBUG)\n"
OF_THE_COMPONENT = "logging.getLogger('velora_ts').setLevel(logging.DEBUG)\n"


@pytest.mark.parametrize(
    "before, environment, lines",
    [
        ("", {}, []),
        (ALL_LINES, {}, []),  # in which Ctrl-C would get lost
        (ALL_LINES + OF_THE_COMPONENT, {}, ["DEBUG:velora_ts:<<", "event with name: Image"]),
        (ALL_LINES + OF_THE_COMPONENT, {"VELORA_LOG_FILE": "host.log"}, []),
    ],
)
def test_lines_of_the_log_go_where_a_script_wants_them(
    folder: Path, script: Run, before: str, environment: Any, lines: Any
) -> None:
    done = script(before + WITH_A_RUN, **environment)
    assert done.returncode == 0
    assert all(line in done.stderr for line in lines) if lines else done.stderr == ""
    assert (folder / "host.log").exists() == ("VELORA_LOG_FILE" in environment)


def test_a_handler_of_the_log_cannot_record_in_the_middle_of_a_call(script: Run) -> None:
    done = script(
        """
import logging
class Recorder(logging.Handler):
    def emit(self, record):
        try: series.event("Line")
        except velora_ts.Error as error: print(error)
log = logging.getLogger("velora_ts")
log.setLevel(logging.DEBUG)
with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
    log.addHandler(Recorder())
    series.event("Image")
    log.handlers.clear()
"""
    )
    assert done.returncode == 0 and done.stderr == ""
    assert set(done.stdout.splitlines()) == {
        "a handler of a signal or of the log cannot record while its thread is recording"
    }


def test_a_handler_of_a_signal_never_waits_for_its_own_thread(script: Run, shown: Any) -> None:
    done = script(
        """
import signal, sys
signal.alarm(20)  # ends a process that waits for ever
outcomes = set()
def handler(frame, event, argument):  # comes before each instruction, as a signal can
    frame.f_trace_opcodes = True
    if event == "opcode":
        try: outcomes.add(str(series.event("Signal")))
        except velora_ts.Error as error: outcomes.add(str(error))
    return handler
with velora_ts.open() as ts, ts.activity("TiltSeries") as series:
    sys.settrace(lambda frame, *_: handler(frame, *_) if frame.f_code.co_name == "_alone" else None)
    series.event("Image")
    sys.settrace(None)
print(*sorted(outcomes), sep="\\n")
"""
    )
    assert done.returncode == 0 and done.stderr == ""
    refused = "a handler of a signal or of the log cannot record while its thread is recording"
    assert done.stdout.splitlines() == ["None", refused]
    assert [event["name"] for event in shown()["events"]].count("Image") == 1


FORK = """
import os
def in_child(work):
    if os.fork() == 0:
        try: work()
        except velora_ts.Error as error: print(error, flush=True)
        os._exit(0)
    os.wait()
"""


def test_a_forked_process_is_told_to_record_by_itself(script: Run, shown: Any) -> None:
    done = script(
        FORK
        + """
import threading
recorded = []
def record():
    while len(recorded) < 200:
        series.event("Image", N=1)
        recorded.append(1)
with velora_ts.open() as ts, ts.activity("TiltSeries", "parent") as series:
    thread = threading.Thread(target=record)
    thread.start()
    for _ in range(10):
        in_child(lambda: series.event("Image"))
        in_child(lambda: velora_ts.open())
    thread.join()
"""
    )
    assert done.returncode == 0 and done.stderr == ""
    assert done.stdout.count("a process that was forked has no recording, because its parent's goes on; ") == 20
    assert len(shown()["events"]) == 200 and shown()["executions"][0]["state"] == "finished"


def test_a_process_that_was_forked_before_the_first_recording_records(script: Run, shown: Any) -> None:
    done = script(
        FORK
        + """
try: velora_ts.open("no file", required=True)  # which loads the library
except velora_ts.NotAvailable: pass
def record():
    with velora_ts.open() as ts, ts.activity("TiltSeries", "child") as series:
        series.event("Image")
in_child(record)
"""
        + WITH_A_RUN
    )
    assert done.returncode == 0 and done.stdout == "" and done.stderr == ""
    assert len(shown("child")["events"]) == 1 and len(shown()["events"]) == 1


def test_nothing_is_recorded_while_the_interpreter_ends(script: Run, shown: Any) -> None:
    done = script(
        """
import atexit, logging, threading
logging.getLogger("velora_ts").addHandler(logging.NullHandler())
logging.getLogger("velora_ts").setLevel(logging.DEBUG)
def too_late():
    try: series.event("TooLate")
    except velora_ts.Error as error: print(error)
atexit.register(too_late)
ts = velora_ts.open()
series = ts.activity("TiltSeries").__enter__()
atexit.register(series.event, "Last")
started = threading.Event()
def record_for_ever():
    while True:
        series.event("Image", N=1)
        started.set()
def angles():
    with series.activity("Section", "not left"):
        yield 1
suspended = angles()
next(suspended)
threading.Thread(target=record_for_ever, daemon=True).start()
started.wait()
"""
    )
    assert done.returncode == 0, done.stderr
    assert done.stdout == "nothing is recorded while the interpreter ends\n"
    assert "Last" in [event["name"] for event in shown()["events"]]
