"""A simulated electron microscope, the Veldmar 3: a stage that drifts after each tilt, a focus and a camera.

It does no waiting: time passes on a clock of its own. The same seed gives the same session.
"""

from __future__ import annotations

import math
import random
from dataclasses import dataclass
from pathlib import Path


class StageError(Exception):
    """The stage did not reach the position that it was sent to."""


@dataclass(frozen=True)
class Image:
    """What the camera answers with. The simulation writes no file at the path."""

    path: Path
    dose: float  # electrons per square ångström, as measured
    mean: float  # counts per pixel


class Veldmar3:
    def __init__(self, seed: int, fails: float) -> None:
        """fails: the chance of a tilt to fail, from 0 to 1."""
        self._chance = random.Random(seed)
        self._fails = fails
        self._seconds = 0.0
        self._angle = 0.0
        self._settled_until = 0.0
        self._step = 0.0
        self._defocus = -2.0
        self._beam = self._chance.uniform(0.95, 1.05)
        self._images = 0

    @property
    def seconds(self) -> float:
        """The time that has passed on the clock of the microscope."""
        return self._seconds

    @property
    def angle(self) -> float:
        """Where the stage stands, in degrees."""
        return self._angle

    def load(self) -> None:
        """Puts the next grid onto the stage."""
        self._pass(120.0)
        self._angle = 0.0
        self._step = 0.0

    def tilt(self, angle: float) -> None:
        self._pass(2.0 + 0.1 * abs(angle - self._angle))
        if self._chance.random() < self._fails:
            raise StageError(f"the stage stands at {self._angle:.1f}°, not at {angle:.1f}°")
        self._step = angle - self._angle
        self._angle = angle
        self._settled_until = self._seconds
        self._defocus += self._chance.gauss(0.0, 0.002) * abs(self._step)

    def measure_drift(self) -> float:
        """Takes two short images, and returns how fast the specimen moves, in nanometres per second.

        A step of the stage starts a drift that dies away within seconds. It is larger on a specimen that is tilted.
        """
        self._pass(1.0)
        since = self._seconds - self._settled_until
        start = (0.1 + 0.01 * abs(self._step)) / math.cos(math.radians(self._angle))
        return start * math.exp(-since / 2.5) + abs(self._chance.gauss(0.0, 0.015))

    def measure_defocus(self) -> float:
        """Takes two images with a tilted beam, and returns the defocus, in micrometres."""
        self._pass(4.0)
        return self._defocus + self._chance.gauss(0.0, 0.01)

    def change_focus(self, by: float) -> None:
        self._pass(0.5)
        self._defocus += by

    def acquire(self, dose: float) -> Image:
        """Exposes an image. The beam is not quite as bright as it is said to be, and fades."""
        self._pass(1.0)
        self._images += 1
        self._beam *= 0.9998
        measured = dose * self._beam * self._chance.gauss(1.0, 0.005)
        thickness = 1.0 / math.cos(math.radians(self._angle))
        return Image(Path(f"image-{self._images:04}.tiff"), measured, measured * 40.0 * math.exp(-0.35 * thickness))

    def _pass(self, seconds: float) -> None:
        self._seconds += seconds
