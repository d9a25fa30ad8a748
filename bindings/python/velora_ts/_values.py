"""What Python values become in the record."""

from __future__ import annotations

import contextlib
import operator
import os
from dataclasses import dataclass
from datetime import datetime, timezone
from typing import TYPE_CHECKING, Any, Callable, Dict, List, Mapping, Tuple, Union

from velora_ts.errors import Error

if TYPE_CHECKING:
    from typing import Protocol

    class Scalar(Protocol):
        """A scalar of numpy, or an array without dimensions."""

        @property
        def shape(self) -> Tuple[()]:
            ...

        def item(self) -> Any:
            ...


@dataclass(frozen=True)
class Bool:
    """A value that is recorded as a truth value: a bool, 0 or 1."""

    value: object


@dataclass(frozen=True)
class Int:
    """A value that is recorded as a whole number of 32 bits."""

    value: object


@dataclass(frozen=True)
class Double:
    """A value that is recorded as a double: also an int beyond 32 bits, rounded where it must be."""

    value: object


@dataclass(frozen=True)
class Text:
    """A value that is recorded as a text: as str() writes it, unless it is recorded as a text anyway."""

    value: object


Value = Union[bool, int, float, str, bytes, datetime, "os.PathLike[str]", Bool, Int, Double, Text, "Scalar"]

# The kinds of parameters, as velora_ts.h numbers them.
BOOL, DOUBLE, INT, TEXT = range(4)

# A kind, and what the function that adds a parameter of this kind gets for the value.
Recorded = Tuple[int, Tuple[Any, ...]]


class Unfit(Exception):
    """Why a value cannot be recorded."""


def to_bytes(text: object) -> bytes:
    """A text in UTF-8. Bytes of the system's names that are not UTF-8 stay as they are."""
    if not isinstance(text, str):
        raise Unfit(f"{_type_of(text)}; expected a str")
    try:
        return text.encode("utf-8", "surrogateescape")
    except UnicodeEncodeError as reason:
        raise Unfit(f"{reason.reason} in {text!r}; expected a text that UTF-8 can hold") from None


def storable(text: str) -> str:
    """The text, with escapes if to_bytes refuses it."""
    try:
        to_bytes(text)
        return text
    except Unfit:
        return text.encode("utf-8", "backslashreplace").decode()


def to_text(data: bytes) -> str:
    """The text that to_bytes turns into these bytes."""
    return data.decode("utf-8", "surrogateescape")


def named_bytes(what: str, text: object) -> bytes:
    """As to_bytes, for a text that an error can name."""
    try:
        return to_bytes(text)
    except Unfit as reason:
        raise Error(f"{what} is {reason}") from None


def parameters_of(
    event: str, parameters: Mapping[str, Value], more: Mapping[str, Value]
) -> List[Tuple[bytes, int, Tuple[Any, ...]]]:
    """Name, kind and value of each parameter of an event, in their order."""
    recorded = []
    if not hasattr(parameters, "items"):
        raise Error(
            f"the parameters of event {event!r} are {_type_of(parameters)}; expected a mapping of names to values"
        )
    for given in (parameters, more):
        for name, value in given.items():
            try:
                convert = _of_type.get(type(value)) or _convert_for(value)
                recorded.append((to_bytes(name), *convert(value)))
            except Unfit as reason:
                raise Error(f"parameter {name!r} of event {event!r} is {reason}") from None
            if given is more and name in parameters:
                raise Error(f"parameter {name!r} of event {event!r} is given twice; expected one value")
    return recorded


def _type_of(value: object) -> str:
    kind = type(value)
    return "of type " + (kind.__name__ if kind.__module__ == "builtins" else f"{kind.__module__}.{kind.__qualname__}")


def _of_bool(value: Any) -> Recorded:
    return BOOL, (value,)


def _of_int(value: Any) -> Recorded:
    if -(2**31) <= value < 2**31:
        return INT, (value,)
    raise Unfit(f"{value}, beyond the 32 bits of a whole number; velora_ts.Double or velora_ts.Text can record it")


def _of_float(value: Any) -> Recorded:
    return DOUBLE, (value,)


def _of_bytes(value: Any) -> Recorded:
    data = bytes(value)
    return TEXT, (data, len(data))


def _of_str(value: Any) -> Recorded:
    return _of_bytes(to_bytes(value))


def _of_path(value: Any) -> Recorded:
    path = os.fspath(value)
    return _of_bytes(path) if isinstance(path, bytes) else _of_str(path)


def _of_datetime(value: Any) -> Recorded:
    """In the form of the store's times. A time without a zone is local."""
    try:
        if value.tzinfo is None:
            value = datetime.combine(value.date(), value.time())  # pandas' own knows no local time
        utc = value.astimezone(timezone.utc).replace(tzinfo=None)
        return _of_str(utc.isoformat(timespec="microseconds") + "Z")
    except (OverflowError, TypeError, ValueError) as reason:
        raise Unfit(f"{value!r}: {reason}; expected a time of which UTC is known") from None


def _of_scalar(value: Any) -> Recorded:
    convert = _of_type.get(type(_plain(value)))
    if convert is None:
        raise Unfit(f"{_type_of(value)}; {_EXPECTED}")
    return convert(value.item())


def _plain(value: Any) -> Any:
    """The Python value of a scalar of numpy; every other value as it is."""
    kind = getattr(getattr(value, "dtype", None), "kind", "")
    if kind and kind in "mM":
        raise Unfit(f"{_type_of(value)}, of which Python loses the unit; expected a datetime, or velora_ts.Text")
    return value.item() if hasattr(value, "item") and getattr(value, "shape", None) == () else value


def _as_bool(value: Any) -> Recorded:
    plain = _plain(value.value)
    if not isinstance(plain, int) or plain not in (0, 1):
        raise Unfit(f"{_type_of(plain)} for velora_ts.Bool; expected a bool, 0 or 1")
    return BOOL, (plain,)


def _as_int(value: Any) -> Recorded:
    try:
        return _of_int(operator.index(value.value))
    except TypeError:
        raise Unfit(f"{_type_of(value.value)} for velora_ts.Int; expected a whole number") from None


def _as_double(value: Any) -> Recorded:
    try:
        if not hasattr(value.value, "__float__") and not hasattr(value.value, "__index__"):
            raise TypeError  # float() also reads texts
        return DOUBLE, (float(value.value),)
    except (OverflowError, TypeError, ValueError) as reason:
        why = f" ({reason})" if isinstance(reason, OverflowError) else ""
        raise Unfit(f"{_type_of(value.value)} for velora_ts.Double{why}; expected a number") from None


def _as_text(value: Any) -> Recorded:
    plain = value.value
    for base, convert in _texts.items():
        if isinstance(plain, base):
            with contextlib.suppress(Unfit):  # such as a time that has no UTC
                return convert(plain)
    return _of_str(str(plain))


_Convert = Callable[[Any], Recorded]
_texts: Dict[type, _Convert] = {
    str: _of_str,
    bytes: _of_bytes,
    bytearray: _of_bytes,
    datetime: _of_datetime,
    os.PathLike: _of_path,
}
_of_type: Dict[type, _Convert] = {bool: _of_bool, int: _of_int, float: _of_float, **_texts}
_of_type.update({Bool: _as_bool, Int: _as_int, Double: _as_double, Text: _as_text})
_EXPECTED = "expected bool, int, float, str, bytes, datetime or a path; velora_ts.Text records what str() writes"


def _convert_for(value: object) -> _Convert:
    """For values whose type is derived from a known one, or is numpy's."""
    for base, convert in _of_type.items():
        if isinstance(value, base):
            return convert
    if hasattr(value, "item") and getattr(value, "shape", None) == ():
        return _of_scalar
    raise Unfit(f"{_type_of(value)}; {_EXPECTED}")
