"""A host in Python: records a session of tilt series on a simulated microscope, the Veldmar 3.

    python3 record_session.py FOLDER

FOLDER gets the three files that a host needs, unless they are there, and the store. docs/python.md explains each call.
"""

from __future__ import annotations

import argparse
import os
import shutil
import sys
from pathlib import Path

import velora_ts
from simulation import StageError, Veldmar3

DRIFT_LIMIT = 0.1  # nanometres per second
DEFOCUS = -2.0  # micrometres


def dose_symmetric(up_to: int, step: int) -> list[int]:
    """The angles from 0 outwards, on both sides in turn."""
    return [0] + [sign * angle for angle in range(step, up_to + 1, step) for sign in (1, -1)]


def wait_for_drift(microscope: Veldmar3, section: velora_ts.Activity) -> float:
    """Measures until the specimen is quiet, but at most ten times."""
    for _ in range(10):
        drift = microscope.measure_drift()
        section.event("Drift", TiltAngle=microscope.angle, Drift=drift, Seconds=microscope.seconds)
        if drift <= DRIFT_LIMIT:
            break
    return drift


def focus(microscope: Veldmar3, section: velora_ts.Activity) -> float:
    """Measures the defocus and corrects it when it is off."""
    measured = microscope.measure_defocus()
    off = measured - DEFOCUS
    refocused = abs(off) > 0.05
    if refocused:
        microscope.change_focus(by=-off)
    section.event("Focus", Defocus=measured, Refocused=refocused)
    return DEFOCUS if refocused else measured


def record_series(microscope: Veldmar3, series: velora_ts.Activity, angles: list[int]) -> None:
    for angle in angles:
        with series.activity("Section", node=f"{angle:+d}°") as section:
            microscope.tilt(angle)
            drift = wait_for_drift(microscope, section)
            defocus = focus(microscope, section)
            image = microscope.acquire(dose=3.0)
            section.event(
                "Exposure",
                TiltAngle=microscope.angle,
                Dose=image.dose,
                Defocus=defocus,
                Drift=drift,
                Mean=image.mean,
                File=image.path,
                Quiet=drift <= DRIFT_LIMIT,
            )


def record_session(microscope: Veldmar3, recording: velora_ts.Recording, grids: int, angles: list[int]) -> int:
    """Records a series of each grid, and returns how many did not finish."""
    stopped = 0
    with recording.activity("Session", node="specimen 12", description="a simulated session") as session:
        for grid in range(1, grids + 1):
            microscope.load()
            try:
                with session.activity("TiltSeries", node=f"grid {grid}") as series:
                    record_series(microscope, series, angles)
            except StageError as error:  # It is in the record; the next grid may do better.
                print(f"grid {grid}: {error}", file=sys.stderr)
                stopped += 1
    return stopped


def main() -> int:
    parser = argparse.ArgumentParser(description="Records a simulated session of tilt series.")
    parser.add_argument("folder", type=Path, metavar="FOLDER", help="the folder of the store and the three files")
    parser.add_argument("--grids", type=int, default=3, help="how many series (%(default)s)")
    parser.add_argument("--up-to", type=int, default=60, help="the largest angle (%(default)s)")
    parser.add_argument("--step", type=int, default=3, help="degrees between two sections (%(default)s)")
    parser.add_argument("--fails", type=float, default=0.01, help="the chance of a tilt to fail (%(default)s)")
    parser.add_argument("--seed", type=int, default=3, help="the same seed gives the same session (%(default)s)")
    options = parser.parse_args()

    options.folder.mkdir(parents=True, exist_ok=True)
    for file in (Path(__file__).parent / "settings").iterdir():
        if not (options.folder / file.name).exists():
            shutil.copy(file, options.folder)
    os.chdir(options.folder)  # Where a host looks for the three files.

    microscope = Veldmar3(options.seed, options.fails)
    angles = dose_symmetric(options.up_to, options.step)
    with velora_ts.open("instrument.xml") as recording:
        stopped = record_session(microscope, recording, options.grids, angles)
    print(f"{options.grids} series, {stopped} of them stopped, {microscope.seconds / 60:.0f} minutes at the microscope")
    return 0


if __name__ == "__main__":
    sys.exit(main())
