"""What a store gives: plain records. Times are in UTC. Texts are as they were recorded; bytes that are not UTF-8 are
surrogates, and text.encode("utf-8", "surrogateescape") gives them back."""

from __future__ import annotations

from datetime import datetime
from typing import Dict, List, NamedTuple, Optional, Tuple

from ._stored import Value

RUNNING = 4  # the status of an execution that did not end
DONE = 14


class Run(NamedTuple):
    """An execution without a parent, and what is below it."""

    guid: str
    node: str
    description: str
    instrument: str
    host: str
    activity: str  # the name of the activity version; empty for none
    version: str
    started_at: datetime
    status: Optional[int]
    status_at: Optional[datetime]
    seconds: Optional[float]  # from the start to the status; nothing while that is RUNNING
    finished: bool  # no execution of the run has RUNNING as its newest status
    last_recorded_at: Optional[datetime]  # of a finished run, its end


class Execution(NamedTuple):
    """An execution of a run."""

    number: int
    guid: str
    parent: Optional[str]  # a guid; nothing for the run itself
    run: str
    depth: int
    node: str
    description: str
    activity: str
    version: str
    started_at: datetime
    status: Optional[int]
    status_at: Optional[datetime]
    seconds: Optional[float]


class Status(NamedTuple):
    """A status that an execution got."""

    number: int
    execution: str
    node: str
    code: int
    at: datetime


class Parameter(NamedTuple):
    """A parameter of an event."""

    name: str
    kind: str  # text, int, double or bool
    value: Value


class Event(NamedTuple):
    """Something that happened in an execution, or outside every run."""

    number: int
    at: datetime
    run: Optional[str]
    execution: Optional[str]
    node: Optional[str]
    activity: Optional[str]
    name: str
    instrument: str
    path: Tuple[str, ...]  # the nodes from the run down to the execution
    parameters: Tuple[Parameter, ...]

    def value(self, name: str, otherwise: Value = None) -> Value:
        """The value of the first parameter of a name."""
        return next((parameter.value for parameter in self.parameters if parameter.name == name), otherwise)


class Reading(NamedTuple):
    """A parameter with its event, of which it begins with what an Event begins with."""

    number: int
    at: datetime
    run: Optional[str]
    execution: Optional[str]
    node: Optional[str]
    activity: Optional[str]
    event: str
    instrument: str
    path: Tuple[str, ...]
    position: int
    parameter: str
    kind: str
    value: Value


class ParameterName(NamedTuple):
    """What the parameters of one name are like."""

    name: str
    unit: str  # as TSAL.config states it
    events: Tuple[str, ...]
    kinds: Tuple[str, ...]
    count: int  # type: ignore[assignment]  # the name that it has in velora-ts
    min: Optional[float]
    max: Optional[float]
    first_at: datetime
    last_at: datetime


class Configuration(NamedTuple):
    """A configuration of the instrument."""

    number: int
    guid: str
    saved_at: datetime
    vendor_name: str
    host_name: str
    option_text: str
    instrument_class: str
    model_name: str
    configuration_text: str


class Note(NamedTuple):
    """What somebody wrote about a run."""

    number: int
    author: str
    kind: str  # cause, review or tag
    text: str
    at: datetime


class Group(NamedTuple):
    """What some numbers are like. The quantiles are on the line between two numbers, as numpy has them."""

    name: str
    run: Optional[str]  # the guid, of groups by run
    first_at: Optional[datetime]
    last_at: Optional[datetime]
    count: int  # type: ignore[assignment]  # the name that it has in velora-ts
    min: Optional[float]
    q05: Optional[float]
    q25: Optional[float]
    median: Optional[float]
    q75: Optional[float]
    q95: Optional[float]
    max: Optional[float]
    mean: Optional[float]
    deviation: Optional[float]  # of a sample
    drift: Optional[float]  # the median less that of the time before


class Statistics(NamedTuple):
    """What the numbers of a parameter are like."""

    parameter: str
    unit: str
    by: str
    not_counted: int  # values that are no finite numbers
    groups: List[Group]
    all: Group
    before: Optional[Group]


class Step(NamedTuple):
    """An execution on the way from the run down to another one."""

    activity: str
    node: str
    n: int  # which of this activity and node it is


class Difference(NamedTuple):
    """Something in which two runs differ. What does not apply is None."""

    kind: str  # execution, order, status, version, duration, event, event order or parameter
    only_in: Optional[str]  # run or against
    path: Optional[Tuple[Step, ...]]
    against_path: Optional[Tuple[Step, ...]]
    event: Optional[str]
    n: Optional[int]  # which of its name the event is in its execution
    number: Optional[int]  # of the event
    against_n: Optional[int]
    against_number: Optional[int]
    parameter: Optional[str]
    parameter_n: Optional[int]  # which of its name the parameter is in its event
    value: Value  # as in Parameter
    against: Value
    by: Optional[float]  # the first less the second number; of durations, the first divided by the second
    at: Optional[datetime]
    below: Optional[int]  # how many executions are below one that is in one run alone


class Line(NamedTuple):
    """A line of the instrument configuration that is in one run alone."""

    only_in: str
    line: int
    text: str


class Comparison(NamedTuple):
    """How a run differs from another one."""

    run: str
    against: str
    same: bool
    differences: List[Difference]
    configuration: List[Line]
    summary: List[Dict[str, object]]  # the counts of each parameter, as velora-ts diff --json has them
    parting: Optional[Difference]  # where they first part
