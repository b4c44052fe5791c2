# SPDX-License-Identifier: Apache-2.0
"""Figures of the limits network, through the whole path of the library, and of other pickers."""

from collections.abc import Callable
from pathlib import Path

from zav_training.xic import classical, graph
from zav_training.xic.measures import Figures
from zav_training.xic.pipeline import LimitsOptions, detect
from zav_training.xic.traces import Trace

Picker = classical.Picker
#: Settings of OpenMS's picker among which the best for a set is looked for, in seconds.
GAUSS_WIDTHS = (
    *(5.0, 8.0, 10.0, 12.0, 15.0, 20.0, 25.0, 30.0, 40.0, 50.0),
    *(65.0, 80.0, 100.0, 120.0, 140.0, 160.0, 200.0, 240.0, 300.0),
)
#: Columns of the tables: figure, heading, decimals.
COLUMNS = (
    ("recall", "recall", 3),
    ("precision", "precision", 3),
    ("f1_all", "F1 all", 3),
    ("f1", "F1", 3),
    ("overlap", "overlap", 3),
    ("edge_points", "edge", 2),
    ("per_trace", "a trace", 2),
    ("touched", "touched", 3),
    ("r_raw", "r raw", 4),
    ("error_raw", "error raw", 4),
    ("r_above", "r above", 4),
    ("error_above", "error above", 4),
)


def network_picker(path: Path, options: LimitsOptions) -> Picker:
    """The network path of the library, without a hint."""
    runner = graph.trace_runner(path)

    return lambda rt, intensity: detect(rt, intensity, runner, options)


def figures(traces: list[Trace], pick: Picker) -> dict[str, float]:
    """Figures of one picker on one set."""
    result = Figures()
    for trace in traces:
        found = pick(trace.rt, trace.intensity)
        result.add(trace.rt, trace.intensity, trace.peaks, found)
    return result.summary()


def first_only(pick: Picker) -> Picker:
    """The first interval alone, which for the walk is the one with the highest apex."""
    return lambda rt, intensity: pick(rt, intensity)[:1]


def pickers(limits: Path, options: LimitsOptions) -> dict[str, Picker]:
    """The network and what it is compared with, by name."""
    walk = classical.pick_by_walk(options)
    return {
        "network": network_picker(limits, options),
        "walk": walk,
        "walk, first": first_only(walk),
        "find_peaks + peak_widths": classical.pick_by_prominence,
        "the same, smoothed": classical.pick_smoothed,
        "Savitzky-Golay derivative": classical.pick_by_derivative,
    }


def openms_figures(traces: list[Trace]) -> dict[str, dict[str, float]]:
    """Figures of OpenMS's picker at its default, and at the width that is best for the set."""
    default = figures(traces, classical.openms_picker())
    tried = {w: figures(traces, classical.openms_picker(gauss_width=w)) for w in GAUSS_WIDTHS}
    best = max(tried, key=lambda w: tried[w]["f1"])
    return {"OpenMS, default": default, f"OpenMS, best ({best:g} s)": tried[best]}


def heading() -> str:
    """Head of a Markdown table."""
    names = " | ".join(c[1] for c in COLUMNS)
    return f"| set | labels | picker | {names} |\n|{' --- |' * (len(COLUMNS) + 3)}"


def row(name: str, picker: str, result: dict[str, float]) -> str:
    """A row of that table."""
    values = " | ".join(f"{result[key]:.{places}f}" for key, _, places in COLUMNS)
    return f"| {name} | {result['labels']} | {picker} | {values} |"


def report(
    sets: dict[str, list[Trace]],
    limits: Path,
    options: LimitsOptions,
    compare: bool,
    say: Callable[[str], None] = print,
) -> dict[str, dict[str, float]]:
    """Prints a table of all sets and pickers; returns the network's figures by set."""
    say(heading())
    own = {}
    for name, traces in sets.items():
        results = {k: figures(traces, p) for k, p in pickers(limits, options).items()}
        own[name] = results["network"]
        if compare:
            results |= openms_figures(traces)
        for picker, result in results.items():
            say(row(name, picker, result))
    return own
