"""What Python values become in the record."""

from __future__ import annotations

import enum
import time
from datetime import datetime, timedelta, timezone
from pathlib import Path
from typing import Any, Iterator, Tuple

import numpy
import pandas
import pytest

from velora_ts import Bool, Double, Error, Int, Text
from velora_ts._values import BOOL, DOUBLE, INT, TEXT, parameters_of


class Mode(enum.IntEnum):
    """A whole number with a name."""

    COUNTING = 2


def text(data: bytes) -> Tuple[int, Tuple[bytes, int]]:
    """A text, as it is recorded."""
    return TEXT, (data, len(data))


@pytest.fixture
def two_hours_east() -> Iterator[None]:
    """The local time of the process."""
    with pytest.MonkeyPatch.context() as patch:
        patch.setenv("TZ", "XYZ-2")
        time.tzset()
        yield
    time.tzset()


LATE = timezone(timedelta(hours=5, minutes=30))


@pytest.mark.parametrize(
    "value, recorded",
    [
        (True, (BOOL, (True,))),
        (numpy.bool_(False), (BOOL, (False,))),
        (2**31 - 1, (INT, (2**31 - 1,))),
        (-(2**31), (INT, (-(2**31),))),
        (Mode.COUNTING, (INT, (2,))),
        (numpy.uint8(200), (INT, (200,))),
        (numpy.int64(-7), (INT, (-7,))),
        (numpy.array(5), (INT, (5,))),
        (1.0, (DOUBLE, (1.0,))),
        (numpy.float32(2.5), (DOUBLE, (2.5,))),
        (numpy.float64(0.1), (DOUBLE, (0.1,))),
        ("µm\0", text(b"\xc2\xb5m\0")),
        ("\udcff", text(b"\xff")),  # as the system's names come
        (numpy.str_("grid"), text(b"grid")),
        (b"\xff\0", text(b"\xff\0")),
        (Path("/data/µ.mrc"), text("/data/µ.mrc".encode())),
        (datetime(2026, 11, 26, 4, 0, 0, 5, LATE), text(b"2026-11-25T22:30:00.000005Z")),
        (datetime(2026, 7, 1, 12), text(b"2026-07-01T10:00:00.000000Z")),  # local
        (pandas.Timestamp("2026-11-26T04:00Z"), text(b"2026-11-26T04:00:00.000000Z")),
        (pandas.Timestamp("2026-07-01T12:00:00.000005678"), text(b"2026-07-01T10:00:00.000005Z")),  # local
        (Int(numpy.int16(3)), (INT, (3,))),
        (Double(2**40), (DOUBLE, (2.0**40,))),
        (Double(True), (DOUBLE, (1.0,))),
        (Text(2**40), text(b"1099511627776")),
        (Text(b"\xff"), text(b"\xff")),
        (Text(numpy.datetime64("2026-11-26")), text(b"2026-11-26")),
        (Text(datetime(2026, 7, 1, 12)), text(b"2026-07-01T10:00:00.000000Z")),
        (Text(pandas.NaT), text(b"NaT")),
        (Text(datetime.min.replace(tzinfo=LATE)), text(b"0001-01-01 00:00:00+05:30")),
        (Bool(numpy.bool_(True)), (BOOL, (True,))),
        (Bool(0), (BOOL, (0,))),
    ],
)
@pytest.mark.usefixtures("two_hours_east")
def test_a_value_goes_where_it_belongs(value: Any, recorded: Any) -> None:
    [(name, kind, data)] = parameters_of("Image", {"Value": value}, {})
    assert (name, kind, data) == (b"Value", *recorded)


@pytest.mark.parametrize(
    "value, words",
    [
        (2**31, "2147483648, beyond the 32 bits of a whole number; velora_ts.Double or velora_ts.Text can record it"),
        (numpy.int64(-(2**31) - 1), "-2147483649, beyond the 32 bits"),
        (Int(2**31), "beyond the 32 bits"),
        (Int(1.0), "of type float for velora_ts.Int; expected a whole number"),
        (None, "of type NoneType; expected bool, int, float, str, bytes, datetime or a path"),
        ([1], "of type list; expected"),
        (1j, "of type complex; expected"),
        (numpy.complex64(1), "of type numpy.complex64; expected"),
        (numpy.longdouble(1), "numpy.float128; expected"),
        (numpy.array([1.0]), "of type numpy.ndarray; expected"),
        (numpy.datetime64("2026-11-26T00:00:00", "ns"), "of type numpy.datetime64, of which Python loses the unit"),
        (pandas.NaT, "NaT"),
        (datetime.min.replace(tzinfo=LATE), "expected a time of which UTC is known"),
        ("\ud800", "surrogates not allowed"),
        (Text("\ud800"), "surrogates not allowed"),
        (Double("1"), "of type str for velora_ts.Double; expected a number"),
        (Double(10**400), "of type int for velora_ts.Double (int too large to convert to float)"),
        (Bool("no"), "of type str for velora_ts.Bool; expected a bool, 0 or 1"),
        (Bool(2), "of type int for velora_ts.Bool; expected a bool, 0 or 1"),
    ],
)
def test_a_value_that_no_kind_holds_is_an_error_that_names_it(value: Any, words: str) -> None:
    with pytest.raises(Error) as error:
        parameters_of("Image", {}, {"First": 1, "Value": value})
    assert str(error.value).startswith("parameter 'Value' of event 'Image' is ")
    assert words in str(error.value)


def test_a_row_of_a_frame_has_the_parameters_of_an_event() -> None:
    frame = pandas.DataFrame({"Angle": [-3, 0], "File": ["a", "b"]})
    [_, (_, row)] = frame.iterrows()
    recorded = [(b"Angle", INT, (0,)), (b"File", *text(b"b")), (b"Good", BOOL, (True,))]
    assert parameters_of("Image", row, {"Good": True}) == recorded
    with pytest.raises(Error, match="'File' of event 'Image' is given twice"):
        parameters_of("Image", row, {"File": "c"})


@pytest.mark.parametrize(
    "parameters, more, words",
    [
        ({"Dose": 1}, {"Dose": 1}, "parameter 'Dose' of event 'Image' is given twice"),
        ([("Dose", 1)], {}, "the parameters of event 'Image' are of type list; expected a mapping"),
        ({1: 1}, {}, "parameter 1 of event 'Image' is of type int; expected a str"),
    ],
)
def test_names_of_parameters_are_texts_and_given_once(parameters: Any, more: Any, words: str) -> None:
    with pytest.raises(Error, match=words):
        parameters_of("Image", parameters, more)
