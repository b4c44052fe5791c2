# SPDX-License-Identifier: Apache-2.0
"""Figures of the splitter, on simulated clusters and on real neighbours."""

from collections.abc import Callable, Sequence
from dataclasses import dataclass, field
from pathlib import Path

import numpy as np
from scipy.signal import savgol_filter

from zav_training.xic import graph, simulate, splits
from zav_training.xic.pipeline import SplitOptions, search_splits
from zav_training.xic.shapes import draw_peak
from zav_training.xic.traces import Trace
from zav_training.xic.visible import deepest_valley, shape_of, smooth

#: A split within this many points of a true one is right.
REACH = 2
#: Seeds of the simulated clusters, and clusters of each.
SEEDS, CLUSTERS = (101, 102, 103, 104, 105), 220
#: Points of the Savitzky-Golay curves that the network is compared with; they have order 2.
WIDTHS = (5, 9, 15, 25, 45, 85)
#: Least fall of a valley that nobody overlooks.
DEEP = 0.2
#: Points a peak of the clusters of low noise, and their seed.
CALM_POINTS, CALM_SEED = (20.0, 160.0), 301
#: Points a peak, from foot to foot, of the clusters of all scales, and their seed.
SCALES, SCALE_SEED = ((4.0, 10.0), (10.0, 25.0), (25.0, 60.0), (60.0, 160.0), (160.0, 400.0)), 111
Splitter = Callable[[np.ndarray], list[int]]


@dataclass
class SplitCase:
    """A trace, the points at which it has to be split, and those about which nobody could tell.

    `deep` are the due ones in whose valley the signal falls by DEEP or more. `reach` says how far
    from each due or doubtful place a split is still right, where that is not REACH.
    """

    intensity: np.ndarray
    due: list[float]
    doubtful: list[float]
    shoulders: list[float]
    deep: list[float] = field(default_factory=list)
    reach: dict[float, float] = field(default_factory=dict)

    def within(self, place: float, found: float) -> bool:
        """Whether a split that was found is right for a place."""
        return abs(place - found) <= self.reach.get(place, REACH)


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


def scaled_clusters(
    seed: int, points: tuple[float, float], count: int = CLUSTERS
) -> list[SplitCase]:
    """Clusters of two to twelve peaks, so many points wide at their feet, with and without ground.

    A split is right within REACH points or a tenth of the distance of the two apexes.
    """
    rng = np.random.default_rng(seed)
    return [_scaled_cluster(rng, points) for _ in range(count)]


def _scaled_cluster(rng: np.random.Generator, points: tuple[float, float]) -> SplitCase:
    foot = float(np.exp(rng.uniform(*np.log(points))))
    sigma, number = foot / splits.FOOT, int(rng.integers(2, 13))
    at, peaks = foot * float(rng.uniform(0.6, 2.0)), []
    for _ in range(number):
        height = float(np.exp(rng.uniform(np.log(0.15), 0.0)))
        peaks.append(draw_peak(rng, at, sigma * float(rng.uniform(0.85, 1.2)), height))
        low, high = (2.0, 5.5) if rng.random() < 0.6 else (5.5, 16.0)
        at += sigma * float(rng.uniform(low, high))
    length = max(int(peaks[-1].apex + foot * float(rng.uniform(0.6, 2.0))), 9)
    t = np.arange(length, dtype=float)
    curves = [p.height * p.curve(t) for p in peaks]
    clean = np.sum(curves, axis=0)
    noise = float(clean.max() / np.exp(rng.uniform(np.log(10.0), np.log(3000.0))))
    y = np.maximum(clean + noise * rng.standard_normal(length) + 2.0 * noise, 0.0)
    borders = simulate.find_borders(peaks, clean, curves)
    case = _case(y, borders, noise)
    case.reach = {b.place: max(REACH, 0.1 * b.distance) for b in borders}
    return case


def calm_clusters(seed: int, points: tuple[float, float], count: int = CLUSTERS) -> list[SplitCase]:
    """Crowds as a detector of low noise shows them, on drifting ground, some of them cut off.

    A split is right as for `scaled_clusters`.
    """
    rng = np.random.default_rng(seed)
    cases: list[SplitCase] = []
    while len(cases) < count:
        foot = float(np.exp(rng.uniform(*np.log(points))))
        length = int(foot * rng.uniform(1.2, 14.0))
        peaks = splits.draw_crowd(rng, length, 1.0, (foot, foot))
        trace = simulate.observe(rng, peaks, length, None, (3.7, splits.LEAST_FALL), calm=1.0)
        case = _case(trace.intensity, trace.borders, trace.noise)
        case.reach = {b.place: max(REACH, 0.1 * b.distance) for b in trace.borders}
        if case.due:
            cases.append(case)
    return cases


def _case(y: np.ndarray, borders: Sequence[simulate.Border], noise: float) -> SplitCase:
    grades = [(b, splits.grade(b, noise)) for b in borders]
    due = [b for b, g in grades if g == 1.0]
    return SplitCase(
        1e5 * y,
        [b.place for b in due],
        [b.place for b, g in grades if g == 0.5],
        [b.place for b in due if b.fall <= simulate.SHOULDER],
        [b.place for b in due if b.fall >= DEEP],
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
    """The program's path with a splitter file; points are the times."""
    run = graph.trace_runner(path)

    def places(y: np.ndarray) -> list[int]:
        return [place for place, _ in search_splits(y, run, options)]

    return places


def minima_of(width: int) -> Splitter:
    """Minima of a curve of so many points."""
    return lambda y: minima_splitter(y, width)


def minima_splitter(y: np.ndarray, width: int = 9) -> list[int]:
    """Minima of a Savitzky-Golay curve that lie 10 % below the lower of the tops beside them."""
    width = min(width, len(y) - (1 - len(y) % 2))
    smoothed = np.maximum(savgol_filter(y.astype(float), width, 2), 0.0) if width > 3 else y
    left = np.maximum.accumulate(smoothed)
    right = np.maximum.accumulate(smoothed[::-1])[::-1]
    low = (smoothed[1:-1] < smoothed[:-2]) & (smoothed[1:-1] <= smoothed[2:])
    lower = np.minimum(left, right)[1:-1]
    high = lower > 0.1 * smoothed.max()
    return (1 + np.flatnonzero(low & high & (smoothed[1:-1] < 0.9 * lower))).tolist()


def score(cases: list[SplitCase], splitter: Splitter) -> dict[str, float]:
    """Precision, recall, F1, recall by kind of split, share of traces split.

    A split is right as its case says.
    """
    right = found = due = touched = shoulders = shoulders_found = deep = deep_found = 0
    for case in cases:
        places = splitter(case.intensity)
        matched = _match(case, places)
        doubtful = sum(
            any(case.within(d, p) for d in case.doubtful)
            for p in places
            if p not in matched.values()
        )
        right, due = right + len(matched), due + len(case.due)
        found, touched = found + len(places) - doubtful, touched + bool(places)
        shoulders += len(case.shoulders)
        shoulders_found += sum(s in matched for s in case.shoulders)
        deep, deep_found = deep + len(case.deep), deep_found + sum(d in matched for d in case.deep)
    return {
        "cases": len(cases),
        "precision": right / max(found, 1),
        "recall": right / max(due, 1),
        "f1": 2 * right / max(found + due, 1),
        "valley_recall": (right - shoulders_found) / max(due - shoulders, 1),
        "deep_recall": deep_found / max(deep, 1),
        "shoulder_recall": shoulders_found / max(shoulders, 1),
        "split_share": touched / max(len(cases), 1),
    }


def _match(case: SplitCase, places: Sequence[int]) -> dict[float, int]:
    """True places with the found one next to them, one to one, nearest first."""
    pairs = sorted((abs(d - p), d, p) for d in case.due for p in places if case.within(d, p))
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
    recalls = ("recall", "valley_recall", "deep_recall", "shoulder_recall")
    keys = ("precision", *recalls, "f1", "split_share")
    say("| set | cases | splitter | " + " | ".join(k.replace("_", " ") for k in keys) + " |")
    say("|" + " --- |" * (len(keys) + 3))
    for name, cases in sets.items():
        for splitter, places in splitters.items():
            result = score(cases, places)
            values = " | ".join(f"{result[k]:.3f}" for k in keys)
            say(f"| {name} | {len(cases)} | {splitter} | {values} |")
