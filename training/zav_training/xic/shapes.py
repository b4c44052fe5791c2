# SPDX-License-Identifier: Apache-2.0
"""Shapes of chromatographic peaks."""

from dataclasses import dataclass

import numpy as np
from scipy.special import erfcx

#: Fine grid on which a shape is measured, in units of its width.
GRID = np.linspace(-14.0, 30.0, 881)


@dataclass
class Peak:
    """One peak: its place in points, its height, and its shape sampled over `offset`."""

    apex: float
    height: float
    half_width: float
    foot: tuple[float, float]
    offset: np.ndarray
    shape: np.ndarray

    def curve(self, t: np.ndarray) -> np.ndarray:
        """The shape at the given points, 1 at the apex."""
        return np.interp(t - self.apex, self.offset, self.shape, left=0.0, right=0.0)

    def limits(self, drawn: float, gaussian_foot: float) -> tuple[float, float]:
        """Limits drawn around the peak, so that they hold `drawn` widths at half height.

        A tail counts by the geometric mean of that rule and of the width at 1 % of the apex.
        """
        left, right = self.foot
        tailing = gaussian_foot * self.half_width / max(left + right, 1e-9)
        scale = drawn / gaussian_foot * np.sqrt(tailing)
        return self.apex - scale * left, self.apex + scale * right


def draw_peak(rng: np.random.Generator, apex: float, sigma: float, height: float) -> Peak:
    """A peak of random shape whose Gaussian part has the given width in points."""
    shape = _draw_shape(rng)
    if rng.random() < 0.12:
        shape, grid = shape[::-1], -GRID[::-1]
    else:
        grid = GRID
    top = int(np.argmax(shape))
    shape = shape / shape[top]
    offset = (grid - grid[top]) * sigma
    half = _width(offset, shape, top, 0.5)
    return Peak(apex, height, sum(half), _width(offset, shape, top, 0.01), offset, shape)


def _width(offset: np.ndarray, shape: np.ndarray, top: int, level: float) -> tuple[float, float]:
    """Distance from the apex to the outermost place at a level, left and right."""
    above = np.flatnonzero(shape >= level)
    return float(-offset[above[0]]), float(offset[above[-1]])


def _draw_shape(rng: np.random.Generator) -> np.ndarray:
    kind = rng.random()
    if kind < 0.55:
        return exponentially_modified(float(rng.uniform(0.02, 3.0) * rng.random()))
    if kind < 0.72:
        return _two_sided(2.0, float(rng.uniform(1.0, 2.2)))
    if kind < 0.9:
        return _two_sided(float(rng.uniform(1.3, 4.0)), float(rng.uniform(1.0, 1.6)))
    if kind < 0.95:
        return _two_humps(float(rng.uniform(1.2, 2.4)), float(rng.uniform(0.4, 1.0)))
    return 0.92 * _two_sided(2.0, 1.3) + 0.08 / (1.0 + (GRID / 1.5) ** 2) * (np.abs(GRID) < 12)


def exponentially_modified(ratio: float) -> np.ndarray:
    """Gaussian of width 1 convolved with an exponential decay of `ratio`, over GRID."""
    if ratio < 0.05:
        return np.exp(-0.5 * GRID**2)
    argument = (1.0 / ratio - GRID) / np.sqrt(2.0)
    safe = np.exp(-0.5 * GRID**2) * erfcx(np.maximum(argument, -20.0))
    decay = 2.0 * np.exp(np.minimum(0.5 / ratio**2 - GRID / ratio, 50.0))
    return np.where(argument > -20.0, safe, decay)


def _two_sided(power: float, asymmetry: float) -> np.ndarray:
    z = np.where(GRID > 0, GRID / asymmetry, GRID)
    return np.exp(-0.5 * np.abs(z) ** power)


def _two_humps(distance: float, second: float) -> np.ndarray:
    """Two conformers too close to part: one broad peak with a flat or dented top."""
    return np.exp(-0.5 * GRID**2) + second * np.exp(-0.5 * (GRID - distance) ** 2)
