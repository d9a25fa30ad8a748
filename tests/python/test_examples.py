"""The examples of examples/python."""

from __future__ import annotations

import os
import subprocess
import sys
from collections import Counter
from pathlib import Path
from statistics import median
from typing import Any

import pytest

import velora_ts
from velora_ts.records import RUNNING

EXAMPLES = Path(__file__).resolve().parents[2] / "examples/python"


def run(script: str, *arguments: Any) -> str:
    """What an example prints, without a display and with its log out of the way."""
    environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
    command = [sys.executable, str(EXAMPLES / script), *map(str, arguments)]
    done: subprocess.CompletedProcess[str] = subprocess.run(
        command, env=environment, stdout=subprocess.PIPE, text=True, check=True
    )
    return done.stdout


def recorded(folder: Path) -> list[tuple[Any, ...]]:
    """What is not different from run to run: where each event was, and its parameters."""
    with velora_ts.Store(folder) as store:
        return [(event.path, event.name, event.parameters) for event in store.events("last")]


def test_host_records_a_session_that_its_seed_decides(tmp_path: Path) -> None:
    printed = {
        name: run("record_session.py", tmp_path / name, "--up-to", 12, "--fails", 0.05, "--seed", seed)
        for name, seed in (("one", 3), ("same", 3), ("other", 4))
    }
    assert recorded(tmp_path / "one") == recorded(tmp_path / "same") != recorded(tmp_path / "other")
    with velora_ts.Store(tmp_path / "one") as store:
        series = [one for one in store.tree("last") if one.activity == "TiltSeries"]
        stopped = [one.node for one in series if one.status == RUNNING]
        assert printed["one"].startswith(f"{len(series)} series, {len(stopped)} of them stopped, ")
        assert 0 < len(stopped) < len(series) == 3
        # A stopped series has its reason, in the section in which it stopped. Each other one has all its images.
        assert [event.path[1] for event in store.events("last", event="Exception")] == stopped
        images = Counter(event.path[1] for event in store.events("last", event="Exposure"))
        assert all((images[one.node] == 9) == (one.node not in stopped) for one in series)


def test_script_draws_the_drift_of_the_recorded_session(tmp_path: Path) -> None:
    pytest.importorskip("pandas")
    pytest.importorskip("matplotlib")
    run("record_session.py", tmp_path, "--up-to", 12, "--fails", 0)
    printed = run("plot_drift.py", tmp_path, tmp_path / "drift.png")
    first: dict[tuple[str, ...], tuple[Any, Any]] = {}
    for event in velora_ts.Store(tmp_path).events("last", event="Drift"):
        first.setdefault(event.path, (event.value("TiltAngle"), event.value("Drift")))
    at_rest, tilted = (median(drift for tilt, drift in first.values() if abs(tilt) == angle) for angle in (0, 12))
    assert f"median drift at 0°: {at_rest:.2f} nm/s, at 12°: {tilted:.2f} nm/s" in printed
    assert f"in {len(first)} sections" in printed and len(first) == 27
    assert (tmp_path / "drift.png").read_bytes().startswith(b"\x89PNG")
