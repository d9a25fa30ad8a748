"""The version of a checkout, which stands in CMakeLists.txt. What is installed has it as a constant instead."""

import re
from pathlib import Path

_project = (Path(__file__).resolve().parents[3] / "CMakeLists.txt").read_text(encoding="utf-8")
__version__ = re.findall(r"^project\(.* VERSION ([0-9.]+)", _project, re.MULTILINE)[0]
