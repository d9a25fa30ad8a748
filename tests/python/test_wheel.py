"""The wheel: two builds give the same bytes, and it records and reads in an environment that has nothing else."""

from __future__ import annotations

import os
import subprocess
import sys
from pathlib import Path

import velora_ts

ROOT = Path(__file__).resolve().parents[2]
SCRIPT = ROOT / "tests/python/record_and_read.py"


def made_in(folder: Path, zone: str, umask: int) -> Path:
    environment = {**os.environ, "TZ": zone}
    subprocess.run([ROOT / "scripts/package-python", "--into", folder], env=environment, umask=umask, check=True)
    return folder / f"velora_ts-{velora_ts.__version__}-py3-none-any.whl"


def test_a_wheel_is_reproducible_and_records_and_reads(tmp_path: Path) -> None:
    wheel = made_in(tmp_path / "one", "UTC", 0o022)
    assert wheel.read_bytes() == made_in(tmp_path / "other", "Asia/Tokyo", 0o077).read_bytes()

    subprocess.run([sys.executable, "-m", "venv", "--without-pip", tmp_path / "venv"], check=True)
    python = tmp_path / "venv/bin/python"
    pip = ["/usr/bin/python3", "-m", "pip", "--isolated", "--python", str(python)]  # a second one takes time to unpack
    subprocess.run([*pip, "install", "--quiet", "--no-index", wheel], check=True)
    lab = tmp_path / "lab"
    subprocess.run([os.environ["VELORA_TS"], "init", lab, "--instrument", "Veldmar 3"], check=True)
    said = subprocess.run([python, "-I", SCRIPT], cwd=lab, check=True, capture_output=True, text=True).stdout
    assert said == "Image: Defocus=-1.5 Frames=40 Drift=False File='hole 5.mrc'\n"
