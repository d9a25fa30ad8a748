"""Where a store is: a folder with TSAL.config, a file, or a connection to a server."""

from __future__ import annotations

import os
from pathlib import Path
from typing import Dict, NamedTuple, Union
from xml.etree import ElementTree

from .errors import Error

_LARGEST = 64 << 20  # bytes


class Place(NamedTuple):
    """A store, and the units of parameters that its TSAL.config states."""

    is_server: bool
    where: str
    units: Dict[str, str]


def place_of(where: Union[str, "os.PathLike[str]"]) -> Place:
    """Finds what the given text or path names."""
    try:
        text = os.fspath(where)
        text.encode("utf-8", "surrogateescape")
    except (AttributeError, TypeError, UnicodeEncodeError):
        raise Error(
            f"{where!r}: expected a folder with TSAL.config, the file of a store, or a connection, as a text or a Path"
        ) from None
    if os.path.isdir(text):
        return _read(Path(text, "TSAL.config"))
    if os.path.lexists(text):
        return Place(False, text, {})
    if isinstance(where, str) and ("=" in text or text.startswith(("postgresql://", "postgres://"))):
        return Place(True, text, {})
    raise Error(
        f"there is no TS store '{text}'; expected a folder with TSAL.config, the file of a store, or a connection such "
        "as 'host=records.example dbname=velora'"
    )


def _read(file: Path) -> Place:
    root = _root(file)
    databases = root.findall("Database")
    if root.tag != "TSAL" or len(databases) != 1:
        raise Error(f"{file}: expected the element 'TSAL' with one element 'Database'")
    backend, connection = databases[0].get("Backend", ""), databases[0].get("Connection", "")
    if backend not in ("sqlite3", "postgresql") or not connection:
        raise Error(f'{file}: expected a \'Database\' with Backend="sqlite3" or "postgresql", and a Connection')
    units: Dict[str, str] = {}
    for unit in root.findall("Unit"):
        parameter, text = unit.get("Parameter", ""), unit.get("Text", "")
        if not parameter or not text or parameter in units:
            raise Error(f"{file}: expected one 'Unit' with Parameter and Text for '{parameter}'")
        units[parameter] = text
    where = str(file.parent / connection) if backend == "sqlite3" else connection
    return Place(backend == "postgresql", where, units)


def _root(file: Path) -> ElementTree.Element:
    try:
        with open(file, "rb") as opened:
            content = opened.read(_LARGEST + 1)
        if len(content) > _LARGEST or b"<!DOCTYPE" in content:
            raise Error(f"{file}: expected XML of at most 64 MiB without a DOCTYPE")
        content.decode("utf-8")
        return ElementTree.fromstring(content)
    except OSError as error:
        raise Error(f"{file} cannot be read: {error.strerror}") from None
    except (UnicodeDecodeError, ElementTree.ParseError) as error:
        raise Error(f"{file} is not well-formed XML in UTF-8: {error}") from None
