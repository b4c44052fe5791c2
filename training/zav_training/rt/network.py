# SPDX-License-Identifier: Apache-2.0
"""The network as it is trained: one trunk, a head for each chromatography.

All arithmetic is on [peptidoforms * rows, channels] matrices.
"""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms import features
from zav_training.msms.vocabulary import LETTERS
from zav_training.rt.data import HEADS

INPUT_WIDTH = len(LETTERS) + 2 * rows.ATOMS + features.WIDTH
SUM_SCALE = 0.1
#: Pieces of a head's monotone map, and the range that they divide.
PIECES = 12
REACH = 2.5
#: The head that is not mapped: it fixes the scale of the network's number.
UNMAPPED = HEADS.index("proteometools")


@dataclass(frozen=True)
class Shape:
    """Sizes of a network.

    width      channels of the trunk
    mixing     hidden channels in which letter and modification interact
    pooled     channels that are summed over the peptide
    hidden     channels of the two layers after that
    dilations  of the 3-tap convolution of each trunk block, in residues
    averaged   trunk block that is also given the mean over the peptide
    """

    width: int = 64
    mixing: int = 32
    pooled: int = 96
    hidden: tuple[int, int] = (128, 64)
    dilations: tuple[int, ...] = (1, 1, 2, 3)
    averaged: int = 2


class Network(tf.Module):
    """Weights and forward pass."""

    def __init__(self, shape: Shape, seed: int) -> None:
        super().__init__()
        self.shape = shape
        self._random = np.random.default_rng(seed)
        self.weights: dict[str, tf.Variable] = {}
        self._table = features.position_table(rows.LONGEST)
        self._declare()

    def _declare(self) -> None:
        s = self.shape
        self._dense("input", INPUT_WIDTH, s.width, 2.0)
        self._dense("mixing/in", INPUT_WIDTH, s.mixing, 2.0)
        self._dense("mixing/out", s.mixing, s.width)
        for index in range(len(s.dilations)):
            self._dense(f"block{index}/taps", 3 * s.width, s.width)
            self._dense(f"block{index}/out", s.width, s.width, 0.3)
        self._dense("average", s.width, s.width, 0.5)
        self._dense("pooled", s.width, s.pooled)
        first, last = s.hidden
        self._dense("hidden0", 4 * s.pooled, first)
        self._dense("hidden1", first, last)
        self._dense("number", last, 1)
        self._add("heads", (last + 1, len(HEADS)), 0.0)
        step = 2.0 * REACH / PIECES
        slopes = np.full((len(HEADS), PIECES), np.log(np.e - 1.0), dtype=np.float32)
        self.weights["map/slope"] = tf.Variable(slopes, name="map/slope")
        self._add("map/offset", (len(HEADS),), 0.0)
        self.knots = (-REACH + step * np.arange(1, PIECES)).astype(np.float32)

    def _add(self, name: str, shape: tuple[int, ...], scale: float) -> None:
        value = self._random.normal(0.0, 1.0, shape) * scale
        self.weights[name] = tf.Variable(value.astype(np.float32), name=name)

    def _dense(self, name: str, inputs: int, outputs: int, gain: float = 1.0) -> None:
        self._add(f"{name}/w", (inputs, outputs), gain * np.sqrt(2.0 / inputs))
        self._add(f"{name}/b", (outputs,), 0.0)

    def __call__(self, encoded: tf.Tensor) -> tf.Tensor:
        """What each head predicts, in its source's scale, [B, heads]; encoded float [B, n, 13]."""
        return self._heads(self._hidden(encoded))

    def heads_and_hidden(self, encoded: tf.Tensor) -> tf.Tensor:
        """The heads, and behind them the last hidden layer, [B, heads + hidden]."""
        hidden = self._hidden(encoded)
        return tf.concat([self._heads(hidden), hidden], 1)

    def _hidden(self, encoded: tf.Tensor) -> tf.Tensor:
        letters = tf.cast(encoded[:, :, 0], tf.int32)
        count = tf.shape(letters)[1]
        length = tf.math.count_nonzero(letters, 1, dtype=tf.int32)
        place = tf.gather(self._table, length)[:, :count]
        mask = place[:, :, features.MASK :][:, :, :1]
        scale = np.concatenate([rows.ATOM_SCALE, rows.ATOM_SCALE])
        one_hot = tf.one_hot(letters, len(LETTERS) + 1)[:, :, 1:]
        x = tf.concat([one_hot, encoded[:, :, 1:] / scale, place], 2)
        mixed = self._matmul("mixing/out", tf.nn.relu(self._matmul("mixing/in", x)))
        trunk = (self._matmul("input", x) + mixed) * mask
        for index in range(len(self.shape.dilations)):
            trunk = (trunk + self._block(index, trunk, mask)) * mask
        return self._pool(trunk, mask)

    def _matmul(self, name: str, x: tf.Tensor) -> tf.Tensor:
        w, b = self.weights[f"{name}/w"], self.weights[f"{name}/b"]
        flat = tf.nn.bias_add(tf.reshape(x, [-1, w.shape[0]]) @ w, b)
        return tf.reshape(flat, tf.concat([tf.shape(x)[:-1], [w.shape[1]]], 0))

    def _block(self, index: int, trunk: tf.Tensor, mask: tf.Tensor) -> tf.Tensor:
        name, reach = f"block{index}", self.shape.dilations[index]
        count = tf.shape(trunk)[1]
        padded = tf.pad(trunk, [[0, 0], [reach, reach], [0, 0]])
        taps = [padded[:, i * reach : i * reach + count] for i in range(3)]
        hidden = self._matmul(f"{name}/taps", tf.concat(taps, 2))
        if index == self.shape.averaged:
            mean = tf.reduce_sum(trunk, 1) / tf.reduce_sum(mask, 1)
            hidden += self._matmul("average", mean)[:, None]
        return self._matmul(f"{name}/out", tf.nn.relu(hidden))

    def _pool(self, trunk: tf.Tensor, mask: tf.Tensor) -> tf.Tensor:
        """The last hidden layer, [B, hidden]."""
        each = tf.nn.relu(self._matmul("pooled", trunk)) * mask
        total = tf.reduce_sum(each, 1)
        size = tf.reduce_sum(mask, 1)
        last = tf.reduce_sum(each * self._last(mask), 1)
        parts = tf.concat([total * SUM_SCALE, total / size, each[:, 0], last], 1)
        hidden = tf.nn.relu(self._matmul("hidden0", parts))
        return tf.nn.relu(self._matmul("hidden1", hidden))

    @staticmethod
    def _last(mask: tf.Tensor) -> tf.Tensor:
        """1 in the row of the last residue, [B, n, 1]."""
        return mask - tf.pad(mask, [[0, 0], [0, 1], [0, 0]])[:, 1:]

    def _heads(self, hidden: tf.Tensor) -> tf.Tensor:
        heads = self.weights["heads"]
        number = self._matmul("number", hidden)
        own = number + hidden @ heads[:-1] + heads[-1]
        return self.mapped(own)

    def mapped(self, own: tf.Tensor) -> tf.Tensor:
        """Each head's number [B, heads] through its monotone map; one head has none."""
        beyond = own[:, :, None] - self.knots
        step = 2.0 * REACH / PIECES
        left = tf.minimum(beyond[:, :, :1], 0.0)
        inner = tf.clip_by_value(beyond[:, :, :-1], 0.0, step)
        right = tf.maximum(beyond[:, :, -1:], 0.0)
        pieces = tf.concat([left, inner, right], 2)
        slope = tf.nn.softplus(self.weights["map/slope"])
        curve = tf.reduce_sum(pieces * slope, 2) + self.knots[0] + self.weights["map/offset"]
        plain = tf.one_hot(UNMAPPED, len(HEADS))
        return own * plain + curve * (1.0 - plain)

    def deviation(self) -> tf.Tensor:
        """Mean square of what the heads add to the common number."""
        return tf.reduce_mean(tf.square(self.weights["heads"][:-1]))
