"""How two runs differ. The program velora-ts is asked: which executions and events belong together is decided by the
alignment that it has, and a second one here would in time say something else about the same two runs."""

from __future__ import annotations

import json
import os
import subprocess
import tempfile
from contextlib import contextmanager
from pathlib import Path
from typing import Any, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Union
from xml.sax.saxutils import quoteattr

from ._database import Database
from ._settings import Place
from ._stored import Value, text_of, time_of, value_of
from .errors import Error
from .records import Comparison, Difference, Line, Step

_PROGRAM = "VELORA_TS"  # the environment variable with its file
_ASKED_AT_ONCE = 500


def compare(
    place: Place,
    run: str,
    against: Optional[str],
    place_of_against: Optional[Place],
    tolerance: Mapping[str, Union[float, str]],
    ignore: Sequence[str],
    slower: Optional[float],
) -> Comparison:
    """Compares two runs that are named by their guids."""
    if isinstance(ignore, str):
        raise Error(f"ignore {ignore!r}: expected several names, as [{ignore!r}]")
    with _settings_of(place) as folder, _settings_of(place_of_against or place) as other:
        arguments = ["diff", run, *([against] if against else []), "--json", "--config", folder]
        arguments += ["--with", other] if place_of_against else []
        for name, amount in tolerance.items():
            arguments += ["--tolerance", f"{name}={amount}" if name else str(amount)]
        for name in ignore:
            arguments += ["--ignore", name]
        arguments += ["--slower", str(slower)] if slower is not None else []
        told = _ask(arguments)
    return Comparison(
        run=told["run"]["guid"],
        against=told["against"]["guid"],
        same=told["same"],
        differences=[_difference(one) for one in told["differences"]],
        configuration=[Line(one["only_in"], one["line"], text_of(one["text"])) for one in told["configuration"]],
        summary=[{key: _text(value) for key, value in one.items()} for one in told["summary"]],
        parting=_difference(told["parting"]) if told["parting"] else None,
    )


def with_exact_values(comparison: Comparison, database: Database, of_against: Database) -> Comparison:
    """The comparison with the values as the stores have them. The program tells no kinds: a whole double and an int are
    the same to it, and so are a NaN and the text that stands for it."""
    listed = [*comparison.differences, *([comparison.parting] if comparison.parting else [])]
    values = _values(database, {one.number for one in listed if one.parameter is not None})
    others = _values(of_against, {one.against_number for one in listed if one.parameter is not None})

    def exact(one: Difference) -> Difference:
        value = values.get((one.number, one.parameter, one.parameter_n), one.value)
        against = others.get((one.against_number, one.parameter, one.parameter_n), one.against)
        return one._replace(value=value, against=against)

    return comparison._replace(
        differences=list(map(exact, comparison.differences)), parting=comparison.parting and exact(comparison.parting)
    )


def _values(database: Database, numbers: "set[Optional[int]]") -> Dict[Tuple[object, object, object], Value]:
    """The values of the parameters of events, by number, name and which of this name it is."""
    found: Dict[Tuple[object, object, object], Value] = {}
    met: Dict[Tuple[int, str], int] = {}
    keys = sorted(number for number in numbers if number is not None)
    with database.state() as state:
        for begin in range(0, len(keys), _ASKED_AT_ONCE):
            batch = ", ".join(map(str, keys[begin : begin + _ASKED_AT_ONCE]))
            for number, name, kind, text, value in state.ask(
                "SELECT event_id, name, kind, value_text, value_number FROM parameters WHERE event_id IN "
                f"({batch}) ORDER BY event_id, position"
            ):
                met[number, name] = met.get((number, name), 0) + 1
                found[number, text_of(name), met[number, name]] = value_of(kind, text, value)
    return found


def _ask(arguments: Sequence[str]) -> Dict[str, Any]:
    program = os.environ.get(_PROGRAM) or "velora-ts"
    try:
        done = subprocess.run([program, *arguments], stdin=subprocess.DEVNULL, capture_output=True, check=False)
    except OSError as error:
        raise Error(
            f"runs are compared by the program '{program}', which cannot be started: {error.strerror}; expected the "
            f"package velora-ts, or the file of the program in the environment variable {_PROGRAM}"
        ) from None
    except (TypeError, ValueError) as error:
        raise Error(f"velora-ts takes no such argument: {error}") from None
    if done.returncode not in (0, 1) or not done.stdout:
        raise Error(done.stderr.decode("utf-8", "replace").strip())
    told: Dict[str, Any] = json.loads(done.stdout.decode("utf-8", "surrogateescape"))
    return told


@contextmanager
def _settings_of(place: Place) -> Iterator[str]:
    """A folder whose TSAL.config names the store, which only this user can read."""
    with tempfile.TemporaryDirectory(prefix="velora-ts-") as folder:
        backend = "postgresql" if place.is_server else "sqlite3"
        where = place.where if place.is_server else os.path.abspath(place.where)
        text = f'<TSAL><Database Backend="{backend}" Connection={quoteattr(where)}/></TSAL>'
        Path(folder, "TSAL.config").write_bytes(text.encode("utf-8", "surrogateescape"))
        yield folder


def _text(value: Any) -> Any:
    return text_of(value) if isinstance(value, str) else value


def _path(steps: Optional[List[Dict[str, Any]]]) -> "tuple[Step, ...] | None":
    if steps is None:
        return None
    return tuple(Step(text_of(step["activity"]), text_of(step["node"]), step["n"]) for step in steps)


def _difference(one: Dict[str, Any]) -> Difference:
    return Difference(
        kind=one["kind"],
        only_in=one.get("only_in"),
        path=_path(one.get("path")),
        against_path=_path(one.get("against_path")),
        event=_text(one.get("event")),
        n=one.get("n"),
        number=one.get("number"),
        against_n=one.get("against_n"),
        against_number=one.get("against_number"),
        parameter=_text(one.get("parameter")),
        parameter_n=one.get("parameter_n"),
        value=_text(one.get("value")),
        against=_text(one.get("against")),
        by=one.get("difference", one.get("factor")),
        at=time_of(one["at"]) if "at" in one else None,
        below=one.get("below"),
    )
