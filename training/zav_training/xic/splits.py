# SPDX-License-Identifier: Apache-2.0
"""Training examples of the splitter: rows of bumps where a peak is to be split.

Rows of `targets` and `weights` [2, n]: valleys; shoulders.
"""

from itertools import pairwise

import numpy as np

from zav_training.xic import simulate
from zav_training.xic.examples import Example, conventions, mirror, stretch, vary
from zav_training.xic.shapes import Peak, draw_peak
from zav_training.xic.simulate import Border, Simulated
from zav_training.xic.traces import Trace
from zav_training.xic.visible import Shape, deepest_valley, noise_level, shape_of, smooth

VALLEY, SHOULDER = 0, 1
#: Width of a bump: a share of the apexes' distance, within limits in points. A shoulder's place is
#: less certain, and a bump narrower than that doubt would never be predicted at half its height.
BUMP, SHOULDER_BUMP, NARROWEST, WIDEST = 0.1, 0.16, 1.0, 60.0
#: Points from apex to apex beyond which nobody looks for the middle between two peaks.
FARTHEST = 700.0
#: Width of a simulated peak at its foot in points, and in sigma.
POINTS, FOOT = (4.0, 400.0), 5.0
#: Distances of a crowd's apexes in sigma, and how often: touching, parted, with ground between.
GAPS = ((1.7, 4.5, 0.55), (4.5, 8.0, 0.25), (8.0, 30.0, 0.2))
#: Numbers of peaks of a crowd, and how often.
CROWDS = ((1, 1, 0.2), (2, 4, 0.45), (5, 12, 0.35))
#: Heights of a crowd's peaks, and the share of crowds with the lowest ones.
HEIGHTS, LOW_HEIGHTS, LOW_SHARE = (0.08, 1.0), (0.004, 1.0), 0.25
#: Share of traces as of a detector of low noise.
CALM_SHARE = 0.4
#: Share of simulated traces cut to one region, as the limits network would hand it over, and of
#: those cut at their borders, as the pieces of a split trace.
CUT_SHARE, PIECE_SHARE = 0.35, 0.2
#: Points of the shortest example; peaks beyond which no crowd is added.
SHORTEST, MOST_PEAKS = 12, 16
#: Share of the real traces that are touching neighbours.
TOUCHING_SHARE = 0.35
#: Shoulders count from the second resolution on and are no split below the first.
RESOLUTION = (0.7, 0.95)
#: Least fall of a valley, relative to the lower top.
LEAST_FALL = 0.04
#: A shoulder that has less of the signal at its apex is hidden.
LEAST_SHARE = 0.35
#: Height of the lower peak over the noise: below the first nothing is to be seen.
EVIDENCE = (2.0, 5.0)
#: Weight of what is to be split: at valleys, and at shoulders, which are rarer and harder.
POSITIVE, SHOULDER_POSITIVE = 4.0, 8.0
#: A real valley is clear when its depth exceeds this many times the noise.
CLEAR = 5.0


def grade(border: Border, noise: float) -> float:
    """1 where a split is due, 0 where none is, 0.5 where nobody could tell."""
    seen = border.height / max(noise, 1e-12) * np.sqrt(max(border.distance / 4.0, 1.0))
    if border.fall >= LEAST_FALL:
        seen *= min(1.0, 4.0 * border.fall)
    elif border.resolution < RESOLUTION[0]:
        return 0.0
    else:
        seen *= 0.25 if border.resolution >= RESOLUTION[1] else 0.0
    if seen >= EVIDENCE[1]:
        return 1.0
    return 0.5 if seen >= EVIDENCE[0] or border.fall < LEAST_FALL else 0.0


def simulated_split(
    rng: np.random.Generator, length: int, background: np.ndarray | None = None
) -> Example:
    """A simulated trace of the given length, more often crowded than not."""
    peaks = draw_crowds(rng, length)
    usual = (3.7, simulate.VALLEY_DEPTH[0])
    trace = simulate.observe(rng, peaks, length, background, usual, CALM_SHARE)
    window, kind = slice(0, length), rng.random()
    if trace.regions and kind < CUT_SHARE:
        window = _around(rng, trace, length)
    elif trace.borders and kind < CUT_SHARE + PIECE_SHARE:
        window = _piece(rng, trace, length)
    targets, weights = split_targets(trace, window)
    example = Example(trace.intensity[window], targets, weights, conventions(*usual))
    return vary(rng, example, scale=True)


def draw_crowds(rng: np.random.Generator, length: int) -> list[Peak]:
    """Peaks of any width side by side; now and then more of other widths, or none."""
    if rng.random() < 0.03:
        return []
    peaks = draw_crowd(rng, length)
    while len(peaks) < MOST_PEAKS and rng.random() < 0.25:
        scale = float(np.exp(rng.uniform(np.log(0.02), 0.0)))
        peaks += draw_crowd(rng, length, scale)
    return sorted(peaks, key=lambda p: p.apex)


def draw_crowd(
    rng: np.random.Generator,
    length: int,
    scale: float = 1.0,
    points: tuple[float, float] = POINTS,
) -> list[Peak]:
    """One crowd somewhere in a trace, of peaks so wide; half of them have peaks of one shape."""
    low, high, _ = CROWDS[rng.choice(len(CROWDS), p=[c[2] for c in CROWDS])]
    count = int(rng.integers(low, high + 1))
    widest = max(min(points[1], 1.5 * length / count), points[0] + 1.0)
    sigma = float(np.exp(rng.uniform(np.log(points[0]), np.log(widest)))) / FOOT
    heights = HEIGHTS if rng.random() > LOW_SHARE else LOW_HEIGHTS
    seed = int(rng.integers(2**32)) if rng.random() < 0.5 else None
    at, peaks = 0.0, []
    for i in range(count):
        if i:
            low, high, _ = GAPS[rng.choice(len(GAPS), p=[g[2] for g in GAPS])]
            at += sigma * float(rng.uniform(low, high))
            sigma *= float(rng.uniform(0.85, 1.2))
        height = scale * float(np.exp(rng.uniform(*np.log(heights)))) if count > 1 else scale
        shape = rng if seed is None else np.random.default_rng(seed)
        peaks.append(draw_peak(shape, at, sigma, height))
    start = float(rng.uniform(min(0.0, length - at), max(0.0, length - at)))
    for peak in peaks:
        peak.apex += start
    return peaks


def _around(rng: np.random.Generator, trace: Simulated, length: int) -> slice:
    """The cluster of one region: its neighbours come along where they touch it."""
    region = trace.regions[rng.integers(len(trace.regions))]
    room = 0.5 * (region.end - region.start)
    touching = [r for r in trace.regions if r.start < region.end + room]
    touching = [r for r in touching if r.end > region.start - room]
    low = min(r.start for r in touching) - rng.uniform(0.0, 3.0)
    high = max(r.end for r in touching) + rng.uniform(0.0, 3.0)
    return _window(low, high, length)


def _piece(rng: np.random.Generator, trace: Simulated, length: int) -> slice:
    """From one border to a later one, or to an end of the trace."""
    places = [0.0, *(b.place for b in trace.borders), float(length)]
    first = int(rng.integers(len(places) - 1))
    last = int(rng.integers(first + 1, len(places)))
    return _window(places[first], places[last], length)


def _window(low: float, high: float, length: int) -> slice:
    first = int(np.clip(low, 0, max(length - SHORTEST, 0)))
    return slice(first, max(int(high) + 1, first + SHORTEST))


def split_targets(trace: Simulated, window: slice) -> tuple[np.ndarray, np.ndarray]:
    """Targets and weights [2, n] of a window: bumps of height 1 at the borders that can be seen."""
    points = np.arange(len(trace.intensity))[window]
    targets = np.zeros((2, len(points)), np.float32)
    weights = np.ones((2, len(points)), np.float32)
    for border in trace.borders:
        row = VALLEY if border.fall >= LEAST_FALL else SHOULDER
        sigma = float(np.clip((BUMP, SHOULDER_BUMP)[row] * border.distance, NARROWEST, WIDEST))
        verdict = _verdict(border, trace.noise, points)
        away = np.abs(points - border.place)
        near = away <= 3.0 * sigma
        if verdict == 0.5:
            weights[:, near] = 0.0
        elif verdict == 1.0 and border.distance > FARTHEST:
            weights[:, away <= 0.35 * border.distance] = 0.0
        elif verdict == 1.0:
            targets[row] = np.maximum(targets[row], np.exp(-0.5 * (away / sigma) ** 2))
            weights[row, near] = (POSITIVE, SHOULDER_POSITIVE)[row]
            weights[1 - row, near] = 0.0
    return targets, weights


def _verdict(border: Border, noise: float, points: np.ndarray) -> float:
    """The grade of a border in a window, at whose ends no split is due: a peak lies beyond."""
    verdict = grade(border, noise)
    if border.fall < LEAST_FALL and border.share < LEAST_SHARE:
        verdict = min(verdict, 0.5)
    left, right = border.apexes()
    if left >= points[0] and right <= points[-1]:
        return verdict
    to_end = min(border.place - points[0], points[-1] - border.place)
    return 0.0 if to_end <= max(2.0, 0.1 * border.distance) else min(verdict, 0.5)


def neighbours(trace: Trace) -> list[int]:
    """Points at which two of a program's candidates meet in a clear valley of a real trace."""
    spans = sorted(trace.indices(c) for c in trace.candidates)
    y = smooth(trace.intensity, 3)
    top, noise, found = float(y.max(initial=0.0)), noise_level(trace.intensity), []
    for (a, b), (c, d) in pairwise(spans):
        if b - a < 3 or d - c < 3 or not -3 <= c - b <= 3:
            continue
        low = int(np.argmin(y[(a + b) // 2 : (c + d) // 2 + 1])) + (a + b) // 2
        lower = min(float(y[a:low].max(initial=0.0)), float(y[low : d + 1].max()))
        clear = y[low] < 0.8 * lower and lower - y[low] > CLEAR * noise
        if clear and lower > 0.1 * top and y[low] > 0.0 and abs(low - (b + c) / 2) <= 4:
            found.append(low)
    return found


class RealNeighbours:
    """Real traces: touching candidates, and visible peaks that are to stay whole."""

    def __init__(self, traces: list[Trace]) -> None:
        self._touching = [(t, n) for t in traces if t.candidates and (n := neighbours(t))]
        self._whole: list[tuple[Trace, Shape]] = []
        for trace in traces:
            for peak in trace.peaks:
                shape = shape_of(trace, peak)
                if shape is not None and shape.visible:
                    self._whole.append((trace, shape))

    def __len__(self) -> int:
        """Number of traces and peaks."""
        return len(self._touching) + len(self._whole)

    def draw(self, rng: np.random.Generator) -> Example:
        """Neighbours in a part of the cases, else a peak that is to stay whole."""
        if self._touching and (not self._whole or rng.random() < TOUCHING_SHARE):
            trace, places = self._touching[rng.integers(len(self._touching))]
            return mirror(rng, self._cut(rng, trace, *_touching_targets(trace, places)))
        trace, shape = self._whole[rng.integers(len(self._whole))]
        return vary(rng, self._cut(rng, trace, *_whole_targets(trace, shape)), scale=False)

    @staticmethod
    def _cut(
        rng: np.random.Generator, trace: Trace, targets: np.ndarray, weights: np.ndarray
    ) -> Example:
        """The stretch of the trace around what counts."""
        counted = np.flatnonzero(weights[VALLEY])
        room = int((counted[-1] - counted[0] + 1) * rng.uniform(0.0, 2.0))
        window = slice(max(counted[0] - room, 0), counted[-1] + room + 1)
        told = conventions(3.7, simulate.VALLEY_DEPTH[0])
        example = Example(trace.intensity[window], targets[:, window], weights[:, window], told)
        return stretch(rng, example)


def _touching_targets(trace: Trace, places: list[int]) -> tuple[np.ndarray, np.ndarray]:
    n = len(trace.intensity)
    targets, weights = np.zeros((2, n), np.float32), np.zeros((2, n), np.float32)
    points = np.arange(n)
    for place in places:
        bump = np.exp(-0.5 * ((points - place) / 1.5) ** 2)
        targets[VALLEY] = np.maximum(targets[VALLEY], bump)
        weights[VALLEY, max(place - 4, 0) : place + 5] = POSITIVE
    return targets, weights


def _whole_targets(trace: Trace, shape: Shape) -> tuple[np.ndarray, np.ndarray]:
    n = len(trace.intensity)
    weights = np.zeros((2, n), np.float32)
    inside = slice(shape.start + 2, shape.end - 1)
    single = deepest_valley(smooth(trace.intensity, 5)[shape.start : shape.end + 1]) < 0.15
    weights[:, inside] = 1.0 if single else 0.05
    return np.zeros((2, n), np.float32), weights
