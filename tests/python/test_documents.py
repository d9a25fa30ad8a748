"""The Python of the documents runs as it stands, block after block, and prints what the documents show.

A block of ```python is executed with the names of those before it. The bare block after it is what it prints, warnings
too; … stands for what differs from run to run, and alone for any lines. Without such a block it prints nothing. A block
of ```xml becomes activities.xml.
"""

from __future__ import annotations

import contextlib
import io
import os
import re
import subprocess
import sys
from pathlib import Path
from typing import Any

import pytest

ROOT = Path(__file__).resolve().parents[2]
BLOCK = re.compile(r"^```(?P<kind>\w*)\n(?P<text>.*?)^```$", re.MULTILINE | re.DOTALL)


def blocks(page: str) -> list[tuple[str, str, int]]:
    """Kind, text and first line of each block; what a block shows has the kind "shown" if it follows at once."""
    found: list[tuple[str, str, int]] = []
    before = 0
    for match in BLOCK.finditer(page):
        kind = match["kind"]
        if not kind and found and found[-1][0] == "python" and not page[before : match.start()].strip():
            kind = "shown"
        found.append((kind, match["text"], page.count("\n", 0, match.start()) + 2))
        before = match.end()
    return found


def matches(shown: str, printed: str) -> bool:
    """Whether this is printed, apart from blanks at the ends of lines."""
    pattern = re.sub(r"^…\\\n", "(.*\n)*", re.escape(shown), flags=re.MULTILINE).replace("…", ".*")
    return re.fullmatch(pattern, re.sub(" +$", "", printed, flags=re.MULTILINE)) is not None


def run_page(file: Path) -> None:
    names: dict[str, Any] = {"__name__": "__main__"}
    found = blocks(file.read_text("utf-8"))
    for (kind, text, line), after in zip(found, found[1:] + [("", "", 0)]):
        if kind == "xml":
            Path("activities.xml").write_text(text, "utf-8")
        elif kind == "python":
            output = io.StringIO()
            with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
                exec(compile("\n" * (line - 1) + text, str(file), "exec"), names)
            shown = after[1] if after[0] == "shown" else ""
            if not matches(shown, output.getvalue()):
                sys.exit(f"{file.name}, line {line}: shown is\n{shown}\nprinted was\n{output.getvalue()}")


@pytest.mark.parametrize("page", ["README.md", "docs/python.md", "bindings/python/README.md"])
def test_python_of_page_runs_and_prints_what_is_shown(page: str, tmp_path: Path) -> None:
    if ".frames" in (ROOT / page).read_text("utf-8"):
        pytest.importorskip("pandas")
    init = [os.environ["VELORA_TS"], "init", "--instrument", "Veldmar 3", str(tmp_path)]
    subprocess.run(init, check=True, capture_output=True)
    run = subprocess.run([sys.executable, __file__, ROOT / page], cwd=tmp_path, capture_output=True, text=True)
    assert run.returncode == 0, run.stderr


if __name__ == "__main__":
    run_page(Path(sys.argv[1]))
