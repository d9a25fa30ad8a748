"""A folder to record in, and the tool that shows what was recorded there."""

from __future__ import annotations

import json
import os
import subprocess
import sys
from pathlib import Path
from typing import Any, Callable, Dict, List

import pytest

ACTIVITIES = """<Activities>
  <Activity Name="Data acquisition">
    <ActivityVersion Name="TiltSeries" Version="1.0"/>
    <ActivityVersion Name="Section" Version="2.1"/>
  </Activity>
</Activities>
"""


@pytest.fixture
def folder(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> Path:
    """The current directory, with the three files of a host."""
    subprocess.run([os.environ["VELORA_TS"], "init", tmp_path], check=True, capture_output=True)
    (tmp_path / "activities.xml").write_text(ACTIVITIES)
    monkeypatch.chdir(tmp_path)
    return tmp_path


@pytest.fixture
def shown(folder: Path) -> Callable[..., Any]:
    """What the tool shows of a run, with everything below it and all events."""

    def show(run: str = "last") -> Any:
        command = [os.environ["VELORA_TS"], "show", run, "--tree", "--events", "--json"]
        return json.loads(subprocess.run(command, check=True, capture_output=True, cwd=folder).stdout)

    return show


@pytest.fixture
def script(folder: Path) -> Callable[..., "subprocess.CompletedProcess[str]"]:
    """Runs a script in a process of its own."""

    def run(text: str, **environment: str) -> "subprocess.CompletedProcess[str]":
        command: List[str] = [sys.executable, "-c", "import velora_ts\n" + text]
        variables: Dict[str, str] = {**os.environ, **environment}
        return subprocess.run(command, capture_output=True, text=True, env=variables, timeout=60, check=False)

    return run
