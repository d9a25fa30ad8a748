"""A process that has two copies of SQLite does not read the file into which it records."""

from __future__ import annotations

import os
import sqlite3
import subprocess
from importlib.util import find_spec
from pathlib import Path
from typing import Any, Callable

import pytest

LOCKED = """
    with open("/proc/locks") as locks:
        print(any(f" {os.getpid()} " in line and f":{os.stat('ts.db').st_ino} " in line for line in locks))
"""
SCRIPT = (
    """
import os
with velora_ts.open() as ts:
    ts.event("Image", N=1)
    try:
        print(len(list(velora_ts.Store(".").events())))
    except velora_ts.Error as error:
        print(error)
"""
    + LOCKED
)
BEGUN_BEFORE = (
    """
import os, shutil
shutil.copy("ts.db", "other.db")
begun = velora_ts.Store(".").events()
next(begun)
with velora_ts.open() as ts:
    ts.event("Image", N=1)
    begun.close()
"""
    + LOCKED
    + """
store = velora_ts.Store("other.db")
several = [store.events() for _ in range(3)]
print(*(next(one).name for one in several))
while several:
    several.pop(0).close()
print(len(list(store.events())), len(velora_ts._sqlite._kept))
"""
)


def test_locks_of_a_recording_outlive_a_question(
    folder: Path, script: Callable[..., "subprocess.CompletedProcess[str]"], monkeypatch: Any
) -> None:
    spec = find_spec("_sqlite3")
    maps = Path("/proc/self/maps").read_text().splitlines()
    used = {line.split()[-1] for line in maps if "libsqlite3.so" in line}
    if spec is None or spec.origin is None or not used:
        pytest.skip(f"SQLite {sqlite3.sqlite_version} is a part of this Python")
    done = script(SCRIPT)
    assert done.stdout == "1\nTrue\n", done.stderr

    own = folder / "own"
    own.mkdir()
    for file, name in ((spec.origin, Path(spec.origin).name), (used.pop(), "libsqliteX.so.0")):
        (own / name).write_bytes(Path(file).read_bytes().replace(b"libsqlite3.so.0", b"libsqliteX.so.0"))
    path = os.pathsep.join([str(own), os.environ.get("PYTHONPATH", "")])
    done = script(SCRIPT, PYTHONPATH=path, LD_LIBRARY_PATH=str(own))
    assert "this Python has an SQLite of its own" in done.stdout and done.stdout.endswith("\nTrue\n"), done.stderr
    done = script(BEGUN_BEFORE, PYTHONPATH=path, LD_LIBRARY_PATH=str(own))
    assert done.stdout == "True\nImage Image Image\n2 1\n", done.stderr
