# SPDX-License-Identifier: Apache-2.0
"""Labelled and picked peaks as JSON lines, so that another program can judge them."""

import json
import time
from pathlib import Path

from zav_training.xic.classical import Picker
from zav_training.xic.traces import Trace


def write_labelled(path: Path, traces: list[Trace]) -> None:
    """A line for each trace: id, rt in seconds, intensity, peaks [[start, end], ...]."""
    with path.open("w") as file:
        for number, trace in enumerate(traces):
            record = {
                "id": _name(number, trace),
                "rt": trace.rt.tolist(),
                "intensity": trace.intensity.tolist(),
                "peaks": trace.peaks,
            }
            file.write(json.dumps(record) + "\n")


def write_picked(path: Path, traces: list[Trace], pick: Picker) -> None:
    """A line for each trace: id, picked peaks, microseconds spent."""
    with path.open("w") as file:
        for number, trace in enumerate(traces):
            start = time.perf_counter()
            peaks = pick(trace.rt, trace.intensity)
            spent = 1e6 * (time.perf_counter() - start)
            record = {"id": _name(number, trace), "peaks": peaks, "us": round(spent)}
            file.write(json.dumps(record) + "\n")


def _name(number: int, trace: Trace) -> str:
    """Unique in a set: files repeat identifiers."""
    return f"{number}|{trace.id}"
