"""Two CSV exports, merged by pandas, name the same differences as velora-ts diff."""
import io
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import pandas

TOOLS = pathlib.Path(os.environ["VELORA_TS"]).parent
FIXED = ["number", "at", "run", "execution", "node", "activity", "event"]
CHANGES = "hole,square,version,dose,configuration"


def tool(folder, *arguments):
    told = subprocess.run([TOOLS / "velora-ts", *arguments, "--config", folder], capture_output=True)
    if told.returncode not in (0, 1):
        sys.exit(told.stderr.decode())
    return told.stdout.decode("utf-8-sig")


def record(folder, *options):
    subprocess.run([TOOLS / "night-run", folder, "--events", "2500", *options], check=False)
    return json.loads(tool(folder, "show", "last", "--json"))["guid"]


def paths_of(folder, run):
    """The path of each execution by its guid: (node, which one of this name) from the root down."""
    paths, seen, above = {}, {}, []
    for execution in json.loads(tool(folder, "show", run, "--tree", "--json"))["executions"]:
        del above[execution["depth"] :]
        name = (*above, execution["node"])
        seen[name] = seen.get(name, 0) + 1
        above.append((execution["node"], seen[name]))
        paths[execution["guid"]] = tuple(above)
    return paths


def values_of(folder, run):
    """A row for each parameter: the path of its execution, its event and which of this name it is, and its value."""
    exported = io.StringIO(tool(folder, "export", run, "--format", "csv"))
    table = pandas.read_csv(exported, keep_default_na=False, dtype=str)
    table["path"] = table["execution"].map(paths_of(folder, run))
    table["n"] = table.groupby(["execution", "event"]).cumcount() + 1
    rows = table.melt(
        ["path", "event", "n"], [name for name in table.columns if name not in [*FIXED, "path", "n"]], "parameter"
    )
    return rows[rows["value"] != ""]


def main():
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "TSAL.config").write_text(
            "<TSAL Instrument='Veldmar 3'><Database Backend='sqlite3' Connection='ts.db'/></TSAL>", encoding="utf-8"
        )
        good = record(folder, "--finish", "--start", "2026-11-24T20:00:00")
        bad = record(folder, "--seed", "2", "--start", "2026-11-25T20:00:00", "--changes", CHANGES)
        merged = values_of(folder, bad).merge(
            values_of(folder, good),
            "outer",
            ["path", "event", "n", "parameter"],
            suffixes=("", "_against"),
            indicator=True,
        )
        told = json.loads(tool(folder, "diff", bad, good, "--json"))["differences"]

    both = merged[merged["_merge"] == "both"]
    numbers = [pandas.to_numeric(both[column], errors="coerce") for column in ("value", "value_against")]
    differs = (numbers[0] != numbers[1]) & (numbers[0].notna() | (both["value"] != both["value_against"]))
    expected = set(both[differs][["path", "event", "n", "parameter"]].itertuples(index=False, name=None))
    found = {
        (tuple((step["node"], step["n"]) for step in one["path"]), one["event"], one["n"], one["parameter"])
        for one in told
        if one["kind"] == "parameter"
    }
    for side, merge in (("run", "left_only"), ("against", "right_only")):
        alone = {
            (
                tuple((step["node"], step["n"]) for step in one.get("path", one.get("against_path"))),
                one.get("event"),
                one.get("n", one.get("against_n")),
            )
            for one in told
            if one.get("only_in") == side and one["kind"] in ("execution", "event")
        }
        rows = merged[merged["_merge"] == merge]
        for path, event, n in set(zip(rows["path"], rows["event"], rows["n"])):
            if not any(
                path[: len(above)] == above and name in (None, event) and number in (None, n)
                for above, name, number in alone
            ):
                sys.exit(f"diff does not say that only {side} has {event} {n} of {path}")
        print(f"{len(alone)} executions or events only in {side}, as pandas finds them in {len(rows)} rows")
    if found != expected or len(expected) < 1000:
        sys.exit(f"diff names {len(found)} cells, pandas {len(expected)}; in one alone: {list(found ^ expected)[:5]}")
    print(f"{len(found)} differing cells, the same ones, of {len(both)} that are in both runs")


main()
