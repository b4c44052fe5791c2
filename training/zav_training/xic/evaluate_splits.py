# SPDX-License-Identifier: Apache-2.0
"""Figures of the splitter, on simulated clusters and on real neighbours."""

from collections.abc import Callable, Sequence
from dataclasses import dataclass
from pathlib import Path

import numpy as np
from scipy.signal import savgol_filter

from zav_training.xic import graph, simulate, splits
from zav_training.xic.pipeline import SplitOptions, split
from zav_training.xic.shapes import draw_peak
from zav_training.xic.traces import Trace
from zav_training.xic.visible import deepest_valley, shape_of, smooth

#: A split within this many points of a true one is right.
REACH = 2
#: Seeds of the simulated clusters, and clusters of each.
SEEDS, CLUSTERS = (101, 102, 103, 104, 105), 220
Splitter = Callable[[np.ndarray], list[int]]


@dataclass
class SplitCase:
    """A trace, the points at which it has to be split, and those about which nobody could tell."""

    intensity: np.ndarray
    due: list[float]
    doubtful: list[float]
    shoulders: list[float]


def clusters(seed: int, count: int = CLUSTERS) -> list[SplitCase]:
    """Clusters of two to four peaks in traces of 60 to 300 points."""
    rng = np.random.default_rng(seed)
    return [_cluster(rng) for _ in range(count)]


def _cluster(rng: np.random.Generator) -> SplitCase:
    length = int(rng.integers(60, 301))
    number = int(rng.integers(2, 5))
    sigma = float(rng.uniform(2.0, 0.6 * length / (number * 4.5)))
    apex, peaks = 0.5 * length - (number - 1) * 2.0 * sigma, []
    for _ in range(number):
        height = float(np.exp(rng.uniform(np.log(0.15), 0.0)))
        peaks.append(draw_peak(rng, apex, sigma * float(rng.uniform(0.85, 1.2)), height))
        apex += sigma * float(rng.uniform(2.0, 5.5))
    t = np.arange(length, dtype=float)
    curves = [p.height * p.curve(t) for p in peaks]
    clean = np.sum(curves, axis=0)
    noise = float(clean.max() / np.exp(rng.uniform(np.log(10.0), np.log(1000.0))))
    y = np.maximum(clean + noise * rng.standard_normal(length) + 2.0 * noise, 0.0)
    return _case(y, simulate.find_borders(peaks, clean, curves), noise)


def _case(y: np.ndarray, borders: Sequence[simulate.Border], noise: float) -> SplitCase:
    grades = [(b, splits.grade(b, noise)) for b in borders]
    due = [b for b, g in grades if g == 1.0]
    return SplitCase(
        1e5 * y,
        [b.place for b in due],
        [b.place for b, g in grades if g == 0.5],
        [b.place for b in due if b.fall <= simulate.SHOULDER],
    )


def real_neighbours(traces: list[Trace]) -> list[SplitCase]:
    """Two candidates of a program that meet in a clear valley, with their surroundings."""
    cases = []
    for trace in traces:
        places = splits.neighbours(trace)
        spans = [trace.indices(c) for c in trace.candidates]
        for place in places:
            around = [s for s in spans if s[0] - 4 <= place <= s[1] + 4]
            low, high = min(a for a, _ in around), max(b for _, b in around)
            due = [p - low for p in places if low < p < high]
            cases.append(SplitCase(trace.intensity[low : high + 1], due, [], []))
    return cases


def whole_peaks(traces: list[Trace]) -> list[SplitCase]:
    """Visible labelled peaks without a valley, which are not to be split."""
    cases = []
    for trace in traces:
        for peak in trace.peaks:
            shape = shape_of(trace, peak)
            if shape is None or not shape.visible:
                continue
            y = trace.intensity[shape.start : shape.end + 1]
            if deepest_valley(smooth(y, 5)) < 0.1:
                cases.append(SplitCase(y, [], [], []))
    return cases


def network_splitter(path: Path, options: SplitOptions) -> Splitter:
    """The library\'s path with a splitter file; points are the times."""
    run = graph.trace_runner(path)

    def places(y: np.ndarray) -> list[int]:
        return [int(t) for t, _ in split(np.arange(len(y), dtype=float), y, run, options)]

    return places


def minima_splitter(y: np.ndarray) -> list[int]:
    """Minima of a Savitzky-Golay curve that lie 10 % below the lower of the tops beside them."""
    width = min(9, len(y) - (1 - len(y) % 2))
    smoothed = np.maximum(savgol_filter(y.astype(float), width, 2), 0.0) if width > 3 else y
    left = np.maximum.accumulate(smoothed)
    right = np.maximum.accumulate(smoothed[::-1])[::-1]
    low = (smoothed[1:-1] < smoothed[:-2]) & (smoothed[1:-1] <= smoothed[2:])
    lower = np.minimum(left, right)[1:-1]
    high = lower > 0.1 * smoothed.max()
    return (1 + np.flatnonzero(low & high & (smoothed[1:-1] < 0.9 * lower))).tolist()


def score(cases: list[SplitCase], splitter: Splitter) -> dict[str, float]:
    """Precision, recall and F1 within REACH points, recall of shoulders, share of traces split."""
    right = found = due = touched = shoulders = shoulders_found = 0
    for case in cases:
        places = splitter(case.intensity)
        matched = _match(case.due, places)
        doubtful = sum(
            any(abs(p - d) <= REACH for d in case.doubtful)
            for p in places
            if p not in matched.values()
        )
        right, due = right + len(matched), due + len(case.due)
        found, touched = found + len(places) - doubtful, touched + bool(places)
        shoulders += len(case.shoulders)
        shoulders_found += sum(s in matched for s in case.shoulders)
    return {
        "cases": len(cases),
        "precision": right / max(found, 1),
        "recall": right / max(due, 1),
        "f1": 2 * right / max(found + due, 1),
        "valley_recall": (right - shoulders_found) / max(due - shoulders, 1),
        "shoulder_recall": shoulders_found / max(shoulders, 1),
        "split_share": touched / max(len(cases), 1),
    }


def _match(due: Sequence[float], places: Sequence[int]) -> dict[float, int]:
    """True places with the found one next to them, one to one, nearest first."""
    pairs = sorted((abs(d - p), d, p) for d in due for p in places if abs(d - p) <= REACH)
    result: dict[float, int] = {}
    for _, d, p in pairs:
        if d not in result and p not in result.values():
            result[d] = p
    return result


def report(
    sets: dict[str, list[SplitCase]],
    splitters: dict[str, Splitter],
    say: Callable[[str], None] = print,
) -> None:
    """Prints a table of all sets and splitters."""
    keys = ("precision", "recall", "f1", "valley_recall", "shoulder_recall", "split_share")
    say("| set | cases | splitter | " + " | ".join(k.replace("_", " ") for k in keys) + " |")
    say("|" + " --- |" * (len(keys) + 3))
    for name, cases in sets.items():
        for splitter, places in splitters.items():
            result = score(cases, places)
            values = " | ".join(f"{result[k]:.3f}" for k in keys)
            say(f"| {name} | {len(cases)} | {splitter} | {values} |")
