"""Draws how the specimen drifted over the tilt series of a session, from the store of record_session.py.

    python3 plot_drift.py FOLDER drift.png

The cells also run one by one in an editor that knows `# %%`, where FOLDER is the current directory.
"""

# %% What to read, and where to draw
from __future__ import annotations

import sys

import matplotlib
import velora_ts

matplotlib.use("Agg")  # Draws into a file, so it needs no display.

from matplotlib import pyplot  # noqa: E402

folder, picture = sys.argv[1:3] if len(sys.argv) == 3 else (".", "drift.png")

# %% The measurements of drift in the run that was recorded last: a row for each, a column for each parameter
with velora_ts.Store(folder) as store:
    drift = store.frames.events("last", event="Drift")
    units = store.units
drift["grid"] = drift["path"].str.split(" > ").str[1]
drift["tilt"] = drift["TiltAngle"].abs()

# %% The first measurement after each tilt has the drift that the tilt caused, the last one what remained of it
sections = drift.groupby(["grid", "execution"], sort=False)
caused = sections.first().reset_index()
remained = sections.last().reset_index()
waited = sections["Seconds"].agg(lambda seconds: seconds.iloc[-1] - seconds.iloc[0])

# %% Does drift depend on the tilt?
by_tilt = caused.groupby("tilt")["Drift"].median()
at_rest, tilted = (f"{by_tilt[angle]:.2f} {units['Drift']}" for angle in (by_tilt.index.min(), by_tilt.index.max()))
print(f"median drift at {by_tilt.index.min():.0f}°: {at_rest}, at {by_tilt.index.max():.0f}°: {tilted}")
print(f"waited for the drift: {waited.sum() / 60:.0f} minutes in {len(waited)} sections")

# %% Over the series, and against the tilt
figure, (over_time, against_tilt) = pyplot.subplots(1, 2, figsize=(11, 4), sharey=True, layout="constrained")
for grid, of_grid in caused.groupby("grid", sort=False):
    over_time.plot(of_grid["Seconds"] / 60, of_grid["Drift"], ".-", label=grid)
over_time.plot(remained["Seconds"] / 60, remained["Drift"], ".", color="grey", label="when exposed")
over_time.set(xlabel="minutes at the microscope", ylabel=f"drift after a tilt ({units['Drift']})")
over_time.legend()
against_tilt.plot(caused["tilt"], caused["Drift"], ".", alpha=0.5)
against_tilt.plot(by_tilt.index, by_tilt, "-", label="median")
against_tilt.set(xlabel=f"tilt ({units['TiltAngle']})")
against_tilt.legend()
figure.savefig(picture)
print(picture)
