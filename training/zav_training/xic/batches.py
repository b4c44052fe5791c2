# SPDX-License-Identifier: Apache-2.0
"""Batches of examples, prepared as the library prepares a trace."""

from collections.abc import Callable, Iterator
from dataclasses import dataclass

import numpy as np

from zav_training.xic.examples import (
    Backgrounds,
    Example,
    RealTraces,
    lift,
    mirrored,
    simulated_example,
)
from zav_training.xic.pipeline import PADDING, LimitsOptions, gaussian_filter, prepare_rows
from zav_training.xic.splits import RealNeighbours, simulated_split
from zav_training.xic.traces import LEAST_POINTS

#: Points a trace, traces a batch, and how often.
SHAPES = (
    (128, 64, 0.2),
    (256, 48, 0.22),
    (512, 32, 0.33),
    (1024, 16, 0.15),
    (2048, 8, 0.06),
    (4096, 4, 0.04),
)
#: The same for the splitter, which meets every scale.
SPLIT_SHAPES = (
    (64, 96, 0.1),
    (128, 64, 0.14),
    (256, 48, 0.2),
    (512, 32, 0.22),
    (1024, 16, 0.16),
    (2048, 8, 0.11),
    (4096, 4, 0.07),
)
SIMULATED_SHARE = 0.6
SPLIT_SIMULATED_SHARE = 0.65
BACKGROUND_SHARE = 0.45
#: Examples kept for each length, and the share of new ones from then on.
POOLED, FRESH = 3000, 0.35


@dataclass
class Batch:
    """x [B, n], targets and weights [B, n, heads], conventions [B, 2]."""

    x: np.ndarray
    targets: np.ndarray
    weights: np.ndarray
    told: np.ndarray


def detector_batches(
    rng: np.random.Generator,
    real: RealTraces,
    backgrounds: Backgrounds,
    lifted: float = 0.0,
    neighbours: float = 0.0,
) -> Iterator[Batch]:
    """Batches without end; every trace is padded with -1 and smoothed together with its padding.

    `lifted` is the share of traces on a constant base, `neighbours` that of simulated ones with a
    small neighbour on flat ground.
    """
    options = LimitsOptions()

    def draw(points: int) -> Example:
        if len(real) and rng.random() > SIMULATED_SHARE:
            return lift(rng, crop(rng, real.draw(rng), points), lifted)
        length = _length(rng, LEAST_POINTS, points)
        base = backgrounds.draw(rng, length) if rng.random() < BACKGROUND_SHARE else None
        return lift(rng, simulated_example(rng, length, base, neighbours), lifted)

    kernel = gaussian_filter(options.gaussianFilterSize)
    return _batches(rng, draw, SHAPES, kernel, PADDING)


def splitter_batches(
    rng: np.random.Generator, real: RealNeighbours, backgrounds: Backgrounds
) -> Iterator[Batch]:
    """Batches without end; every trace is padded with 0 and not smoothed."""

    def draw(points: int) -> Example:
        if len(real) and rng.random() > SPLIT_SIMULATED_SHARE:
            return crop(rng, real.draw(rng), points)
        length = _length(rng, LEAST_POINTS, points)
        base = backgrounds.draw(rng, length) if rng.random() < BACKGROUND_SHARE else None
        return simulated_split(rng, length, base)

    return _batches(rng, draw, SPLIT_SHAPES, None, 0.0)


def _length(rng: np.random.Generator, least: int, points: int) -> int:
    """All of the points in two cases of five, else any number, short ones as often as long ones."""
    return points if rng.random() < 0.4 else int(np.exp(rng.uniform(*np.log((least, points + 1)))))


def _batches(
    rng: np.random.Generator,
    draw: Callable[[int], Example],
    shapes: tuple[tuple[int, int, float], ...],
    kernel: np.ndarray | None,
    padding: float,
) -> Iterator[Batch]:
    share = [s[2] for s in shapes]
    pools: dict[int, list[Example]] = {s[0]: [] for s in shapes}
    while True:
        points, count, _ = shapes[rng.choice(len(shapes), p=share)]
        examples = [_reuse(rng, pools[points], draw, points) for _ in range(count)]
        yield collate(examples, points, kernel, padding)


def _reuse(
    rng: np.random.Generator, pool: list[Example], draw: Callable[[int], Example], points: int
) -> Example:
    """A new example, which enters the pool, or one met before, mirrored: drawing is what costs."""
    if len(pool) < POOLED or rng.random() < FRESH:
        example = draw(points)
        if len(pool) < POOLED:
            pool.append(example)
        else:
            pool[rng.integers(POOLED)] = example
        return example
    return mirrored(pool[rng.integers(POOLED)])


def crop(rng: np.random.Generator, example: Example, points: int) -> Example:
    """At most the given number of points, around the middle of what counts most."""
    n = len(example.intensity)
    if n <= points:
        return example
    counted = np.flatnonzero(example.targets[0] > 0)
    middle = int(np.median(counted)) if len(counted) else n // 2
    first = int(np.clip(middle - rng.uniform(0.2, 0.8) * points, 0, n - points))
    window = slice(first, first + points)
    return Example(
        example.intensity[window],
        example.targets[:, window],
        example.weights[:, window],
        example.conventions,
    )


def collate(
    examples: list[Example], points: int, kernel: np.ndarray | None, padding: float
) -> Batch:
    """Pads examples to one length and prepares them; what is padded does not count."""
    count, heads = len(examples), examples[0].targets.shape[0]
    x = np.full((count, points), padding)
    targets = np.zeros((count, points, heads), np.float32)
    weights = np.zeros((count, points, heads), np.float32)
    for i, example in enumerate(examples):
        n = len(example.intensity)
        x[i, :n] = example.intensity
        targets[i, :n], weights[i, :n] = example.targets.T, example.weights.T
    told = np.stack([e.conventions for e in examples])
    return Batch(prepare_rows(x, kernel), targets, weights, told)
