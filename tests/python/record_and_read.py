#!/usr/bin/env python3
"""Records a run with the installed Python package and reads it back, in a folder that velora-ts init made."""

from pathlib import Path

import velora_ts

with velora_ts.open(required=True) as ts, ts.activity("Grid", node="grid 3") as grid:
    with grid.activity("Exposure", node="hole 5") as exposure:
        exposure.event("Image", Defocus=-1.5, Frames=40, Drift=False, File=Path("hole 5.mrc"))

with velora_ts.Store(".") as store:
    (image,) = store.events("last")
    print(f"{image.name}:", *(f"{parameter.name}={parameter.value!r}" for parameter in image.parameters))
