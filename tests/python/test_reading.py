"""What velora_ts.Store reads is what velora-ts says of the same store: in a file, on a server, and in the store of a
facility, which took in others. The nights have ordinary values, the hostile runs all that is hard to keep."""

from __future__ import annotations

import csv
import gc
import io
import itertools
import json
import math
import multiprocessing
import os
import re
import shutil
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import time
from contextlib import closing
from datetime import date, datetime, timedelta, timezone
from pathlib import Path
from typing import Any, Callable, Dict, Iterable, Iterator, List, Mapping, Optional, Tuple

import pytest

import velora_ts
from velora_ts import _sqlite
from velora_ts._database import CHUNK
from velora_ts._stored import stored_time

ROOT = Path(__file__).resolve().parents[2]
TOOL = os.environ["VELORA_TS"]
NIGHT, HOSTILE = (Path(TOOL).with_name(name) for name in ("night-run", "hostile-run"))
START = "2026-11-24T20:00:00"
EVENTS = 300


def tool(folder: Path, *arguments: str, code: int = 0) -> str:
    """What velora-ts says."""
    done = subprocess.run([TOOL, *arguments, "--config", str(folder)], capture_output=True, check=False)
    assert done.returncode == code, done.stderr.decode()
    return done.stdout.decode("utf-8", "surrogateescape")


def make_folder(folder: Path, backend: str, connection: str) -> Path:
    folder.mkdir()
    (folder / "TSAL.config").write_text(
        f"<TSAL Instrument='Veldmar 3'><Database Backend='{backend}' Connection='{connection}'/>"
        "<Unit Parameter='Defocus' Text='µm'/></TSAL>",
        encoding="utf-8",
    )
    subprocess.run([TOOL, "init", str(folder)], capture_output=True, check=False)  # leaves what is there
    return folder


WORDS_IN_PYTHON = r"""
import velora_ts
with velora_ts.open(required=True) as ts:
    ts.event("Words", at="x", Lines="a\tb\nc\rd\be\x0b\x0c", Escapes="\\n \\t \\", Null="null", Empty="", Quotes='"a"')
    ts.event("Long words", {"\x01" * 3000: "λ" * 6000, "Short": "words", "Number": 1.5})
"""


def record(folder: Path) -> None:
    """The hostile runs, words that JSON escapes and long ones, a night that ends, and one like it that is killed, so
    that its log stays beside the file."""
    subprocess.run([HOSTILE, folder], check=True)
    subprocess.run([NIGHT, folder, "--events", str(EVENTS), "--finish", "--start", START], check=True)
    command = [str(NIGHT), str(folder), "--events", str(EVENTS), "--seed", "2", "--start", "2026-11-25T20:00:00"]
    subprocess.run([sys.executable, "-c", WORDS_IN_PYTHON], cwd=folder, check=True)
    killed = subprocess.run([*command, "--changes", "hole,version,dose,configuration"], check=False)
    assert killed.returncode == -signal.SIGKILL
    tool(folder, "note", "last", "cryo ran dry \u2744", "--kind", "cause")


@pytest.fixture(scope="session")
def server() -> Iterator[str]:
    pytest.importorskip("psycopg")
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o711)  # for the user postgres
        subprocess.run([ROOT / "scripts/postgresql", "start", f"{folder}/s"], check=True)
        yield f"host={folder}/s user=velora dbname=postgres"
        subprocess.run([ROOT / "scripts/postgresql", "stop", f"{folder}/s"], check=True)


@pytest.fixture(scope="session")
def file_folder(tmp_path_factory: pytest.TempPathFactory) -> Path:
    folder = make_folder(tmp_path_factory.mktemp("file") / "store", "sqlite3", "ts.db")
    record(folder)
    return folder


@pytest.fixture(scope="session", params=["file", "server", "facility"])
def folder(request: pytest.FixtureRequest, tmp_path_factory: pytest.TempPathFactory, file_folder: Path) -> Path:
    made = tmp_path_factory.mktemp(request.param) / "store"
    if request.param == "file":
        return file_folder
    if request.param == "server":
        record(make_folder(made, "postgresql", request.getfixturevalue("server")))
        return made
    other = make_folder(tmp_path_factory.mktemp("other") / "store", "sqlite3", "ts.db")
    subprocess.run([NIGHT, other, "--events", "100", "--start", "2026-11-26T01:00:00"], check=False)
    make_folder(made, "sqlite3", "all.db")
    for source in (other, file_folder):
        subprocess.run([TOOL, "copy", source, made], check=True, capture_output=True)
    return made


@pytest.fixture()
def store(folder: Path) -> Iterator[velora_ts.Store]:
    with velora_ts.Store(folder) as opened:
        yield opened


def text(stored: str) -> str:
    if stored.startswith("\\x"):
        return bytes.fromhex(stored[2:]).decode("utf-8", "surrogateescape")
    return stored


def moment(stored: Optional[str]) -> Optional[datetime]:
    return datetime.strptime(stored, "%Y-%m-%dT%H:%M:%S.%f%z") if stored else None


def recorded(parameter: Dict[str, Any]) -> Any:
    """Name, kind and value of a parameter that velora-ts tells; of a double, its bits."""
    kind, value = parameter["kind"], parameter["value"]
    if kind == "double":
        special = (
            {"-0.0": b"\x80" + bytes(7)}.get(value) or bytes.fromhex(value[4:]) if isinstance(value, str) else None
        )
        value = special or struct.pack(">d", value)
    return text(parameter["name"]), kind, text(value) if kind == "text" else value


def exact(parameter: Any) -> Any:
    """The same of a parameter that was read."""
    name, kind, value = parameter
    assert type(value) is {"double": float, "int": int, "bool": bool, "text": str}[kind]
    return name, kind, struct.pack(">d", value) if kind == "double" else value


def members(record: Any, names: Iterable[str]) -> Dict[str, Any]:
    return {name: getattr(record, name) for name in names}


def as_read(told: Dict[str, Any], names: Iterable[str]) -> Dict[str, Any]:
    """The members of an object of velora-ts in the form in which they are read."""
    read = {}
    for name in names:
        value = told[name]
        read[name] = moment(value) if name.endswith("at") else text(value) if isinstance(value, str) else value
    return read


RUN = ("guid", "node", "description", "instrument", "host", "activity", "version", "started_at")
STATUS = ("status", "status_at", "seconds")


def test_a_run_has_every_record_of_its_export(store: velora_ts.Store, folder: Path) -> None:
    for run in store.runs():
        kinds: Dict[str, List[Any]] = {}
        for line in tool(folder, "export", run.guid).splitlines():
            one = json.loads(line)
            kinds.setdefault(one.pop("record"), []).append(one)
        tree = {execution.guid: execution for execution in store.tree(run)}
        assert len(tree) == len(kinds["execution"])
        for one in kinds["execution"]:
            execution = tree[one["guid"]]
            names = "parent node description started_at".split()
            assert members(execution, names) == as_read(one, names) and execution.run == one["root"]
        statuses = store.statuses(run)
        names = "execution code at".split()
        in_order = sorted(kinds["status"], key=lambda one: int(one["number"]))
        assert [members(one, names) for one in statuses] == [as_read(one, names) for one in in_order]
        events = {(one.execution, one.number % 10**10): one for one in store.events(run)}
        assert len(events) == len(kinds.get("event", ()))
        for one in kinds.get("event", ()):
            event = events[(one["execution"], one["number"] % 10**10)]
            assert members(event, ("name", "at")) == as_read(one, ("name", "at"))
            assert list(map(exact, event.parameters)) == list(map(recorded, one["parameters"]))
        names = "author kind text at".split()
        assert [members(one, names) for one in store.notes(run)] == [
            as_read(one, names) for one in kinds.get("note", ())
        ]
        names = "guid saved_at configuration_text vendor_name option_text model_name".split()
        assert [members(one, names) for one in store.configurations(run)] == [
            as_read(one, names) for one in kinds.get("configuration", ()) if one["guid"] in configured(kinds)
        ]


def configured(kinds: Mapping[str, List[Any]]) -> "set[str]":
    return {event["configuration"] for event in kinds.get("event", ())}


@pytest.mark.parametrize(
    "options, asked",
    [
        ([], {}),
        (["--unfinished"], {"unfinished": True}),
        (["--node", "specimen 12"], {"node": "specimen 12"}),
        (["--node", "specimen 12", "--unfinished"], {"node": "specimen 12", "unfinished": True}),
        (["--instrument", "Veldmar 3"], {"instrument": "Veldmar 3"}),
        (["--instrument", "Scope 7"], {"instrument": "Scope 7"}),
        (["--activity", "Session"], {"activity": "Session", "limit": 50}),
        (["--limit", "2"], {"limit": 2}),
        (["--since", f"{START}Z"], {"since": f"{START}Z"}),
        (["--until", f"{START}.000001Z"], {"until": datetime(2026, 11, 24, 20, 0, 0, 1, tzinfo=timezone.utc)}),
        (["--since", "2026-11-25", "--until", "2026-11-26"], {"since": date(2026, 11, 25), "until": "2026-11-26"}),
    ],
    ids=str,
)
def test_runs_are_those_of_velora_ts(store: velora_ts.Store, folder: Path, options: List[str], asked: Any) -> None:
    told = json.loads(tool(folder, "runs", "--json", *options))
    read = store.runs(**asked)
    names = (*RUN, *STATUS, "last_recorded_at")
    assert [members(run, names) for run in read] == [as_read(one, names) for one in told]
    assert [run.finished for run in read] == [not one["unfinished"] for one in told]


def test_a_tree_is_that_of_show(store: velora_ts.Store, folder: Path) -> None:
    names = ("guid", "node", "description", "activity", "version", "started_at", *STATUS, "depth")
    for run in store.runs():
        told = json.loads(tool(folder, "show", run.guid, "--tree", "--json"))["executions"]
        assert [members(one, names) for one in store.tree(run.guid)] == [as_read(one, names) for one in told]


@pytest.mark.parametrize(
    "options, asked",
    [
        ([], {}),
        (
            ["--since", f"{START}Z", "--until", "2026-11-24T20:40Z"],
            {"since": f"{START}Z", "until": "2026-11-24 20:40Z"},
        ),
        (["--activity", "Square", "--name", "Hole done"], {"activity": "Square", "event": "Hole done"}),
        (["--instrument", "Scope 7"], {"instrument": "Scope 7"}),
        (["--where", "FocusScore >= -1e300"], {"parameter": "FocusScore"}),
    ],
    ids=str,
)
def test_events_are_those_of_velora_ts(store: velora_ts.Store, folder: Path, options: List[str], asked: Any) -> None:
    told = json.loads(tool(folder, "events", "--json", *options))
    names = ("number", "at", "name", "execution", "node", "run", "instrument")
    read = list(store.events(**asked))
    assert [members(one, names) for one in read] == [as_read(one, names) for one in told]
    for one, event in zip(told, read):
        assert event.path == tuple(map(text, one["path"]))
        assert list(map(exact, event.parameters)) == list(map(recorded, one["parameters"]))


def test_readings_are_the_parameters_of_the_events(store: velora_ts.Store) -> None:
    step = {"run": "last", "node": "hole 2", "event": "Focused"}
    questions: List[Dict[str, Any]] = [{}, {"run": "last"}, {"parameter": "Defocus"}, step]
    for asked in questions:
        expected = [
            (*event[:9], position, *exact(parameter))
            for event in store.events(asked.get("run"), parameter=asked.get("parameter"))
            for position, parameter in enumerate(event.parameters, 1)
            if parameter.name == asked.get("parameter", parameter.name)
            and event.node == asked.get("node", event.node)
            and event.name == asked.get("event", event.name)
        ]
        read = [(*one[:10], *exact(one[10:])) for one in store.parameters(**asked)]
        assert read == expected and read


def test_names_of_parameters_are_those_of_velora_ts(store: velora_ts.Store, folder: Path) -> None:
    names = ("name", "count", "min", "max", "first_at", "last_at")
    for run in (None, "last"):
        told = json.loads(tool(folder, "parameters", *([run] if run else []), "--json"))
        read = store.parameter_names(run)
        assert [members(one, names) for one in read] == [as_read(one, names) for one in told]
        assert [(one.kinds, one.events) for one in read] == [
            (tuple(one["kinds"]), tuple(map(text, one["events"]))) for one in told
        ]
    assert {one.name: one.unit for one in store.parameter_names("last")}["Defocus"] == "µm"


EXACT = ("name", "count", "min", "q05", "q25", "median", "q75", "q95", "max", "drift")
LATER = ["--since", "2026-11-25T20:00Z", "--until", "2026-11-26T20:00Z"]
NIGHT_1 = ("2026-11-24T20:00Z", "2026-11-24T21:00Z")
AGAINST = {"against": NIGHT_1, "activity": "Session"}


@pytest.mark.parametrize(
    "parameter, by, options, asked",
    [
        *(("Defocus", by, [], {}) for by in ("run", "day", "month", "instrument", "activity")),
        *(("Defocus", by, LATER, {"since": LATER[1], "until": LATER[3]}) for by in ("", "day", "activity")),
        ("Dose", "activity", ["--against", "..".join(NIGHT_1), "--activity", "Session"], AGAINST),
        ("Dose", "run", ["--against", "..".join(NIGHT_1), "--activity", "Session"], AGAINST),
        ("number", "", [], {}),
        ("Position", "instrument", [], {}),
        ("Defocus", "", ["--since", "2027-01-01"], {"since": "2027-01-01"}),
    ],
    ids=str,
)
def test_statistics_are_those_of_velora_ts(
    store: velora_ts.Store, folder: Path, parameter: str, by: str, options: List[str], asked: Any, monkeypatch: Any
) -> None:
    monkeypatch.setenv("TZ", "Asia/Tokyo")  # where the night has two days
    time.tzset()
    said = tool(folder, "stats", parameter, "--json", *(["--by", by] if by else []), *options)
    read = store.stats(parameter, by=by, **asked)
    monkeypatch.undo()
    time.tzset()
    if not said:
        assert read.all.count == read.not_counted == 0
        return
    told = json.loads(said)
    assert (read.not_counted, read.unit) == (told["not_counted"], store.units.get(parameter, ""))
    listed = [*told["groups"], told["all"], *([told["before"]] if told["before"] else [])]
    groups = [*read.groups, read.all, *([read.before] if read.before else [])]
    assert [members(one, EXACT) for one in groups] == [as_read(one, EXACT) for one in listed]
    for one, group in zip(listed, groups):
        assert group.run == one.get("run")
        for name in ("first_at", "last_at"):  # of the time before, velora-ts tells the beginning of a text
            at = getattr(group, name)
            assert (stored_time(at) if at else "").startswith(one[name].rstrip("Z"))
        for name in ("mean", "deviation"):  # velora-ts adds with 80 bits
            value = getattr(group, name)
            assert value == one[name] or math.isclose(value, one[name], rel_tol=1e-14)


WORDS = "3.10 +5 +-5 ++5 -5. .5 -.5E+3 1e3 1e 1e400 -1e400 1e-400 1e-320 -0.0e9 inf -inf nan 0x10 1_0 - +. 1,5".split()


def test_texts_that_are_numbers_count_as_for_velora_ts(file_folder: Path, tmp_path: Path) -> None:
    """Each one is on a day of its own, and the last two on the same one."""
    folder = make_folder(tmp_path / "store", "sqlite3", "ts.db")
    tool(file_folder, "backup", str(folder / "ts.db"))
    with closing(sqlite3.connect(folder / "ts.db")) as sql:
        for number, word in enumerate([*WORDS, "", " 1", "1 ", "\uff11", "\\x31", "-1.7e308", "1.7e308"], 1):
            at = f"2027-01-{min(number, 28):02}T12:00:00.000000Z"
            sql.execute("INSERT INTO events VALUES (?, 1, NULL, NULL, 'Word', ?)", (10**9 + number, at))
            sql.execute("INSERT INTO parameters VALUES (?, 1, 'word', 'text', ?, NULL)", (10**9 + number, word))
        sql.commit()
    told = json.loads(tool(folder, "stats", "word", "--by", "day", "--json"))
    read = velora_ts.Store(folder).stats("word", by="day")
    assert [members(one, EXACT) for one in read.groups] == [as_read(one, EXACT) for one in told["groups"]] != []
    assert (read.groups[-1].deviation, read.not_counted) == (math.inf, told["not_counted"])


def test_differences_are_those_of_velora_ts(store: velora_ts.Store, folder: Path, file_folder: Path) -> None:
    bad, good = (run.guid for run in store.runs(node="specimen 12", until="2026-11-25T20:00:01Z"))
    told = json.loads(
        tool(folder, "diff", bad, good, "--json", "--tolerance", "Defocus=0.1", "--ignore", "FocusScore", code=1)
    )
    read = store.diff(bad, good, tolerance={"Defocus": 0.1}, ignore=["FocusScore"])
    assert len(read.differences) == len(told["differences"]) > 100 and not read.same
    records = {(event.number, one.name): one.value for event in store.events() for one in event.parameters}
    for difference, one in zip(read.differences, told["differences"]):
        for name in ("kind", "only_in", "event", "n", "number", "against_n", "against_number", "parameter_n", "below"):
            assert getattr(difference, name) == one.get(name)
        assert difference.parameter == one.get("parameter")
        if difference.parameter is not None and difference.number is not None:
            assert repr(difference.value) == repr(records.get((difference.number, difference.parameter)))
        assert (difference.value, difference.against) == (one.get("value"), one.get("against"))
        for name in ("path", "against_path"):
            assert [step._asdict() for step in getattr(difference, name) or ()] == one.get(name, [])
        assert (difference.at, difference.by) == (moment(one.get("at")), one.get("difference", one.get("factor")))
    assert [line._asdict() for line in read.configuration] == told["configuration"] != []
    assert (read.summary, read.run, read.against) == (told["summary"], bad, good)
    with velora_ts.Store(file_folder / "ts.db") as other:
        night = other.runs(node="specimen 12", until="2026-11-24T20:00:01Z")[0]
        assert store.diff(good, night, store=other).same
        assert store.diff(bad, store=other).against == night.guid
    assert len(store.frames.diff(bad, good)) > 100


PAIRS: List[Tuple[Any, Any]] = [
    *((math.nan, 1.0), (-0.0, 1.0), (2.0, -0.0), (2, 3), (True, False)),
    *(("NaN:7ff8000000000000", 2.0), ("-0.0", "1.0")),
]
DIFFERENT = f"""
import velora_ts
from math import nan
with velora_ts.open(required=True) as ts:
    for side, name in enumerate(("one", "two")):
        with ts.activity("Session", node=name) as run:
            run.event("Values", {{str(place): pair[side] for place, pair in enumerate({PAIRS})}})
"""


def test_values_of_differences_are_those_of_the_records(tmp_path: Path) -> None:
    folder = make_folder(tmp_path / "store", "sqlite3", "ts.db")
    subprocess.run([sys.executable, "-c", DIFFERENT], cwd=folder, check=True)
    others = make_folder(tmp_path / "others", "sqlite3", "all.db")
    subprocess.run([TOOL, "copy", folder, others], check=True, capture_output=True)
    for other in (None, velora_ts.Store(others)):
        found = velora_ts.Store(folder).diff("one", "two", store=other)
        for side, name in enumerate(("value", "against")):
            assert [repr(getattr(one, name)) for one in found.differences] == [repr(pair[side]) for pair in PAIRS]
        assert found.parting and repr(found.parting.value) == "nan"


def test_runs_are_named_as_for_velora_ts(store: velora_ts.Store, folder: Path) -> None:
    hostile = next(run for run in store.runs() if run.node.startswith("two"))
    names = ["last", hostile.guid, hostile.guid.upper()[:9], hostile.node, "grid \u00B5\u20AC\u00C5 \u96FB"]
    for name in names:
        found = {execution.run for execution in store.tree(name)}
        assert len(found) == 1 and (name != hostile.node or found == {hostile.guid})
    assert store.tree("last")[0].guid == json.loads(tool(folder, "show", "last", "--json"))["guid"]
    for name, words in (
        ("specimen 12", "several runs match 'specimen 12'; name one of them by its guid: "),
        ("step 1", "no run matches 'step 1'; expected a guid, its first characters, \"last\" or a node"),
        ("", "no run matches ''"),
    ):
        with pytest.raises(velora_ts.Error, match=re.escape(words)):
            store.tree(name)


TYPES = {"number": "int64", "at": "datetime64[ns, UTC]", "StageX": "float64", "Images": "Int64", "Accepted": "boolean"}


def test_a_frame_is_the_table_of_an_export(store: velora_ts.Store, folder: Path) -> None:
    pytest.importorskip("pandas")
    run = store.runs(node="specimen 12", until="2026-11-25T20:00:01Z")[0].guid
    night = {"since": START + "Z", "until": "2026-11-25T12:00Z"}
    for asked, command in (
        ({"run": run}, ["export", run, "--format", "csv"]),
        (night, ["events", "--csv", "--since", night["since"], "--until", night["until"]]),
    ):
        frame = store.frames.events(**asked)
        head, *lines = csv.reader(io.StringIO(tool(folder, *command).lstrip("\ufeff")))
        own = ["instrument", "path"] if "run" in asked else []
        assert [name for name in frame if name not in own] == head
        assert len(frame) == len(lines) > EVENTS / 2
        for name, column in zip(head, zip(*lines)):
            assert [cell_of(value) for value in frame[name]] == [
                as_cell(cell, frame[name].dtype) for cell in column
            ], name
    assert {name: str(frame[name].dtype) for name in TYPES} == TYPES
    assert frame.attrs["units"] == {"Defocus": "µm"}
    everywhere = {name: str(store.frames.events(run, parameter=name)[name].dtype) for name in ("Images", "Accepted")}
    assert everywhere == {"Images": "int64", "Accepted": "bool"}  # types that all of pandas 1.5 takes


def cell_of(value: Any) -> Any:
    """What stands for a value in a frame; None for none."""
    import pandas

    if value is pandas.NaT or value is pandas.NA or value is None or value != value:
        return None
    return value.strftime("%Y-%m-%dT%H:%M:%S.%fZ") if isinstance(value, datetime) else value


def as_cell(cell: str, kind: Any) -> Any:
    if cell == "":
        return None
    kinds: Dict[str, Any] = {"float64": float, "int64": int, "Int64": int, "boolean": lambda word: word == "true"}
    return kinds.get(str(kind), lambda word: word[1:] if word[0] == "'" else word)(cell)


def test_a_frame_has_every_bit_of_the_records(store: velora_ts.Store, monkeypatch: pytest.MonkeyPatch) -> None:
    """Each value is in the column of its name, or of the name with the number of times that the event has it."""
    pytest.importorskip("pandas")
    monkeypatch.setattr("velora_ts._chunks._EVENTS", 3)  # so that a server sends several times
    frame = store.frames.events()
    fixed = list(frame)[:9]
    events = list(store.events())
    assert frame["number"].tolist() == [event.number for event in events]
    for event, (_, row) in zip(events, frame.iterrows()):
        assert (row["run"], row["execution"], row["node"], row["activity"]) == event[2:6]
        assert (row["event"], row["path"]) == (event.name, " > ".join(event.path))
        left = {name: row[name] for name in frame if name not in fixed and cell_of(row[name]) is not None}
        met: Dict[str, int] = {}
        for name, kind, value in event.parameters:
            met[name] = met.get(name, 0) + 1
            column = name if met[name] == 1 and name not in fixed else f"{name} ({met[name] + (name in fixed)})"
            if value == value:
                found = left.pop(column)  # whole numbers are among doubles, if the column has both
                whole = kind == "int" and str(frame[column].dtype) == "float64"
                assert exact((name, kind, int(found) if whole else found)) == exact((name, kind, value))
        assert not left
    readings = store.frames.parameters()
    assert list(map(exact, zip(readings["parameter"], readings["kind"], readings["value"]))) == [
        exact(one[10:]) for one in store.parameters()
    ]
    assert str(store.frames.parameters("last", parameter="Defocus")["value"].dtype) == "float64"


def test_records_become_frames(store: velora_ts.Store) -> None:
    pytest.importorskip("pandas")
    answers: List[Tuple[Any, List[Any]]] = [
        (store.frames.runs(), list(store.runs())),
        (store.frames.tree("last"), list(store.tree("last"))),
        (store.frames.statuses("last"), list(store.statuses("last"))),
        (store.frames.stats("Defocus", by="activity"), list(store.stats("Defocus", by="activity").groups)),
    ]
    for frame, listed in answers:
        assert list(frame) == list(listed[0]._fields)
        for record, (_, row) in zip(listed, frame.iterrows()):
            assert [None if cell_of(value) is None else value for value in row] == list(record)
    assert [str(kind) for kind in store.frames.tree("last").dtypes][9:] == [
        *("datetime64[ns, UTC]", "Int64", "datetime64[ns, UTC]", "float64")
    ]
    assert len(store.frames.events(until="2000-01-01")) == len(store.frames.runs(node="none")) == 0


def test_questions_about_a_run_read_no_whole_table(file_folder: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    asked: List[Any] = []
    chunks = _sqlite.SqliteState.chunks

    def listen(self: Any, question: str, values: Any = None, size: int = 1) -> Any:
        asked.append((question, dict(values or {})))
        return chunks(self, question, values, size)

    monkeypatch.setattr(_sqlite.SqliteState, "chunks", listen)
    with velora_ts.Store(file_folder) as store:
        for run in ("last", "specimen 13", "3f"):
            try:
                store.tree(run)
            except velora_ts.Error:
                pass
        since: Dict[str, Any] = {"since": "2026-11-24", "until": "2026-11-25"}
        answers: List[Any] = [store.statuses, store.notes, store.configurations, store.parameter_names]
        for answer in (*answers, store.frames.events):
            answer("last")
        filters: Dict[str, Any]
        of_step = {"run": "last", "node": "hole 2", "parameter": "Dose"}
        for filters in (of_step, {"run": "last", **since}, {**since, "activity": "Session"}):
            list(store.events(**filters))
            list(store.parameters(**filters))
        store.stats("Dose", by="run", **since)
        store.runs(node="specimen 12", unfinished=True)
        store.runs(instrument="Veldmar 3")
        store.runs(unfinished=True)
    with closing(sqlite3.connect(file_folder / "ts.db")) as sql:
        for question, values in asked:
            plan = [row[3] for row in sql.execute("EXPLAIN QUERY PLAN " + question, values)]
            small = r"SCAN (running|ts_schema|stores|s|sqlite_master|sessions|up|CONSTANT ROW|\(subquery-\d+\))\b"
            scans = [step for step in plan if step.startswith("SCAN") and not re.match(small, step)]
            assert not scans, (question, plan)
            assert "root" not in values or not any("events_by_time" in step for step in plan), (question, plan)
    assert len(asked) > 30


def test_reading_leaves_no_trace_and_sees_each_state(tmp_path: Path) -> None:
    folder = make_folder(tmp_path / "store", "sqlite3", "ts.db")
    subprocess.run([HOSTILE, folder], check=True)
    before = sorted((file.name, file.stat().st_mtime_ns) for file in folder.iterdir())
    store = velora_ts.Store(folder / "ts.db")
    assert len(list(store.events())) == 6
    events = store.events()
    next(events)
    assert sorted((file.name, file.stat().st_mtime_ns) for file in folder.iterdir()) == before
    subprocess.run([HOSTILE, folder], check=True)  # while the iterator stands on the first event
    with pytest.raises(velora_ts.Error, match="a host began to write to it while it was read"):
        list(events)
    assert len(list(store.events())) == 12
    begun = store.events()
    next(begun)
    del begun
    gc.collect()
    assert not [link for link in Path("/proc/self/fd").iterdir() if str(folder) in os.path.realpath(link)]


def test_rows_of_two_states_are_never_mixed(file_folder: Path, tmp_path: Path) -> None:
    """An iterator that nobody reads to its end, too, gives no row that it read after a host began to write."""
    folder = make_folder(tmp_path / "store", "sqlite3", "ts.db")
    tool(file_folder, "backup", str(folder / "ts.db"))
    read = velora_ts.Store(folder).parameters()
    first = [next(read) for _ in range(100)]
    subprocess.run([HOSTILE, folder], check=True)
    with pytest.raises(velora_ts.Error, match="a host began to write to it while it was read"):
        first += itertools.islice(read, CHUNK)
    assert len(first) == CHUNK
    read = velora_ts.Store(folder).parameters()
    next(read)
    (folder / "ts.db").rename(folder / "put aside")
    with pytest.raises(velora_ts.Error, match="is not there any more: No such file"):
        list(read)


def test_a_forked_process_disturbs_no_question_of_its_parent(store: velora_ts.Store) -> None:
    numbers = [event.number for event in store.events()]
    list(zip(store.events(), store.events(), store.events()))  # three connections, one of which stays idle
    begun = store.events()
    dropped: Any = store.events()
    first = next(begun), next(dropped)

    def read() -> None:
        dropped.close()
        assert [event.number for event in store.events()] == numbers
        with pytest.raises(velora_ts.Error, match="this iterator was begun in another process"):
            list(begun)
        store.close()

    children = [multiprocessing.get_context("fork").Process(target=read, daemon=True) for _ in range(3)]
    for child in children:
        child.start()
    for child in children:
        child.join(60)
    assert [child.exitcode for child in children] == [0, 0, 0]
    for one, rest in zip(first, (begun, dropped)):
        assert [one.number, *(event.number for event in rest)] == numbers
    assert store.runs()


def test_what_cannot_be_read_says_why(tmp_path: Path) -> None:
    folder = make_folder(tmp_path / "store", "sqlite3", "ts.db")
    file = folder / "ts.db"
    with pytest.raises(velora_ts.Error, match="there is no TS store .*the first host that records makes it"):
        velora_ts.Store(folder)
    subprocess.run([HOSTILE, folder], check=True)
    (tmp_path / "words").write_text("no database at all, but some words")
    (tmp_path / "empty").touch()
    (tmp_path / "broken").mkdir()
    (tmp_path / "broken" / "TSAL.config").write_text("<TSAL><Database Backend='ledger' Connection='x'/></TSAL>")
    shutil.copy(file, tmp_path / "linked")
    os.link(tmp_path / "linked", tmp_path / "link")
    for version in (4, -4):
        with closing(sqlite3.connect(shutil.copy(file, tmp_path / f"version {version}"))) as sql:
            sql.execute("INSERT INTO ts_schema VALUES (?, '')", (version,))
            sql.commit()
    for where, words in (
        ("words", "cannot be read: file is not a database"),
        ("empty", "is not a TS store; expected a database with the tables of a TS store"),
        (
            "nothing",
            "there is no TS store '.*'; expected a folder with TSAL.config, the file of a store, or a connection",
        ),
        (".", "TSAL.config cannot be read"),
        ("broken", "expected a 'Database' with Backend"),
        ("linked", r"has 2 names \(hard links\)"),
        ("version 4", "has a schema of version 4; this package reads versions 1 to 3"),
    ):
        with pytest.raises(velora_ts.Error, match=words):
            velora_ts.Store(tmp_path / where)
    assert len(velora_ts.Store(tmp_path / "version -4").runs()) == 3  # which only adds
    for where in ("postgresql://velora:pass/word@records.example/velora", "host=x secret", "dbname=x port=pass"):
        with pytest.raises(velora_ts.Error, match="does not understand this connection") as refused:
            velora_ts.Store(where)
        assert "pass" not in str(refused.value) and "secret" not in str(refused.value)
    with pytest.raises(velora_ts.Error, match="^TS database 'x on /nowhere' cannot be reached: "):
        velora_ts.Store("host=/nowhere dbname=x password=secret")
    for asked in ({"since": "yesterday"}, {"until": "2026-02-30"}):
        with pytest.raises(velora_ts.Error, match="expected a time that exists"):
            velora_ts.Store(file).runs(**asked)  # type: ignore[arg-type]


EAST = timezone(timedelta(hours=9))
WRONG_QUESTIONS: List[Tuple[Callable[[Any], Any], str]] = [
    (lambda store: store.runs(limit=-1), "limit -1: expected a whole number from 0 on"),
    (lambda store: store.runs(limit="2"), "limit '2': expected a whole number from 0 on"),
    (lambda store: store.runs(since=5), "time 5: expected a time"),
    (
        lambda store: list(store.events(until=datetime.min.replace(tzinfo=EAST))),
        r"time .*\(1, 1, 1, .*: expected a time",
    ),
    (lambda store: store.stats("Dose", since="0001-01-02Z"), "a time before it of the same length; expected `against`"),
    (lambda store: store.tree(None), "run None: expected a guid"),
    (lambda store: store.tree(5), "run 5: expected a guid"),
    (lambda store: store.notes("\ud800"), r"'\\ud800': expected a text that UTF-8 can hold"),
    (lambda store: list(store.events(event="\ud800")), r"'\\ud800': expected a text that UTF-8 can hold"),
    (lambda store: list(store.parameters(node=b"hole 2")), "b'hole 2': expected a text"),
    (lambda store: store.diff("last", "last", ignore=["a\0"]), "velora-ts takes no such argument: .*null byte"),
    (lambda store: store.diff("last", "last", ignore=[5]), "velora-ts takes no such argument: "),
    (lambda store: store.diff("last", "last", ignore="File"), r"ignore 'File': expected several names, as \['File'\]"),
    (lambda store: velora_ts.Store(b"ts.db"), "b'ts.db': expected a folder"),  # type: ignore[arg-type]
    (lambda store: velora_ts.Store(None), "None: expected a folder"),  # type: ignore[arg-type]
    (lambda store: velora_ts.Store("host=\ud800"), r"'host=\\ud800': expected a folder"),
]


def test_a_wrong_question_is_an_error_in_words(store: velora_ts.Store) -> None:
    for ask, words in WRONG_QUESTIONS:
        with pytest.raises(velora_ts.Error, match=words):
            ask(store)


def test_what_is_not_installed_is_named(file_folder: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    store = velora_ts.Store(file_folder)
    missing: Any = None
    for module in ("psycopg", "pandas", "velora_ts._frames"):
        monkeypatch.setitem(sys.modules, module, missing)
    monkeypatch.delitem(sys.modules, "velora_ts._frames")
    monkeypatch.setenv("VELORA_TS", "/nowhere/velora-ts")
    with pytest.raises(
        velora_ts.Error, match="needs psycopg 3, which is not installed; expected the package python3-psy"
    ):
        velora_ts.Store("host=records.example")
    with pytest.raises(velora_ts.Error, match="frames need pandas.*expected the package python3-pandas"):
        store.frames.runs()
    with pytest.raises(
        velora_ts.Error, match="the program '/nowhere/velora-ts', which cannot be started: No such file"
    ):
        store.diff("last")


def test_stores_of_earlier_versions_are_read(tmp_path: Path) -> None:
    for version in (1, 2):
        scripts = [ROOT / f"tests/local-ts/version-{number}.sql" for number in range(1, version + 1)]
        with closing(sqlite3.connect(tmp_path / f"{version}.db")) as sql:
            for script in scripts:
                sql.executescript(script.read_text("utf-8"))
        folder = make_folder(tmp_path / str(version), "sqlite3", f"../{version}.db")
        store = velora_ts.Store(folder)
        told = json.loads(tool(folder, "runs", "--json"))
        assert [run.guid for run in store.runs()] == [one["guid"] for one in told] and told
        assert store.tree("last") and not store.notes("last")
        assert len(list(store.events())) == len(json.loads(tool(folder, "events", "--json"))) > 0


def test_a_standby_and_a_server_that_was_restarted_are_read(server: str) -> None:
    primary = re.sub("host=([^ ]*).*", r"\1", server)
    standby = Path(primary).parent / "standby"
    with velora_ts.Store(server) as store:
        runs = store.runs()
        list(zip(store.events(), store.events()))  # two connections, which stay open
        subprocess.run([ROOT / "scripts/postgresql", "crash", primary], check=True)
        subprocess.run([ROOT / "scripts/postgresql", "resume", primary], check=True)
        assert store.runs() == runs
    subprocess.run([ROOT / "scripts/postgresql", "standby", standby, primary], check=True)
    try:
        with velora_ts.Store(server.replace(primary, str(standby))) as store:
            assert store.runs() == runs
    finally:
        subprocess.run([ROOT / "scripts/postgresql", "stop", standby], check=True)
