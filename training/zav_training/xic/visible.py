# SPDX-License-Identifier: Apache-2.0
"""Whether a labelled peak can be seen in its own trace.

Limits are often copied from one transition to all of its group, so that a trace may carry limits
without showing a peak.
"""

from dataclasses import dataclass

import numpy as np

from zav_training.xic.traces import Trace

#: Evident: signal to noise, correlation of neighbours, width over the width at half height.
LEAST_SIGNAL_TO_NOISE = 5.0
LEAST_CORRELATION = 0.45
WIDTHS = (1.4, 7.0)
#: An edge is low when it is below this share of the apex (over the lower of the two edges' base).
HIGHEST_EDGE = 0.5


@dataclass
class Shape:
    """What a labelled peak looks like in its trace; indices are of points."""

    start: int
    end: int
    apex: int
    half_width: float
    signal_to_noise: float
    correlation: float
    edge: float

    @property
    def relative_width(self) -> float:
        """Width between the limits over the width at half height."""
        return (self.end - self.start) / max(self.half_width, 1e-9)

    @property
    def visible(self) -> bool:
        """Whether the trace itself shows the peak."""
        return (
            self.signal_to_noise > LEAST_SIGNAL_TO_NOISE
            and self.correlation > LEAST_CORRELATION
            and WIDTHS[0] <= self.relative_width <= WIDTHS[1]
            and self.edge < HIGHEST_EDGE
        )


def smooth(values: np.ndarray, taps: int) -> np.ndarray:
    """Running mean of odd length, edges repeated."""
    padded = np.pad(values, taps // 2, mode="edge")
    return np.convolve(padded, np.full(taps, 1.0 / taps), "valid")


def noise_level(values: np.ndarray) -> float:
    """Standard deviation of what differs between neighbours, robust against peaks."""
    if len(values) < 3:
        return 0.0
    second = values[1:-1] - 0.5 * (values[:-2] + values[2:])
    return float(1.4826 * np.median(np.abs(second)) / np.sqrt(1.5))


def noise_level_of_spread(values: np.ndarray) -> float:
    """Standard deviation about the median, robust against peaks."""
    if len(values) < 8:
        return 0.0
    return float(1.4826 * np.median(np.abs(values - np.median(values))))


def width_at(values: np.ndarray, apex: int, level: float) -> float:
    """Points between the crossings of a level on both sides of the apex, interpolated."""
    return _crossing(values, apex, level, 1) + _crossing(values, apex, level, -1)


def _crossing(values: np.ndarray, apex: int, level: float, step: int) -> float:
    side = values[apex:] if step > 0 else values[apex::-1]
    below = np.flatnonzero(side < level)
    if not len(below):
        return float(len(side) - 1) + 0.5
    i = int(below[0])
    return i - (level - side[i]) / max(side[i - 1] - side[i], 1e-12) if i else 0.0


def shape_of(trace: Trace, interval: tuple[float, float]) -> Shape | None:
    """The shape of a labelled peak; None where fewer than four points lie within its limits."""
    start, end = trace.indices(interval)
    if end - start < 3:
        return None
    y = smooth(trace.intensity, 3)
    inside = y[start : end + 1]
    apex = start + int(np.argmax(inside))
    base = min(y[start], y[end])
    height = y[apex] - base
    raw = trace.intensity[start : end + 1]
    outside = np.concatenate([trace.intensity[:start], trace.intensity[end + 1 :]])
    wander = noise_level_of_spread(np.concatenate([y[:start], y[end + 1 :]]))
    noise = max(noise_level(outside), noise_level(raw) / 3.0, wander, 1e-9)
    return Shape(
        start,
        end,
        apex,
        width_at(y, apex, base + 0.5 * height),
        (y[apex] - 0.5 * (y[start] + y[end])) / noise,
        _correlation(raw),
        max(y[start] - base, y[end] - base) / max(height, 1e-9),
    )


def _correlation(values: np.ndarray) -> float:
    """Correlation of a series with itself one point later."""
    centred = values - values.mean()
    total = float(np.dot(centred, centred))
    return float(np.dot(centred[1:], centred[:-1])) / total if total > 0 else 0.0


def deepest_valley(y: np.ndarray) -> float:
    """Largest fall between two tops, relative to the lower of them."""
    left = np.maximum.accumulate(y)
    right = np.maximum.accumulate(y[::-1])[::-1]
    lower = np.minimum(left, right)
    return float(np.max(np.where(lower > 0, 1.0 - y / np.maximum(lower, 1e-12), 0.0)))
