# SPDX-License-Identifier: Apache-2.0
"""The network as it is trained: one trunk for all charges and sources.

Charge and source enter as a condition that scales and shifts channels (FiLM), so that an export can
fold them into the weights. All arithmetic is on [peptides * rows, channels] matrices.
"""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training.msms import features, ladder, vocabulary
from zav_training.msms.sources import SHIPPED, SOURCES, TYPICAL, TYPICAL_MEAN, shipped_sources

#: Counts of residues left and right of a bond are divided by this, to be of the order of 1.
COUNT_SCALE = 8.0
#: Logits are limited to it, so that no export can overflow.
MAX_LOGIT = 6.0
RESIDUES = vocabulary.WIDTH - 1
INPUT_WIDTH = RESIDUES + features.WIDTH
HEAD_EXTRA = 2 * RESIDUES + features.WIDTH


@dataclass(frozen=True)
class Shape:
    """Sizes of a network.

    width      channels of the trunk
    head       channels of the head
    condition  size of the charge's and of the source's embedding, each
    dilations  of the 3-tap convolution of each trunk block, in residues
    pooled     trunk block that is also given the mean over the peptide
    dropout    share of the hidden channels that training sets to 0
    """

    width: int = 96
    head: int = 128
    condition: int = 16
    dilations: tuple[int, ...] = (1, 1, 2, 3)
    pooled: int = 2
    dropout: float = 0.1


class Network(tf.Module):
    """Weights and forward pass. Logits are log intensities on any scale, at most 6."""

    def __init__(self, shape: Shape, seed: int) -> None:
        super().__init__()
        self.shape = shape
        self._random = np.random.default_rng(seed)
        self.weights: dict[str, tf.Variable] = {}
        self._table = tf.constant(features.position_table(vocabulary.LONGEST))
        self._declare()

    def _declare(self) -> None:
        s = self.shape
        condition = 2 * s.condition
        self._add("charge", (len(vocabulary.CHARGES) + 1, s.condition), 0.3)
        self._add("source", (len(SOURCES) + 1, s.condition), 0.3)
        self._dense("input", INPUT_WIDTH, s.width, 3.0)
        self._add("input/film", (condition, 2 * s.width), 0.05)
        for index in range(len(s.dilations)):
            self._dense(f"block{index}/taps", 3 * s.width, s.width)
            self._add(f"block{index}/film", (condition, 2 * s.width), 0.05)
            self._dense(f"block{index}/out", s.width, s.width, 0.3)
        self._dense("pool/in", s.width, s.width)
        self._dense("pool/out", s.width, s.width, 0.3)
        self._dense("head", 2 * s.width + HEAD_EXTRA, s.head)
        self._add("head/film", (condition, 2 * s.head), 0.05)
        self._dense("head/residual", s.head, s.head, 0.5)
        series = len(ladder.SERIES)
        self._dense("logits", s.head, series, 0.3)
        self._add("logits/charge", (len(vocabulary.CHARGES), s.head + 1, series), 0.0)

    def _add(self, name: str, shape: tuple[int, ...], scale: float) -> None:
        value = self._random.normal(0.0, 1.0, shape) * scale
        self.weights[name] = tf.Variable(value.astype(np.float32), name=name)

    def _dense(self, name: str, inputs: int, outputs: int, gain: float = 1.0) -> None:
        self._add(f"{name}/w", (inputs, outputs), gain * np.sqrt(2.0 / inputs))
        self._add(f"{name}/b", (outputs,), 0.0)

    def condition(self, charge: tf.Tensor, source: tf.Tensor) -> tf.Tensor:
        """The condition vector of each peptide, [B, 2 * condition].

        A source is an index into SOURCES or GENERIC, which have embeddings of their own, or
        TYPICAL_MEAN or SHIPPED, which are means of some.
        """
        w = self.weights
        mean = tf.reduce_mean(tf.gather(w["source"], list(TYPICAL)), 0, keepdims=True)
        own = tf.gather(tf.concat([w["source"], mean], 0), tf.minimum(source, TYPICAL_MEAN))
        shipped = tf.constant(shipped_sources()) @ w["source"][: len(SOURCES)]
        chosen = tf.where(source[:, None] == SHIPPED, tf.gather(shipped, charge), own)
        return tf.concat([tf.gather(w["charge"], charge), chosen], 1)

    def shipped_condition(self, charge: tf.Tensor) -> tf.Tensor:
        """The condition vector that exported networks have, [B, 2 * condition]."""
        return self.condition(charge, tf.fill(tf.shape(charge), SHIPPED))

    def film(self, name: str, condition: tf.Tensor) -> tuple[tf.Tensor, tf.Tensor]:
        """Scale and shift of each channel, both [B, channels]."""
        scale, shift = tf.split(condition @ self.weights[f"{name}/film"], 2, axis=-1)
        return 1.0 + scale, shift

    def __call__(
        self,
        residues: tf.Tensor,
        length: tf.Tensor,
        charge: tf.Tensor,
        condition: tf.Tensor,
        training: bool = False,
    ) -> tf.Tensor:
        """Logits in sites, [B, n, 11]; the row of the last residue and those beyond mean nothing.

        residues int32 [B, n], columns of the vocabulary, 0 beyond a peptide; length and charge
        int32 [B]; condition as `condition` or `shipped_condition` gives it.
        """
        rows = tf.shape(residues)[1]
        one_hot = tf.one_hot(residues, vocabulary.WIDTH)[:, :, 1:]
        place = tf.gather(self._table, length)[:, :rows]
        mask = place[:, :, features.MASK :][:, :, :1]
        trunk = self._input(tf.concat([one_hot, place], 2), condition) * mask
        for index in range(len(self.shape.dilations)):
            trunk = (trunk + self._block(index, trunk, mask, condition, training)) * mask
        return self._head(trunk, one_hot, place, charge, condition, training)

    def _matmul(self, name: str, x: tf.Tensor) -> tf.Tensor:
        """x [B, n, inputs] times the weights, plus the bias."""
        w, b = self.weights[f"{name}/w"], self.weights[f"{name}/b"]
        flat = tf.nn.bias_add(tf.reshape(x, [-1, w.shape[0]]) @ w, b)
        return tf.reshape(flat, [tf.shape(x)[0], -1, w.shape[1]])

    def _drop(self, x: tf.Tensor, training: bool) -> tf.Tensor:
        return tf.nn.dropout(x, self.shape.dropout) if training else x

    def _input(self, x: tf.Tensor, condition: tf.Tensor) -> tf.Tensor:
        scale, shift = self.film("input", condition)
        return tf.nn.relu(self._matmul("input", x) * scale[:, None] + shift[:, None])

    def _block(
        self,
        index: int,
        trunk: tf.Tensor,
        mask: tf.Tensor,
        condition: tf.Tensor,
        training: bool,
    ) -> tf.Tensor:
        name, reach = f"block{index}", self.shape.dilations[index]
        rows = tf.shape(trunk)[1]
        padded = tf.pad(trunk, [[0, 0], [reach, reach], [0, 0]])
        taps = [padded[:, i * reach : i * reach + rows] for i in range(3)]
        hidden = self._matmul(f"{name}/taps", tf.concat(taps, 2))
        if index == self.shape.pooled:
            hidden += self._pool(trunk, mask)[:, None]
        scale, shift = self.film(name, condition)
        hidden = tf.nn.relu(hidden * scale[:, None] + shift[:, None])
        return self._matmul(f"{name}/out", self._drop(hidden, training))

    def _pool(self, trunk: tf.Tensor, mask: tf.Tensor) -> tf.Tensor:
        w = self.weights
        mean = tf.reduce_sum(trunk, 1) / tf.reduce_sum(mask, 1)
        hidden = tf.nn.relu(mean @ w["pool/in/w"] + w["pool/in/b"])
        return hidden @ w["pool/out/w"] + w["pool/out/b"]

    def _head(
        self,
        trunk: tf.Tensor,
        one_hot: tf.Tensor,
        place: tf.Tensor,
        charge: tf.Tensor,
        condition: tf.Tensor,
        training: bool,
    ) -> tf.Tensor:
        left = tf.cumsum(one_hot, 1) / COUNT_SCALE
        right = tf.reduce_sum(one_hot, 1, keepdims=True) / COUNT_SCALE - left
        after = tf.pad(trunk, [[0, 0], [0, 1], [0, 0]])[:, 1:]
        hidden = self._matmul("head", tf.concat([trunk, after, left, right, place], 2))
        scale, shift = self.film("head", condition)
        hidden = tf.nn.relu(hidden * scale[:, None] + shift[:, None])
        residual = tf.nn.relu(self._matmul("head/residual", self._drop(hidden, training)))
        return self._logits(self._drop(hidden + residual, training), charge)

    def _logits(self, hidden: tf.Tensor, charge: tf.Tensor) -> tf.Tensor:
        every = tf.transpose(self.weights["logits/charge"], [1, 0, 2])
        every = tf.reshape(every, [self.shape.head + 1, -1])
        flat = tf.reshape(hidden, [-1, self.shape.head]) @ every[:-1] + every[-1]
        series = len(ladder.SERIES)
        by_charge = tf.reshape(flat, [tf.shape(hidden)[0], -1, len(vocabulary.CHARGES), series])
        own = tf.one_hot(charge - 1, len(vocabulary.CHARGES))[:, None, :, None]
        logits = self._matmul("logits", hidden) + tf.reduce_sum(by_charge * own, 2)
        return tf.minimum(logits, MAX_LOGIT)
