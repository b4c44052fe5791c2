# SPDX-License-Identifier: Apache-2.0
"""The network as it is trained.

The trunk sees the peptidoform and the kind of spectra; precursor charge and collision energy come
in late, in the head, so that a peptidoform's trunk serves all its charges and energies. The kind,
the charge and the energy scale and shift channels (FiLM); an export folds the kind into the
weights. All arithmetic is on [peptides * rows, channels] matrices.
"""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms import features
from zav_training.msms.network import COUNT_SCALE, MAX_LOGIT
from zav_training.msms.vocabulary import LETTERS
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.sources import NAMES
from zav_training.peptidoforms.spectra import CHARGES

LETTER_COUNT = len(LETTERS)
INPUT_WIDTH = LETTER_COUNT + 2 * rows.ATOMS + features.WIDTH
#: What is counted left and right of a bond: letters, and the atoms of all modifications.
COUNTED = LETTER_COUNT + rows.ATOMS
HEAD_EXTRA = 2 * COUNTED + features.WIDTH


@dataclass(frozen=True)
class Shape:
    """Sizes of a network.

    width      channels of the trunk
    head       channels of the head
    kind       size of the embedding of a kind of spectra
    charge     size of the embedding of a precursor charge
    dilations  of the 3-tap convolution of each trunk block, in residues
    pooled     trunk block that is also given the mean over the peptide
    dropout    share of the hidden channels that training sets to 0
    """

    width: int = 96
    head: int = 128
    kind: int = 16
    charge: int = 16
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
        self._table = features.position_table(rows.LONGEST)
        self._atoms = np.concatenate([rows.ATOM_SCALE, rows.ATOM_SCALE])
        self._declare()

    def _declare(self) -> None:
        s = self.shape
        self._add("kind", (len(NAMES), s.kind), 0.3)
        self._add("charge", (len(CHARGES) + 1, s.charge), 0.3)
        self._dense("input", INPUT_WIDTH, s.width, 3.0)
        self._add("input/film", (s.kind, 2 * s.width), 0.02)
        for index in range(len(s.dilations)):
            self._dense(f"block{index}/taps", 3 * s.width, s.width)
            self._add(f"block{index}/film", (s.kind, 2 * s.width), 0.02)
            self._dense(f"block{index}/out", s.width, s.width, 0.3)
        self._dense("pool/in", s.width, s.width)
        self._dense("pool/out", s.width, s.width, 0.3)
        self._dense("head", 2 * s.width + HEAD_EXTRA, s.head)
        self._dense("residual", s.head, s.head, 0.5)
        self._dense("logits", s.head, ladder.COUNT, 0.3)
        self._add("logits/charge", (len(CHARGES) + 1, ladder.COUNT), 0.0)
        for name in ("head", "residual", "logits"):
            self._add(f"{name}/film", (s.kind + s.charge, 2 * s.head), 0.02)
            self._add(f"{name}/energy", (2 + s.charge, 2 * s.head), 0.0)

    def _add(self, name: str, shape: tuple[int, ...], scale: float) -> None:
        value = self._random.normal(0.0, 1.0, shape) * scale
        self.weights[name] = tf.Variable(value.astype(np.float32), name=name)

    def _dense(self, name: str, inputs: int, outputs: int, gain: float = 1.0) -> None:
        self._add(f"{name}/w", (inputs, outputs), gain * np.sqrt(2.0 / inputs))
        self._add(f"{name}/b", (outputs,), 0.0)

    def __call__(
        self,
        encoded: tf.Tensor,
        charge: tf.Tensor,
        kind: tf.Tensor,
        energy: tf.Tensor,
        training: bool = False,
    ) -> tf.Tensor:
        """Logits in sites, [B, n, 27]; the row of the last residue and those beyond mean nothing.

        encoded float [B, n, 13]; charge and kind int32 [B]; energy float [B], (NCE - 30) / 10,
        0 where it is unknown.
        """
        kind_vector = tf.gather(self.weights["kind"], kind)
        hidden = self.bonds(encoded, kind_vector, training)
        return self.head(hidden, charge, kind_vector, energy, training)

    def bonds(self, encoded: tf.Tensor, kind_vector: tf.Tensor, training: bool) -> tf.Tensor:
        """What depends on the peptidoform alone: the head's first layer, [B, n, head]."""
        letters = tf.cast(encoded[:, :, 0], tf.int32)
        count = tf.shape(letters)[1]
        length = tf.math.count_nonzero(letters, 1, dtype=tf.int32)
        place = tf.gather(self._table, length)[:, :count]
        mask = place[:, :, features.MASK :][:, :, :1]
        one_hot = tf.one_hot(letters, LETTER_COUNT + 1)[:, :, 1:]
        atoms = encoded[:, :, 1:] / self._atoms
        x = tf.concat([one_hot, atoms, place], 2)
        x = self._matmul("input", x)
        trunk = tf.nn.relu(self._film("input", x, kind_vector)) * mask
        for index in range(len(self.shape.dilations)):
            trunk = (trunk + self._block(index, trunk, mask, kind_vector, training)) * mask
        counted = tf.concat([one_hot, atoms[:, :, : rows.ATOMS] + atoms[:, :, rows.ATOMS :]], 2)
        left = tf.cumsum(counted, 1) / COUNT_SCALE
        right = tf.reduce_sum(counted, 1, keepdims=True) / COUNT_SCALE - left
        after = tf.pad(trunk, [[0, 0], [0, 1], [0, 0]])[:, 1:]
        return self._matmul("head", tf.concat([trunk, after, left, right, place], 2))

    def head(
        self,
        bonds: tf.Tensor,
        charge: tf.Tensor,
        kind_vector: tf.Tensor,
        energy: tf.Tensor,
        training: bool,
    ) -> tf.Tensor:
        """Logits of precursors, [B, n, 27]."""
        charge_vector = tf.gather(self.weights["charge"], charge)
        condition = tf.concat([kind_vector, charge_vector], 1)
        drive = tf.concat(
            [energy[:, None], tf.square(energy)[:, None], energy[:, None] * charge_vector], 1
        )
        hidden = tf.nn.relu(self._late("head", bonds, condition, drive))
        inner = self._matmul("residual", self._drop(hidden, training))
        hidden += tf.nn.relu(self._late("residual", inner, condition, drive))
        hidden = self._late("logits", self._drop(hidden, training), condition, drive)
        own = tf.gather(self.weights["logits/charge"], charge)
        return tf.minimum(self._matmul("logits", hidden) + own[:, None], MAX_LOGIT)

    def _matmul(self, name: str, x: tf.Tensor) -> tf.Tensor:
        w, b = self.weights[f"{name}/w"], self.weights[f"{name}/b"]
        flat = tf.nn.bias_add(tf.reshape(x, [-1, w.shape[0]]) @ w, b)
        return tf.reshape(flat, tf.concat([tf.shape(x)[:-1], [w.shape[1]]], 0))

    def _film(self, name: str, x: tf.Tensor, condition: tf.Tensor) -> tf.Tensor:
        scale, shift = tf.split(condition @ self.weights[f"{name}/film"], 2, axis=-1)
        return x * (1.0 + scale)[:, None] + shift[:, None]

    def _late(self, name: str, x: tf.Tensor, condition: tf.Tensor, drive: tf.Tensor) -> tf.Tensor:
        change = condition @ self.weights[f"{name}/film"] + drive @ self.weights[f"{name}/energy"]
        scale, shift = tf.split(change, 2, axis=-1)
        return x * (1.0 + scale)[:, None] + shift[:, None]

    def _drop(self, x: tf.Tensor, training: bool) -> tf.Tensor:
        return tf.nn.dropout(x, self.shape.dropout) if training and self.shape.dropout else x

    def _block(
        self, index: int, trunk: tf.Tensor, mask: tf.Tensor, kind: tf.Tensor, training: bool
    ) -> tf.Tensor:
        name, reach = f"block{index}", self.shape.dilations[index]
        count = tf.shape(trunk)[1]
        padded = tf.pad(trunk, [[0, 0], [reach, reach], [0, 0]])
        taps = [padded[:, i * reach : i * reach + count] for i in range(3)]
        hidden = self._matmul(f"{name}/taps", tf.concat(taps, 2))
        if index == self.shape.pooled:
            mean = tf.reduce_sum(trunk, 1) / tf.reduce_sum(mask, 1)
            pooled = tf.nn.relu(self._matmul("pool/in", mean))
            hidden += self._matmul("pool/out", pooled)[:, None]
        hidden = tf.nn.relu(self._film(name, hidden, kind))
        return self._matmul(f"{name}/out", self._drop(hidden, training))
