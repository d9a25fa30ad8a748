"""Compares velora-ts stats with groupby of pandas on exports: stats.py [FOLDER PARAMETER]

Without arguments, the store is a small one with everything that is hard: texts as numbers, NaN, names twice in an
event, events of no run, and local days of 23 and 25 hours.
"""

import io
import json
import os
import random
import sqlite3
import subprocess
import sys
import tempfile

import numpy
import pandas

ZONE = "Europe/Berlin"
QUANTILES = {"q05": 0.05, "q25": 0.25, "median": 0.5, "q75": 0.75, "q95": 0.95}


def tool(*arguments):
    environment = {**os.environ, "TZ": ZONE}
    command = [os.environ["VELORA_TS"], *arguments]
    return subprocess.run(command, env=environment, check=True, capture_output=True).stdout.decode()


def make_store(folder):
    with open(f"{folder}/TSAL.config", "w", encoding="utf-8") as file:
        file.write("<TSAL><Database Backend='sqlite3' Connection='ts.db'/></TSAL>")
    tool("prepare", "--config", folder)
    chance = random.Random(21)
    store = sqlite3.connect(f"{folder}/ts.db")
    for key in range(1, 4):
        store.execute("INSERT INTO sessions VALUES (?, ?, ?, '', '', '', '', '')", (key, f"s{key}", f"Veldmar {key}"))
    store.execute("INSERT INTO activities VALUES (1, 'a', 'Tomography', '')")
    for key, name in ((1, "TiltSeries"), (2, "Section")):
        store.execute("INSERT INTO activity_versions VALUES (?, ?, 1, ?, '1.0', '')", (key, f"v{key}", name))
    for root in range(1, 101, 5):
        at = pandas.Timestamp("2026-03-20T22:00Z") + pandas.Timedelta(hours=root * 3)
        for key in range(root, root + 5):
            parent = root if key > root else None
            version = chance.choice([1, 2, None])
            row = (key, f"{key:08x}-0000", parent, root, root % 3 + 1, version, f"node {key}", stored(at))
            store.execute("INSERT INTO executions VALUES (?, ?, ?, ?, ?, ?, ?, '', 5, ?)", row)
    for key in range(1, 3001):
        execution = chance.choice([None, *range(1, 101)])
        at = pandas.Timestamp("2026-03-20T22:00Z") + pandas.Timedelta(seconds=chance.randrange(86400 * 240))
        row = (key, chance.randrange(1, 4), execution, "Image", stored(at))
        store.execute("INSERT INTO events VALUES (?, ?, ?, NULL, ?, ?)", row)
        for position in range(1, chance.randrange(1, 4)):
            value = chance.gauss(-2, 0.5) * 10 ** chance.randrange(-3, 4)
            kinds = [
                ("double", None, value),
                ("text", f"{value:.3f}", None),
                ("int", None, round(value)),
                ("double", "NaN:7ff8000000000000", None),
                ("bool", None, 1),
                ("text", "none", None),
                ("double", "-0.0", None),
                ("double", None, 9e999),
            ]
            kind = chance.choices(kinds, [40, 20, 20, 1, 1, 1, 1, 1])[0]
            store.execute("INSERT INTO parameters VALUES (?, ?, 'Defocus', ?, ?, ?)", (key, position, *kind))
    store.commit()
    store.close()


def stored(at):
    return at.strftime("%Y-%m-%dT%H:%M:%S.%fZ")


def read(text, parameter):
    """A row for each finite number of the parameter."""
    table = pandas.read_csv(io.StringIO(text.lstrip("\ufeff")), dtype=str, keep_default_na=False)
    columns = [name for name in table if name == parameter or name.startswith(f"{parameter} (")]
    rows = table.melt([name for name in table if name not in columns], columns, value_name="measured")
    rows["measured"] = pandas.to_numeric(rows["measured"], errors="coerce")
    rows = rows[numpy.isfinite(rows["measured"])].copy()
    rows["local"] = pandas.to_datetime(rows["at"]).dt.tz_convert(ZONE)
    rows["day"] = rows["local"].dt.strftime("%Y-%m-%d")
    rows["month"] = rows["local"].dt.strftime("%Y-%m")
    return rows


def describe(numbers):
    answer = {
        "count": len(numbers),
        "min": numbers.min(),
        "max": numbers.max(),
        "mean": numbers.mean(),
        "deviation": numbers.std(),
    }
    return {**answer, **{name: numbers.quantile(part) for name, part in QUANTILES.items()}}


def expect(what, told, expected):
    for name, value in expected.items():
        given = numpy.nan if told[name] is None else told[name]
        if not numpy.isclose(given, value, rtol=1e-9, atol=1e-9, equal_nan=True):
            sys.exit(f"{what}: {name} is {given!r}; pandas has {value!r}")


def compare(folder, parameter):
    exported = read(tool("export", "--since", "0001-01-01", "--format", "csv", "--config", folder), parameter)
    events = read(tool("events", "--csv", "--config", folder), parameter)
    if len(exported) != len(events):
        sys.exit(f"export has {len(exported)} numbers, events has {len(events)}")
    groups = 0
    for by, rows in {
        "run": exported,
        "day": exported,
        "month": exported,
        "activity": exported,
        "instrument": events,
    }.items():
        told = json.loads(tool("stats", parameter, "--by", by, "--json", "--config", folder))
        keys = {"run": lambda group: group.get("run", ""), "activity": lambda group: group["name"].split(" ")[0]}
        found = {keys.get(by, lambda group: group["name"])(group): group for group in told["groups"]}
        expected = dict(list(rows.groupby(by)["measured"]))
        if found.keys() != expected.keys():
            sys.exit(f"by {by}: the groups are {sorted(found)}; pandas has {sorted(expected)}")
        for name, numbers in expected.items():
            expect(f"by {by}, {name}", found[name], describe(numbers))
        expect(f"by {by}, all", told["all"], describe(rows["measured"]))
        groups += len(found)
    since, until = (exported["local"].quantile(part).floor("D") for part in (0.5, 0.8))
    told = json.loads(
        tool(
            "stats",
            parameter,
            "--by",
            "instrument",
            "--json",
            "--config",
            folder,
            "--since",
            since.isoformat(),
            "--until",
            until.isoformat(),
        )
    )
    within = events[(events["local"] >= since) & (events["local"] < until)].groupby("instrument")["measured"].median()
    earlier = (events["local"] >= since - (until - since)) & (events["local"] < since)
    before = events[earlier].groupby("instrument")["measured"].median()
    for group in told["groups"]:
        drift = within[group["name"]] - before.get(group["name"], numpy.nan)
        expect(f"from {since} to {until}, {group['name']}", group, {"drift": drift})
    print(f"{len(exported)} numbers in {groups} groups are as pandas has them")


if len(sys.argv) == 3:
    compare(sys.argv[1], sys.argv[2])
else:
    with tempfile.TemporaryDirectory() as scratch:
        make_store(scratch)
        compare(scratch, "Defocus")
