"""The forms in which a store keeps texts, numbers and times (docs/local-ts.md, "How values are stored")."""

from __future__ import annotations

import re
import struct
from datetime import date, datetime, timezone
from typing import Optional, Union

from .errors import Error

Value = Union[str, int, float, bool, None]
Moment = Union[datetime, date, str]

AFTER_ALL_TIMES = "9999-12-31T24"

_NUMBER = re.compile(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?")
_MOMENT = re.compile(
    r"(\d{4}-\d{2})(?:-(\d{2})(?:[T ](\d{2})(?::(\d{2})(?::(\d{2})(?:\.(\d{1,6}))?)?)?)?)?(Z|[+-]\d{2}:\d{2})?",
    re.ASCII,
)


def text_of(stored: str) -> str:
    """The text of a stored form. Bytes that are not UTF-8 are surrogates, as os.fsdecode() makes them."""
    if stored[:2] != "\\x":
        return stored
    try:
        return bytes.fromhex(stored[2:]).decode("utf-8", "surrogateescape")
    except ValueError:  # no host wrote it
        return stored


def stored_text(text: str) -> str:
    """The stored form of a text."""
    try:
        data = text.encode("utf-8", "surrogateescape")
    except (AttributeError, UnicodeEncodeError):
        raise Error(f"{text!r}: expected a text that UTF-8 can hold") from None
    try:
        if b"\0" not in data and not data.startswith(b"\\x"):
            return data.decode()
    except UnicodeDecodeError:
        pass
    return "\\x" + data.hex()


def value_of(kind: str, text: Optional[str], number: Optional[float]) -> Value:
    """The value of a parameter, as its host gave it."""
    if text is not None:
        if kind == "double" and text == "-0.0":
            return -0.0
        if kind == "double" and text.startswith("NaN:"):
            return nan_of(text)
        return text_of(text)
    if number is not None and (kind == "int" or kind == "bool") and number == number // 1:
        return number == 1 if kind == "bool" and number in (0, 1) else int(number)
    return number


def nan_of(text: str) -> float:
    """The NaN of a text such as "NaN:7ff8000000000000", with all its bits."""
    number: float = struct.unpack(">d", bytes.fromhex(text[4:]))[0]
    return number


def finite_number_of(kind: str, text: Optional[str], number: Optional[float]) -> Optional[float]:
    """The finite number that a parameter is, or that its text reads as; nothing for what else it is."""
    if text is None:
        found = number if kind != "bool" else None
    elif kind == "double" and (text == "-0.0" or text.startswith("NaN:")):
        found = -0.0 if text == "-0.0" else None
    else:
        found = number_in(text)
    return found if found is not None and found - found == 0 else None


def number_in(text: str) -> Optional[float]:
    """The finite number that a text such as "3.10" stands for."""
    parts = _NUMBER.fullmatch(text)
    if not parts:
        return None
    number = float(text)
    too_small = number == 0 and parts[1].strip("0.") != ""
    return number if number - number == 0 and not too_small else None


def time_of(stored: str) -> datetime:
    """The time of a stored form, in UTC."""
    try:
        if len(stored) == 27 and stored[26] == "Z":
            return datetime.fromisoformat(stored[:26] + "+00:00")
    except ValueError:
        pass
    raise Error(f"stored time '{stored}' cannot be read; expected the form 2026-11-24T21:55:03.123456Z, from year 1 on")


def stored_time(moment: Moment) -> str:
    """The stored form of a time: a datetime (local, if it has no zone), a date (its beginning, local), or a text."""
    if isinstance(moment, str):
        moment = _moment_in(moment)
    try:
        if not isinstance(moment, datetime):
            moment = datetime(moment.year, moment.month, moment.day)
        utc = moment.astimezone(timezone.utc)
    except (AttributeError, OSError, OverflowError, ValueError):
        raise Error(f"time {moment!r}: expected a time in the years 1 to 9999 of UTC") from None
    return f"{utc.year:04}-{utc:%m-%dT%H:%M:%S}.{utc.microsecond:06}Z"


def _moment_in(text: str) -> datetime:
    parts = _MOMENT.fullmatch(text)
    if parts:
        month, day, hour, minute, second, fraction, offset = parts.groups()
        clock = (
            f"{month}-{day or '01'}T{hour or '00'}:{minute or '00'}:{second or '00'}.{(fraction or '').ljust(6, '0')}"
        )
        try:
            return datetime.fromisoformat(clock + (offset or "").replace("Z", "+00:00"))
        except ValueError:
            pass
    raise Error(f"time '{text}': expected a time that exists, such as 2026-11-24, 2026-11-24 21:55:03 or a datetime")
