"""The version of the package is that of the project."""

from __future__ import annotations

import os
import subprocess

import velora_ts


def test_the_version_is_that_of_the_tool() -> None:
    said = subprocess.run([os.environ["VELORA_TS"], "--version"], check=True, capture_output=True, text=True).stdout
    assert velora_ts.__version__ in said.split()
