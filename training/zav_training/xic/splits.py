# SPDX-License-Identifier: Apache-2.0
"""Training examples of the splitter: one row of targets, bumps where a peak is to be split."""

from itertools import pairwise

import numpy as np

from zav_training.xic import simulate
from zav_training.xic.examples import Example, conventions, mirror, stretch, vary
from zav_training.xic.simulate import Border, Simulated
from zav_training.xic.traces import Trace
from zav_training.xic.visible import Shape, deepest_valley, noise_level, shape_of, smooth

#: Width of a bump: a share of the apexes' distance, within limits in points. A shoulder's place is
#: less certain, and a bump narrower than that doubt would never be predicted at half its height.
BUMP, SHOULDER_BUMP, NARROWEST, WIDEST = 0.1, 0.16, 1.0, 5.0
#: Distance of a cluster's apexes in sigma: closer than the limits network meets them.
APART = (1.9, 4.5)
#: Share of simulated traces cut to one region, as the limits network would hand it over.
CUT_SHARE = 0.4
#: Share of the real traces that are touching neighbours.
TOUCHING_SHARE = 0.35
#: Shoulders count from the second resolution on and are no split below the first.
RESOLUTION = (0.7, 0.95)
#: Least fall of a valley, relative to the lower top.
LEAST_FALL = 0.04
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
    trace = simulate.simulate(rng, length, background, crowded=0.65, apart=APART)
    targets, weights = split_targets(trace, length)
    window = slice(0, length)
    if trace.regions and rng.random() < CUT_SHARE:
        window = _around(rng, trace, length)
    told = conventions(3.7, simulate.VALLEY_DEPTH[0])
    example = Example(trace.intensity[window], targets[:, window], weights[:, window], told)
    return vary(rng, example, scale=True)


def _around(rng: np.random.Generator, trace: Simulated, length: int) -> slice:
    """The cluster of one region: its neighbours come along where they touch it."""
    region = trace.regions[rng.integers(len(trace.regions))]
    room = 0.5 * (region.end - region.start)
    touching = [r for r in trace.regions if r.start < region.end + room]
    touching = [r for r in touching if r.end > region.start - room]
    low = min(r.start for r in touching) - rng.uniform(0.0, 3.0)
    high = max(r.end for r in touching) + rng.uniform(0.0, 3.0)
    first = int(np.clip(low, 0, max(length - 12, 0)))
    return slice(first, max(int(high) + 1, first + 12))


def split_targets(trace: Simulated, length: int) -> tuple[np.ndarray, np.ndarray]:
    """Targets and weights [1, length]: bumps of height 1 at the borders that can be seen."""
    targets = np.zeros((1, length), np.float32)
    weights = np.ones((1, length), np.float32)
    points = np.arange(length)
    for border in trace.borders:
        valley = border.fall >= LEAST_FALL
        share = BUMP if valley else SHOULDER_BUMP
        sigma = float(np.clip(share * border.distance, NARROWEST, WIDEST))
        verdict = grade(border, trace.noise)
        near = np.abs(points - border.place) <= 3.0 * sigma
        if verdict == 0.5:
            weights[0, near] = 0.0
        elif verdict == 1.0:
            bump = np.exp(-0.5 * ((points - border.place) / sigma) ** 2)
            targets[0] = np.maximum(targets[0], bump)
            weights[0, near] = POSITIVE if valley else SHOULDER_POSITIVE
    return targets, weights


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
        counted = np.flatnonzero(weights[0])
        room = int((counted[-1] - counted[0] + 1) * rng.uniform(0.0, 2.0))
        window = slice(max(counted[0] - room, 0), counted[-1] + room + 1)
        told = conventions(3.7, simulate.VALLEY_DEPTH[0])
        example = Example(trace.intensity[window], targets[:, window], weights[:, window], told)
        return stretch(rng, example)


def _touching_targets(trace: Trace, places: list[int]) -> tuple[np.ndarray, np.ndarray]:
    n = len(trace.intensity)
    targets, weights = np.zeros((1, n), np.float32), np.zeros((1, n), np.float32)
    points = np.arange(n)
    for place in places:
        targets[0] = np.maximum(targets[0], np.exp(-0.5 * ((points - place) / 1.5) ** 2))
        weights[0, max(place - 4, 0) : place + 5] = POSITIVE
    return targets, weights


def _whole_targets(trace: Trace, shape: Shape) -> tuple[np.ndarray, np.ndarray]:
    n = len(trace.intensity)
    weights = np.zeros((1, n), np.float32)
    inside = slice(shape.start + 2, shape.end - 1)
    single = deepest_valley(smooth(trace.intensity, 5)[shape.start : shape.end + 1]) < 0.15
    weights[0, inside] = 1.0 if single else 0.05
    return np.zeros((1, n), np.float32), weights
