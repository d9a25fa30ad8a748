"""The names that an activities file registers."""

from __future__ import annotations

import difflib
import os
import xml.etree.ElementTree as ElementTree
from typing import List, Optional

from velora_ts.errors import Error


def folder_of_settings(activities: str, folder_of_library: Optional[str]) -> Optional[str]:
    """The folder from which the component takes its files: the current one, or that of the library."""
    for folder in (os.curdir, folder_of_library):
        if folder and all(os.path.exists(os.path.join(folder, name)) for name in ("TSAL.config", activities)):
            return os.path.abspath(folder)
    return None


class ActivityNames:
    """The names of the activity versions of a file."""

    def __init__(self, folder: str, activities: str) -> None:
        self._file = file = os.path.join(folder, activities)
        try:
            root = ElementTree.parse(file).getroot()
        except (OSError, ElementTree.ParseError) as reason:
            raise Error(f"file '{file}' cannot be read: {reason}") from reason
        self._names: List[str] = [version.get("Name", "") for version in root.iter("ActivityVersion")]

    def expect(self, name: str) -> None:
        """Raises an error with the nearest name, or with all, if the name is not among them."""
        if name not in self._names:
            raise Error(f"activity {name!r} is not in '{self._file}'; {self._instead_of(name)}")

    def _instead_of(self, name: str) -> str:
        folded = {known.casefold(): known for known in self._names}
        near = difflib.get_close_matches(name.casefold(), folded, 1)
        if near:
            return f"did you mean {folded[near[0]]!r}?"
        return "expected one of: " + (", ".join(self._names) or "none, as the file has no activity version")
