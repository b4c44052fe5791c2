# SPDX-License-Identifier: Apache-2.0
"""What the exported graphs that read peptidoform rows have in common.

All stages keep the shape [B, 1, n, channels] that Conv2D takes. The rows are cropped to the longest
peptide of the batch first.
"""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms import features
from zav_training.msms.vocabulary import LETTERS

INPUT = "peptidoforms"


@dataclass
class Peptides:
    """A batch of peptidoforms inside a graph.

    one_hot  [B, 1, n, 20];  atoms  [B, 1, n, 12], scaled;  place  [B, 1, n, 21]
    mask     [B, 1, n, 1], 1 in a row of the peptide;  length  int32 [B];  count  int32, n
    """

    one_hot: tf.Tensor
    atoms: tf.Tensor
    place: tf.Tensor
    mask: tf.Tensor
    length: tf.Tensor
    count: tf.Tensor

    def features(self) -> tf.Tensor:
        """All columns, [B, 1, n, 53]."""
        return tf.concat([self.one_hot, self.atoms, self.place], 3)


def read_peptides() -> Peptides:
    """The input of a graph, and what follows from it."""
    shape = [None, rows.LONGEST, rows.WIDTH]
    encoded = tf.compat.v1.placeholder(tf.float32, shape, name=INPUT)
    present = tf.minimum(encoded[:, :, 0], 1.0)
    length = tf.cast(tf.reduce_sum(present, 1), tf.int32)
    count = tf.reduce_max(length)
    cropped = tf.expand_dims(tf.slice(encoded, [0, 0, 0], tf.stack([-1, count, -1])), 1)
    letters = tf.cast(cropped[:, :, :, 0], tf.int32)
    scale = np.concatenate([rows.ATOM_SCALE, rows.ATOM_SCALE])
    place = tf.gather(features.position_table(rows.LONGEST)[:, None], length)
    place = tf.slice(place, [0, 0, 0, 0], tf.stack([-1, 1, count, features.WIDTH]))
    return Peptides(
        tf.one_hot(letters - 1, len(LETTERS)),
        cropped[:, :, :, 1:] / scale,
        place,
        place[:, :, :, features.MASK :][:, :, :, :1],
        length,
        count,
    )


def convolve(x: tf.Tensor, taps: np.ndarray, dilation: int = 1) -> tf.Tensor:
    """Taps [width, inputs, outputs] along the rows; as many rows come out."""
    return tf.nn.conv2d(x, taps[None], 1, "SAME", dilations=[1, 1, dilation, 1])


def dense(x: tf.Tensor, w: np.ndarray, b: np.ndarray) -> tf.Tensor:
    """A dense layer on every row."""
    return tf.nn.bias_add(convolve(x, w[None]), b)


def mean(trunk: tf.Tensor, peptides: Peptides) -> tf.Tensor:
    """The mean over each peptide, [B, channels]."""
    return tf.reduce_sum(trunk, [1, 2]) / tf.cast(peptides.length, tf.float32)[:, None]


def as_row(x: tf.Tensor) -> tf.Tensor:
    """[B, channels] as one row for all, [B, 1, 1, channels]."""
    return tf.reshape(x, [-1, 1, 1, x.shape[-1]])
