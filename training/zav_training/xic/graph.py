# SPDX-License-Identifier: Apache-2.0
"""The graph files: network, what makes one probability of its outputs, frozen weights.

A trace is fed as its blocks of 32 points, so that the one unknown dimension of the input leaves the
length of the trace free, and a file serves every length that is a multiple of 32.
"""

import math
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.graphs import INIT, Runner
from zav_training.xic import network

INPUT = "import/img"
OUTPUT = "import/conv2d_19/Sigmoid"
#: The shortest stretch that is computed; longer ones are twice, four times ... as long, so that few
#: shapes occur and the runtime's prepared convolutions are met again.
SHORTEST = 256
#: Beyond any place in a trace.
FAR = 1e9
#: How far below the cut the points between two parted peaks are at least.
LEAST_PARTING = 0.5
#: Logit of a point behind the used ones.
NOTHING = -30.0


@dataclass(frozen=True)
class LimitsRule:
    """How the two outputs of the limits network become one probability.

    A point counts as peak where its inside logit exceeds `inside`; its probability is then `cut` or
    more, and `steepness` sharpens it there. Of each run whose valley logits exceed `valley`, the
    surest point and its neighbours part two peaks: the rest of the valley belongs to them. Where
    a trace's best point fails by up to `rescue`, the whole trace is lifted so that the best point
    reaches `lifted`. No run reaches beyond its outermost points of half its height by more than
    `reach` times as many points as are that high. A run whose top rises less than `rise` (of the
    largest value) over the mean of its ends is dropped, unless it is the one that rises most.
    """

    told: tuple[float, float]
    inside: float = 0.0
    valley: float = 0.0
    cut: float = 0.2
    steepness: float = 2.0
    rescue: float = 4.0
    lifted: float = 1.0
    opening: int = 3
    reach: float = 2.0
    rise: float = 0.1

    @property
    def offset(self) -> float:
        """Logit of the cut."""
        return math.log(self.cut / (1.0 - self.cut))


@dataclass(frozen=True)
class SplitRule:
    """How the two outputs of the splitter become a probability with one strict maximum a split.

    A point counts where the surer of the two logits, over `valley` or `shoulder`, is above 0. Of
    those within `apart` points the surest is the split.
    """

    told: tuple[float, float]
    valley: float = 0.0
    shoulder: float = 0.0
    apart: int = 5


def limits_graph(weights: dict[str, np.ndarray], rule: LimitsRule) -> tf.Graph:
    """Input [-1, 32, 1, 1], the blocks of one trace of n points; output [1, n] probabilities."""
    graph = tf.Graph()
    with graph.as_default():
        x, used, short = _input(network.DETECTOR)
        logits = network.logits(weights, short, used, _told(rule.told), network.DETECTOR)
        inside = logits[:, :, 0] - rule.inside
        joined = part(inside, logits[:, :, 1] - rule.valley, used)
        _output(combine_limits(joined, short, used, rule) + rule.offset, x)
    return graph


def part(inside: tf.Tensor, valley: tf.Tensor, used: tf.Tensor) -> tf.Tensor:
    """Logits of peaks [1, n] from those of the two outputs, each 0 where it is undecided."""
    counts = tf.range(tf.shape(valley)[1]) < used[:, None]
    valley = tf.where(counts, valley, NOTHING)
    runs = _numbered(valley > 0.0)
    flat, count = tf.reshape(valley, [-1]), tf.size(valley) + 1
    surest = tf.gather(tf.math.unsorted_segment_max(flat, runs, count), runs)
    ridge = tf.reshape(tf.logical_and(flat >= surest, runs > 0), tf.shape(valley))
    near = _extreme(tf.cast(ridge, tf.float32), tf.maximum) > 0.0
    parted = tf.minimum(inside, -tf.maximum(valley, LEAST_PARTING))
    doubted = tf.where(valley > 0.0, inside, tf.minimum(inside, -valley))
    return tf.where(near, parted, doubted)


def combine_limits(joined: tf.Tensor, x: tf.Tensor, used: tf.Tensor, rule: LimitsRule) -> tf.Tensor:
    """Final logits, 0 at the cut, from joined ones and the trace x, both [1, n].

    Short runs are removed, empty traces are given their best, long feet are cut, flat runs dropped.
    """
    points = tf.range(tf.shape(joined)[1])
    joined = tf.where(points < used[:, None], joined, NOTHING)
    opened = joined
    for _ in range(rule.opening // 2):
        opened = _extreme(opened, tf.minimum)
    for _ in range(rule.opening // 2):
        opened = _extreme(opened, tf.maximum)
    best = tf.reduce_max(opened, 1, keepdims=True)
    lift = tf.where(best > -rule.rescue, tf.nn.relu(rule.lifted - best), 0.0)
    return rule.steepness * drop_flat(cut_feet(opened + lift, x, rule.reach), x, rule.rise)


def cut_feet(logits: tf.Tensor, x: tf.Tensor, reach: float) -> tf.Tensor:
    """Logits [B, n] without the points of a run that lie too far from its high ones."""
    inside = logits >= 0.0
    runs = _numbered(inside)
    count = tf.size(logits) + 1
    flat = tf.reshape(x, [-1])
    top = tf.gather(tf.math.unsorted_segment_max(flat, runs, count), runs)
    high = tf.logical_and(flat >= 0.5 * top, runs > 0)
    place = tf.cast(tf.range(tf.size(flat)), tf.float32)
    first = -tf.math.unsorted_segment_max(tf.where(high, -place, -FAR), runs, count)
    last = tf.math.unsorted_segment_max(tf.where(high, place, -FAR), runs, count)
    points = tf.math.unsorted_segment_sum(tf.cast(high, tf.float32), runs, count)
    room = reach * (points + 1.0)
    low, up = tf.gather(first - room, runs), tf.gather(last + room, runs)
    near = tf.reshape(tf.logical_and(place >= low, place <= up), tf.shape(logits))
    return tf.where(tf.logical_and(inside, ~near), tf.minimum(logits, 0.0) - 1.0, logits)


def drop_flat(logits: tf.Tensor, x: tf.Tensor, rise: float) -> tf.Tensor:
    """Logits [1, n] without the runs that hardly rise over the mean of their ends."""
    inside = logits >= 0.0
    runs = _numbered(inside)
    count, flat = tf.size(logits) + 1, tf.reshape(x, [-1])
    edges = tf.concat([runs[:1] * 0, runs, runs[:1] * 0], 0)
    is_end = tf.logical_or(tf.not_equal(edges[:-2], runs), tf.not_equal(edges[2:], runs))
    top = tf.math.unsorted_segment_max(flat, runs, count)
    high = tf.math.unsorted_segment_max(tf.where(is_end, flat, -FAR), runs, count)
    low = -tf.math.unsorted_segment_max(tf.where(is_end, -flat, -FAR), runs, count)
    rises = tf.gather(top - 0.5 * (high + low), runs)
    most = tf.reduce_max(tf.where(runs > 0, rises, -FAR))
    kept = tf.reshape(rises >= tf.minimum(rise, most), tf.shape(logits))
    return tf.where(tf.logical_and(inside, ~kept), tf.minimum(logits, 0.0) - 1.0, logits)


def _numbered(inside: tf.Tensor) -> tf.Tensor:
    """Number of the run that each point belongs to, from 1 on, 0 outside; rows [B, n] flattened."""
    before = tf.concat([tf.zeros_like(inside[:, :1]), inside[:, :-1]], 1)
    starts = tf.reshape(tf.logical_and(inside, ~before), [-1])
    number = tf.cumsum(tf.cast(starts, tf.int32))
    return tf.where(tf.reshape(inside, [-1]), number, 0)


def split_graph(weights: dict[str, np.ndarray], rule: SplitRule) -> tf.Graph:
    """Input [-1, 32, 1, 1], the blocks of one trace of n points; output [1, n] probabilities."""
    graph = tf.Graph()
    with graph.as_default():
        x, used, short = _input(network.SPLITTER)
        logits = network.logits(weights, short, used, _told(rule.told), network.SPLITTER)
        _output(combine_splits(logits, used, rule), x)
    return graph


def combine_splits(logits: tf.Tensor, used: tf.Tensor, rule: SplitRule) -> tf.Tensor:
    """Final logits [1, n], 0 at the cut, from both outputs [1, n, 2].

    What is not the largest within a few points is lowered, so that each split is found once; of
    equal ones the first stays.
    """
    joined = tf.reduce_max(logits - tf.constant([rule.valley, rule.shoulder]), 2)
    points = tf.range(tf.shape(joined)[1])
    joined = tf.where(points < used[:, None], joined, NOTHING)
    largest = joined
    for _ in range(rule.apart):
        largest = _extreme(largest, tf.maximum)
    repeats = tf.equal(joined[:, 1:], joined[:, :-1])
    again = tf.concat([tf.zeros_like(joined[:, :1], tf.bool), repeats], 1)
    chosen = tf.logical_and(joined >= largest, ~again)
    return tf.where(chosen, joined, tf.minimum(joined, 0.0) - 4.0)


def _told(conventions: tuple[float, float]) -> tf.Tensor:
    return tf.constant([conventions], tf.float32)


def _input(size: network.Size) -> tuple[tf.Tensor, tf.Tensor, tf.Tensor]:
    """The whole input [1, n], used points [1], and the stretch that is computed, levelled."""
    image = tf.compat.v1.placeholder(tf.float32, [None, network.STRIDE, 1, 1], name=INPUT)
    x = tf.reshape(image, [1, -1])
    n = tf.size(image)
    used = network.used_points(x, size)
    blocks = (tf.reduce_max(used) - 1) // SHORTEST
    doubled = sum(tf.cast(blocks >= 2**i, tf.int32) * 2**i for i in range(8)) + 1
    short = tf.slice(x, [0, 0], tf.stack([-1, tf.minimum(SHORTEST * doubled, n)]))
    return x, used, network.levelled(short, used, size)


def _output(logits: tf.Tensor, x: tf.Tensor) -> None:
    """Probabilities of all points, those that were not computed being 0."""
    missing = tf.shape(x)[1] - tf.shape(logits)[1]
    full = tf.pad(logits, tf.stack([[0, 0], tf.stack([0, missing])]), constant_values=NOTHING)
    tf.sigmoid(full, name=OUTPUT)
    tf.no_op(name=INIT)


def _extreme(x: tf.Tensor, pick: object) -> tf.Tensor:
    """Smallest or largest of each point and its two neighbours; the ends are repeated."""
    left = tf.concat([x[:, :1], x[:, :-1]], 1)
    right = tf.concat([x[:, 1:], x[:, -1:]], 1)
    return pick(x, pick(left, right))


def trace_runner(path: Path) -> Callable[[np.ndarray], np.ndarray]:
    """Runs a graph file on one trace [1, n]."""
    runner = Runner(path, INPUT, OUTPUT)
    return lambda x: runner(x.reshape(-1, network.STRIDE, 1, 1))
