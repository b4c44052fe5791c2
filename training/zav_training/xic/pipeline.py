# SPDX-License-Identifier: Apache-2.0
"""What the library does around the networks, in numpy, so that figures are of the whole path."""

from collections.abc import Callable
from dataclasses import dataclass, replace
from itertools import pairwise

import numpy as np

#: Width of the Gaussian filter in points; fixed in the library.
SIGMA = 4.0
PADDING = -1.0
TINY = 1e-12
SMALLEST_NORMAL = 2.2250738585072014e-308
#: Points that the thinning leaves free at the end of the input.
MARGIN = 200
#: A floored probability above this belongs to a cluster.
SELECTED = 0.9
#: The amplified look: factor, and how often at most.
GAIN, RETRIES = 10.0, 3
#: The splitter: most splits of a trace, and points below which none is looked for.
MOST_SPLITS, LEAST_SPLIT_POINTS = 4, 5
#: The program: points of its coarsest view of a trace, and lengths of the network's input.
COARSEST, NETWORK_SIZES = 512, (512, 1024, 2048, 4096)
#: How much of the tolerance a split of a finer view may use.
SURER = 0.4

Network = Callable[[np.ndarray], np.ndarray]
#: Points to split at, with their probabilities.
Found = list[tuple[int, float]]


@dataclass(frozen=True)
class LimitsOptions:
    """Options of the limits detector that fit its network."""

    maxPointCount: int = 8192
    probabilityTolerance: float = 0.8
    dbscanEpsilon: float = 1.5
    dbscanMinPoints: int = 2
    minPointCount: int = 5
    smoothingPassCount: int = 1
    gaussianFilterSize: int = 5
    limitThreshold: float = 0.05


@dataclass(frozen=True)
class SplitOptions:
    """Options of the splitter that fit its network."""

    maxPointCount: int = 1024
    probabilityTolerance: float = 0.5
    gaussianFilterSize: int = 5
    smoothingPassCount: int = 0


def gaussian_filter(size: int) -> np.ndarray:
    """An odd number of taps at integer distances from the centre, summing to 1."""
    half = size // 2
    taps = np.exp(-0.5 * (np.arange(-half, half + 1) / SIGMA) ** 2)
    return taps / taps.sum()


def convolve(rows: np.ndarray, kernel: np.ndarray) -> np.ndarray:
    """Rows [B, n] convolved along n; the first and last value are repeated beyond the ends."""
    half = len(kernel) // 2
    padded = np.pad(rows, ((0, 0), (half, half)), mode="edge")
    n = rows.shape[1]
    return sum(tap * padded[:, i : i + n] for i, tap in enumerate(kernel))


def prepare_rows(rows: np.ndarray, kernel: np.ndarray | None, passes: int = 1) -> np.ndarray:
    """Smoothed rows over their largest value, float32."""
    if kernel is not None:
        for _ in range(passes):
            rows = convolve(rows, kernel)
    top = rows.max(axis=1, keepdims=True)
    divisor = np.where(np.abs(top) > TINY, top, SMALLEST_NORMAL)
    with np.errstate(over="ignore"):
        return (rows / divisor).astype(np.float32)


def thin(intensity: np.ndarray, target: int) -> np.ndarray:
    """Indices of the points that stay: the lowest go first, of equal ones the latest.

    The first and the last point stay.
    """
    n = len(intensity)
    target = max(target, 0)
    if n <= target:
        return np.arange(n)
    inner = np.arange(1, n - 1)
    order = inner[np.lexsort((-inner, intensity[1:-1]))]
    removed = order[: n - target]
    return np.setdiff1d(np.arange(n), removed)


def limits_input(intensity: np.ndarray, options: LimitsOptions) -> np.ndarray:
    """The network's input, float32 [maxPointCount]; empty where thinning cannot fit the trace."""
    n = options.maxPointCount
    if len(intensity) > n:
        intensity = intensity[thin(intensity, n - MARGIN)]
    if len(intensity) > n:
        return np.zeros(0, np.float32)
    row = np.full((1, n), PADDING)
    row[0, : len(intensity)] = intensity.astype(np.float32)
    kernel = gaussian_filter(options.gaussianFilterSize)
    return prepare_rows(row, kernel, options.smoothingPassCount)[0]


def cluster_labels(index: np.ndarray, epsilon: float, least: int) -> np.ndarray:
    """Density clusters of ascending indices: labels from 0 on, -1 for noise (Ester 1996)."""
    count = len(index)
    left = np.searchsorted(index, index - epsilon, "left")
    right = np.searchsorted(index, index + epsilon, "right")
    core = right - left >= least
    labels, label = np.full(count, -1), -1
    for i in range(count):
        if not core[i] or labels[i] >= 0:
            continue
        label += 1
        front = [i]
        while front:
            j = front.pop()
            for k in range(left[j], right[j]):
                if labels[k] < 0:
                    labels[k] = label
                    if core[k]:
                        front.append(k)
    return labels


def cluster_limits(index: np.ndarray, labels: np.ndarray) -> list[tuple[int, int]]:
    """Intervals of indices. Each starts one index early, at 1 where its cluster starts at 0.

    The last one is lost when the last index is noise or opens a cluster of its own.
    """
    result: list[tuple[int, int]] = []
    current, low, high = 0, None, None
    for i, label in enumerate(labels):
        if label == -1:
            continue
        last = i == len(labels) - 1
        if current < label or last:
            if last and label == current:
                high = int(index[i])
                low = high if low is None else low
            result.append((low - 1 if low >= 1 else 1, high))
            current, low, high = current + 1, None, None
        if label == current:
            low = int(index[i]) if low is None else min(low, int(index[i]))
            high = int(index[i]) if high is None else max(high, int(index[i]))
    return result


def limits_of(probability: np.ndarray, options: LimitsOptions) -> list[tuple[int, int]]:
    """Intervals of points from probabilities."""
    threshold = 1.0 - options.probabilityTolerance
    floored = (probability >= np.float32(threshold)).astype(np.float32)
    if threshold > floored.max(initial=0.0):
        return []
    index = np.flatnonzero(floored.astype(np.float64) > SELECTED)
    if not len(index):
        return []
    labels = cluster_labels(index, options.dbscanEpsilon, options.dbscanMinPoints)
    return cluster_limits(index, labels)


def detect(
    rt: np.ndarray,
    intensity: np.ndarray,
    network: Network,
    options: LimitsOptions,
    hint: float = -1.0,
    depth: int = 0,
) -> list[tuple[float, float]]:
    """Limits in time by the network; with a hint, up to three amplified looks for it."""
    if not len(rt):
        return []
    x = limits_input(intensity, options)
    count = min(options.maxPointCount, len(rt))
    if count <= options.minPointCount:
        return []
    probability = network(x[None])[0][:count]
    found = [(float(rt[s]), float(rt[e])) for s, e in limits_of(probability, options)]
    hit = any(s <= hint <= e for s, e in found)
    if hint <= -1.0 or hit or depth >= RETRIES:
        return found
    amplified = np.minimum(intensity * GAIN, intensity.max())
    return detect(rt, amplified, network, options, hint, depth + 1)


def split_input(intensity: np.ndarray, options: SplitOptions) -> np.ndarray:
    """The splitter's input, float32 [maxPointCount], of intensities thinned to fit."""
    row = np.zeros((1, options.maxPointCount))
    row[0, : len(intensity)] = intensity.astype(np.float32)
    kernel = gaussian_filter(options.gaussianFilterSize)
    return prepare_rows(row, kernel, options.smoothingPassCount)[0]


def strict_maxima(values: np.ndarray) -> np.ndarray:
    """Indices above both neighbours; beyond the ends lies 0."""
    padded = np.concatenate([[0.0], values, [0.0]])
    return np.flatnonzero((padded[1:-1] > padded[:-2]) & (padded[1:-1] > padded[2:]))


def split_indices(probability: np.ndarray, options: SplitOptions) -> list[int]:
    """At most four points to split at, the surest first."""
    threshold = 1.0 - options.probabilityTolerance
    peaks = [i for i in strict_maxima(probability) if float(probability[i]) >= threshold]
    return sorted(peaks, key=lambda i: (abs(1.0 - float(probability[i])), i))[:MOST_SPLITS]


def split(
    rt: np.ndarray, intensity: np.ndarray, network: Network, options: SplitOptions
) -> list[tuple[float, float]]:
    """Times to split at, with their probabilities."""
    if len(rt) < LEAST_SPLIT_POINTS:
        return []
    kept = thin(intensity, options.maxPointCount)
    probability = network(split_input(intensity[kept], options)[None])[0][: len(kept)]
    return [
        (float(rt[kept[i]]), float(probability[i])) for i in split_indices(probability, options)
    ]


def averaged(y: np.ndarray, neighbours: int) -> np.ndarray:
    """Means of so many neighbouring values; the last may be one of fewer."""
    first = np.arange(0, len(y), neighbours)
    return np.add.reduceat(y, first) / np.diff(np.append(first, len(y)))


def settled(y: np.ndarray, place: int, reach: int) -> int:
    """The lowest smoothed place within reach, or the place itself where the trace only falls."""
    first, last = max(place - reach, 0), min(place + reach, len(y) - 1)
    half, total = reach // 2, np.concatenate([[0.0], np.cumsum(y)])
    at = np.arange(first, last + 1)
    low, high = np.maximum(at - half, 0), np.minimum(at + half + 1, len(y))
    lowest = first + int(np.argmin((total[high] - total[low]) / (high - low)))
    return place if lowest in (first, last) else lowest


def search_splits(y: np.ndarray, network: Network, options: SplitOptions) -> Found:
    """What the program finds: points to split at, with their probabilities.

    A long trace is averaged and read coarsely first. The pieces between the splits are searched
    again: at the same scale where a look gave all it can, else at finer ones, and then what is
    found must be surer.
    """
    sure = replace(options, probabilityTolerance=SURER * options.probabilityTolerance)
    found: Found = []
    pieces = [(0, len(y), max(1, -(-len(y) // COARSEST)), False)]
    while pieces:
        first, count, neighbours, must_be_sure = pieces.pop()
        if count < LEAST_SPLIT_POINTS:
            continue
        chosen = sure if must_be_sure else options
        here, whole, neighbours = _look(y[first : first + count], neighbours, network, chosen)
        found += [(first + place, probability) for place, probability in here]
        if not here or (whole and neighbours == 1):
            continue
        ends = [0, *(place for place, _ in here), count - 1]
        scale = (neighbours + 1) // 2 if whole else neighbours
        pieces += [(first + a, b - a + 1, scale, must_be_sure or whole) for a, b in pairwise(ends)]
    return sorted(found)


def _look(
    piece: np.ndarray, neighbours: int, network: Network, options: SplitOptions
) -> tuple[Found, bool, int]:
    """Splits of a piece at the coarsest scale that shows any, whether that is all, the scale."""
    while True:
        here, whole = _look_at_scale(averaged(piece, neighbours), network, options)
        if neighbours == 1:
            return here, whole, neighbours
        kept: Found = []
        for i, probability in here:
            middle = min(i * neighbours + neighbours // 2, len(piece) - 1)
            place = settled(piece, middle, neighbours)
            if (kept[-1][0] if kept else 0) < place < len(piece) - 1:
                kept.append((place, probability))
        if kept:
            return kept, whole, neighbours
        neighbours = (neighbours + 1) // 2


def _look_at_scale(y: np.ndarray, network: Network, options: SplitOptions) -> tuple[Found, bool]:
    """Splits of values that are read in overlapping windows where they are too many."""
    largest = NETWORK_SIZES[-1]
    found: Found = []
    for first in range(0, max(len(y) - largest // 2, 1), largest // 2):
        end = min(first + largest, len(y))
        low = 1 if first == 0 else first + largest // 4
        high = end - 1 if end == len(y) else first + 3 * largest // 4
        points = next((s for s in NETWORK_SIZES if s >= end - first), largest)
        fitting = replace(options, maxPointCount=points)
        places = np.arange(first, end, dtype=float)
        here = split(places, y[first:end], network, fitting)
        found += sorted((int(p), q) for p, q in here if low <= p < high)
    return found, len(y) <= largest and len(found) < MOST_SPLITS
