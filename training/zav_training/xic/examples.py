# SPDX-License-Identifier: Apache-2.0
"""Training examples of the limits network: a trace, what is to be found, and what counts.

Rows of `targets` and `weights` [2, n]: inside of a peak; valley between two peaks.
"""

from dataclasses import dataclass

import numpy as np

from zav_training.xic import simulate
from zav_training.xic.groups import agreed
from zav_training.xic.traces import Trace
from zav_training.xic.visible import Shape, deepest_valley, smooth

INSIDE, VALLEY = 0, 1
#: Lower peaks, relative to the largest point, are left to the amplified second look.
LEAST_HEIGHT = 0.01
#: The convention assumed for limits of real traces, which do not tell theirs.
USUAL_DEPTH = 0.25
#: A labelled peak without a deeper valley, smoothed to a sixth of its width, stays whole.
WHOLE = 0.2
#: Surroundings kept on each side of a real label, in its widths.
ROOM = (0.15, 15.0)

#: How far an example is lifted as a whole, over its largest value.
LIFT = (0.05, 50.0)
#: Of the lifted ones, the share in which points stay behind at 0, and how many do at most.
BROKEN_SHARE, BROKEN = 0.75, 5


@dataclass
class Example:
    """Intensities [n], targets and weights [rows, n], conventions [2]."""

    intensity: np.ndarray
    targets: np.ndarray
    weights: np.ndarray
    conventions: np.ndarray


def conventions(drawn_width: float, valley_depth: float) -> np.ndarray:
    """What a network is told, about -1 to 1 each."""
    return np.array([(drawn_width - 3.7) / 1.5, np.log(valley_depth / 0.2)], np.float32)


def simulated_example(
    rng: np.random.Generator,
    length: int,
    background: np.ndarray | None = None,
    neighbours: float = 0.0,
) -> Example:
    """A simulated trace of the given length; `neighbours` as for `simulate`."""
    trace = simulate.simulate(rng, length, background, neighbours=neighbours)
    intensity, gain = trace.intensity, 1.0
    if rng.random() < 0.08 and np.median(intensity) < 0.01 * intensity.max():
        gain = 10.0 ** int(rng.integers(1, 4))
        intensity = np.minimum(intensity * gain, intensity.max())
    top = max(intensity.max(), 1e-12)
    targets, weights = np.zeros((2, length), np.float32), np.zeros((2, length), np.float32)
    weights[INSIDE] = 1.0
    for region in trace.regions:
        height = min(region.height * gain / top, 1.0)
        _paint_region(targets, weights, region, height)
    for place in trace.valleys():
        _paint_valley(targets, weights, place)
    weights[VALLEY, targets[INSIDE] == 0] = 0.0
    told = conventions(trace.drawn_width, trace.valley_depth)
    return vary(rng, Example(intensity / top, targets, weights, told), scale=True)


def _paint_region(
    targets: np.ndarray, weights: np.ndarray, region: simulate.Region, height: float
) -> None:
    n = targets.shape[1]
    start, end = max(round(region.start), 0), min(round(region.end), n - 1)
    if end - start < 2:
        weights[:, max(start - 1, 0) : end + 2] = 0.0
        return
    if region.evidence < simulate.EVIDENCE[1] or height < LEAST_HEIGHT:
        faint = region.evidence < simulate.EVIDENCE[0] or height < 0.3 * LEAST_HEIGHT
        weights[:, start : end + 1] = 0.3 if faint else 0.0
        return
    targets[INSIDE, start : end + 1] = 1.0
    weights[VALLEY, start : end + 1] = 1.0
    margin = max(1, int(0.05 * (end - start)))
    for edge in (start, end):
        weights[INSIDE, max(edge - margin, 0) : edge + margin + 1] = 0.4


def _paint_valley(targets: np.ndarray, weights: np.ndarray, place: float, half: int = 1) -> None:
    n, at = targets.shape[1], round(place)
    if not 0 < at < n - 1 or not (targets[INSIDE, at - 1] and targets[INSIDE, at + 1]):
        return
    weights[:, max(at - half - 2, 0) : at + half + 3] = 0.3
    targets[:, at - half : at + half + 1] = 1.0
    weights[VALLEY, at - half : at + half + 1] = 5.0


def real_example(rng: np.random.Generator, trace: Trace, shape: Shape) -> Example:
    """A labelled trace, cropped and stretched; what no label explains does not count."""
    y, targets, weights = trace.intensity, *_real_targets(trace, shape)
    n, width = len(y), shape.end - shape.start
    left, right = width * np.exp(rng.uniform(*np.log(ROOM), 2))
    low, high = max(0, int(shape.start - left)), min(n, int(shape.end + right) + 1)
    window = slice(low, high)
    told = conventions(min(max(shape.relative_width, 1.8), 6.0), USUAL_DEPTH)
    example = Example(y[window], targets[:, window], weights[:, window], told)
    return vary(rng, stretch(rng, example), scale=False)


def _real_targets(trace: Trace, shape: Shape) -> tuple[np.ndarray, np.ndarray]:
    n = len(trace.intensity)
    targets, weights = np.zeros((2, n), np.float32), np.zeros((2, n), np.float32)
    y = smooth(trace.intensity, 5)
    floor = float(np.quantile(y, 0.1))
    weights[INSIDE, y - floor < 0.06 * (y[shape.apex] - floor)] = 0.6
    for candidate in trace.candidates:
        a, b = trace.indices(candidate)
        weights[INSIDE, max(a - 2, 0) : b + 3] = 0.0
    inside = slice(shape.start, shape.end + 1)
    targets[INSIDE, inside] = 1.0
    weights[INSIDE, inside] = 1.0
    margin = max(1, int(0.08 * (shape.end - shape.start)))
    for edge in (shape.start, shape.end):
        weights[INSIDE, max(edge - margin, 0) : edge + margin + 1] = 0.15
    calm = smooth(trace.intensity, max(5, (shape.end - shape.start) // 6 | 1))
    if deepest_valley(calm[inside]) < WHOLE:
        weights[VALLEY, shape.start + 2 : shape.end - 1] = 1.0
    _paint_touching(targets, weights, y, shape)
    return targets, weights


def _paint_touching(targets: np.ndarray, weights: np.ndarray, y: np.ndarray, shape: Shape) -> None:
    """An edge in a valley between the labelled peak and a neighbour."""
    reach = max(3, (shape.end - shape.start) // 2)
    for edge, beyond in (
        (shape.start, y[max(shape.start - reach, 0) : shape.start]),
        (shape.end, y[shape.end + 1 : shape.end + 1 + reach]),
    ):
        high = y[edge] > 0.1 * y[shape.apex]
        if high and len(beyond) and beyond.max() > 1.35 * y[edge] and y[edge] < 0.7 * y[shape.apex]:
            at = slice(max(edge - 1, 0), edge + 2)
            targets[VALLEY, at], weights[VALLEY, at] = 1.0, 2.0


def stretch(rng: np.random.Generator, example: Example) -> Example:
    """The same trace, sampled more or less densely."""
    if rng.random() < 0.4:
        return example
    n = len(example.intensity)
    count = max(int(n * rng.uniform(0.6, 1.9)), 12)
    at = np.linspace(0.0, n - 1.0, count)
    nearest = np.round(at).astype(int)
    return Example(
        np.interp(at, np.arange(n), example.intensity),
        example.targets[:, nearest],
        example.weights[:, nearest],
        example.conventions,
    )


def vary(rng: np.random.Generator, example: Example, scale: bool) -> Example:
    """Mirrors half of the examples; roughens and rescales some."""
    y = example.intensity
    y = y * 10.0 ** rng.uniform(0.5, 8.0) if scale else roughened(rng, y)
    example = Example(y, example.targets, example.weights, example.conventions)
    return mirror(rng, example)


def mirror(rng: np.random.Generator, example: Example) -> Example:
    """The example, or in half of the cases its mirror image."""
    return mirrored(example) if rng.random() < 0.5 else example


def roughened(rng: np.random.Generator, y: np.ndarray) -> np.ndarray:
    """A real trace as a worse instrument would have measured it, in two cases of five."""
    kind, top = rng.random(), max(float(y.max(initial=0.0)), 1e-12)
    if kind < 0.2:
        return y * np.exp(rng.uniform(0.05, 0.45) * rng.standard_normal(len(y)))
    if kind < 0.3:
        count = np.exp(rng.uniform(np.log(6.0), np.log(200.0))) / top
        return rng.poisson(y * count) / count
    if kind < 0.36:
        return y * (rng.random(len(y)) > rng.uniform(0.03, 0.35))
    if kind < 0.42:
        return np.maximum(y + top * rng.uniform(0.01, 0.12) * rng.standard_normal(len(y)), 0.0)
    return y


def lift(rng: np.random.Generator, example: Example, share: float) -> Example:
    """The example, or in that share of cases its trace on a constant base, the noise kept.

    Points that stay behind at 0, at an end or anywhere, keep the base from being subtracted.
    """
    if not share or rng.random() >= share:
        return example
    y = example.intensity
    lifted = y + y.max(initial=0.0) * np.exp(rng.uniform(*np.log(LIFT)))
    if rng.random() < BROKEN_SHARE:
        count = min(int(rng.integers(1, BROKEN + 1)), len(y) // 8)
        first = np.arange(count)
        places = (first, len(y) - 1 - first, rng.integers(0, len(y), count))
        lifted[places[rng.integers(len(places))]] = 0.0
    return Example(lifted, example.targets, example.weights, example.conventions)


def mirrored(example: Example) -> Example:
    """The example with its time reversed."""
    return Example(
        example.intensity[::-1],
        example.targets[:, ::-1],
        example.weights[:, ::-1],
        example.conventions,
    )


class RealTraces:
    """Agreed labelled peaks, drawn so that a large document counts by the root of its size."""

    def __init__(self, traces: list[Trace]) -> None:
        self._items = agreed(traces)
        documents = [trace.document for trace, _ in self._items]
        size = {d: documents.count(d) for d in set(documents)}
        share = np.array([size[d] ** -0.5 for d in documents])
        self._share = np.cumsum(share / share.sum())

    def __len__(self) -> int:
        """Number of peaks."""
        return len(self._items)

    def draw(self, rng: np.random.Generator) -> Example:
        """One labelled peak, varied."""
        place = int(np.searchsorted(self._share, rng.random()))
        return real_example(rng, *self._items[min(place, len(self) - 1)])


class Backgrounds:
    """Stretches of real traces in which nothing stands out."""

    LENGTH = 128

    def __init__(self, traces: list[Trace], most: int = 4000) -> None:
        self._stretches: list[np.ndarray] = []
        for trace in traces:
            self._stretches += self._calm(trace)
        self._stretches = self._stretches[:: max(1, len(self._stretches) // most)]

    def _calm(self, trace: Trace) -> list[np.ndarray]:
        busy = np.zeros(len(trace.intensity), bool)
        for interval in [*trace.peaks, *trace.candidates]:
            a, b = trace.indices(interval)
            busy[max(a - 10, 0) : b + 11] = True
        starts = range(0, min(len(busy) - self.LENGTH, 1024) + 1, self.LENGTH)
        windows = [slice(s, s + self.LENGTH) for s in starts]
        return [
            trace.intensity[w] for w in windows if not busy[w].any() and calm(trace.intensity[w])
        ]

    def __len__(self) -> int:
        """Number of stretches."""
        return len(self._stretches)

    def draw(self, rng: np.random.Generator, length: int) -> np.ndarray | None:
        """A stretch of the given length, mirrored to fill it; None where there is none at all."""
        if not self._stretches:
            return None
        piece = self._stretches[rng.integers(len(self._stretches))]
        piece = np.concatenate([piece, piece[::-1]])
        return np.tile(piece, length // len(piece) + 2)[rng.integers(0, len(piece)) :][:length]


def calm(values: np.ndarray) -> bool:
    """Whether noise alone explains a stretch: no smoothed point far from the median."""
    spread = float(values.std())
    if spread <= 0.0:
        return False
    smoothed = smooth(values - np.median(values), 7)
    return float(smoothed.max()) < 4.5 * spread / np.sqrt(7.0)
