# SPDX-License-Identifier: Apache-2.0
"""The frozen graph of one charge.

At batch 1 a run costs what its number of operations costs, so there are few and large ones: all
stages keep the shape [B, 1, n, channels] that Conv2D takes, and one table look-up by peptide length
replaces the arithmetic on positions, another the arrangement of the ladder. The rows are cropped to
the longest peptide of the batch first.
"""

from dataclasses import replace

import numpy as np
import tensorflow as tf

from zav_training.graphs import INIT
from zav_training.msms import features, ladder, vocabulary
from zav_training.msms.folded import Block, Dense, Folded
from zav_training.msms.metrics import CUT, CUT_FACTOR
from zav_training.msms.network import MAX_LOGIT, RESIDUES

INPUT = "import/conv1d_1_input"
OUTPUT = "import/dense_3/BiasAdd"
#: Added to the m/z excess of what is no cleavage site; a power of two, so that it cancels exactly.
NO_SITE = 16384.0
#: Lowers a logit for each Da of excess, so far that its exponential is 0.
PER_EXCESS = -1e5
#: Channels that carry the excess through the head: a multiple of 16 suits the CPU's vectors.
EXCESS_CHANNELS = 16


def build_graph(weights: Folded, charge: int) -> tf.Graph:
    """Input [-1, L, 21] one-hot rows, output [-1, slots] intensities, 1 for the largest.

    A placeholder slot, a full-length ion and a fragment over 2000 m/z are 0.
    """
    graph = tf.Graph()
    with graph.as_default():
        shape = [None, vocabulary.MAX_LENGTH[charge], vocabulary.WIDTH]
        rows = tf.compat.v1.placeholder(tf.float32, shape, name=INPUT)
        length = _lengths(rows, charge)
        one_hot, place = _crop(rows, length, charge)
        trunk = _trunk(weights, tf.concat([one_hot, place], 3), place, length)
        left = tf.cumsum(one_hot, 2)
        right = tf.cumsum(one_hot, 2, exclusive=True, reverse=True)
        sites = tf.concat([trunk, left, right, place], 3)
        logits = _head(with_limits(weights, charge), sites)
        _arrange(_scale(logits), length, charge)
        tf.no_op(name=INIT)
    return graph


def _lengths(rows: tf.Tensor, charge: int) -> tf.Tensor:
    """Length of each peptide, int32 [B]: up to the last row that is no filler, at least 1."""
    ordinal = np.arange(1, vocabulary.MAX_LENGTH[charge] + 1, dtype=np.float32)
    lost = ordinal.copy()
    lost[0] = 0.0
    reach = tf.reduce_max(ordinal - rows[:, :, 0] * lost, 1)
    return tf.cast(reach, tf.int32)


def _crop(rows: tf.Tensor, length: tf.Tensor, charge: int) -> tuple[tf.Tensor, tf.Tensor]:
    """Residue columns [B, 1, n, 20] and positional features [B, 1, n, 21] of the rows in use."""
    count = tf.reduce_max(length)
    table = features.position_table(vocabulary.MAX_LENGTH[charge])[:, None]
    place = tf.gather(table, length)
    one_hot = tf.slice(rows, [0, 0, 1], tf.stack([-1, count, RESIDUES]))
    return tf.expand_dims(one_hot, 1), tf.slice(
        place, [0, 0, 0, 0], tf.stack([-1, 1, count, features.WIDTH])
    )


def _convolve(x: tf.Tensor, taps: np.ndarray, dilation: int = 1) -> tf.Tensor:
    """Taps [width, inputs, outputs] along the rows; as many rows come out."""
    return tf.nn.conv2d(x, taps[None], 1, "SAME", dilations=[1, 1, dilation, 1])


def _trunk(weights: Folded, x: tf.Tensor, place: tf.Tensor, length: tf.Tensor) -> tf.Tensor:
    mask = place[:, :, :, features.MASK :][:, :, :, :1]
    trunk = tf.nn.relu(_convolve(x, weights.input[None]))
    for index, block in enumerate(weights.blocks):
        pooled = _pool(weights, trunk, length) if index == weights.pooled else None
        trunk = (_block(block, trunk, pooled) + trunk) * mask
    return trunk


def _block(block: Block, trunk: tf.Tensor, pooled: tf.Tensor | None) -> tf.Tensor:
    hidden = tf.nn.bias_add(_convolve(trunk, block.taps, block.dilation), block.bias)
    if pooled is not None:
        hidden += pooled
    hidden = tf.nn.relu(hidden)
    return tf.nn.bias_add(_convolve(hidden, block.out.w[None]), block.out.b)


def _pool(weights: Folded, trunk: tf.Tensor, length: tf.Tensor) -> tf.Tensor:
    """The mean over each peptide through two layers, [B, 1, 1, width]."""
    mean = tf.reduce_sum(trunk, [1, 2]) / tf.cast(length, tf.float32)[:, None]
    hidden = tf.nn.relu(tf.nn.bias_add(mean @ weights.pool_in.w, weights.pool_in.b))
    return tf.reshape(hidden @ weights.pool_out, [-1, 1, 1, weights.pool_out.shape[1]])


def _head(weights: Folded, sites: tf.Tensor) -> tf.Tensor:
    """Logits [B, 1, n, series of the charge]."""
    hidden = tf.nn.relu(tf.nn.bias_add(_convolve(sites, weights.head), weights.head_bias))
    residual = tf.nn.bias_add(_convolve(hidden, weights.residual.w[None]), weights.residual.b)
    hidden += tf.nn.relu(residual)
    logits = tf.nn.bias_add(_convolve(hidden, weights.logits.w[None]), weights.logits.b)
    return tf.minimum(logits, MAX_LOGIT)


def with_limits(weights: Folded, charge: int) -> Folded:
    """Adds channels to the head that silence what is over 2000 m/z, or has no bond or no slot.

    Each carries by how much a series' ion exceeds the limit, the last one what is beyond the a
    ions' slots; the head's ReLU makes it 0 for all others, the residual layer leaves it alone, and
    the last layer subtracts it from the logit.
    """
    columns = [ladder.SERIES[i] for i in ladder.columns_of_charge(charge)]
    inputs, width = weights.head.shape[1:]
    excess = np.zeros((2, inputs, EXCESS_CHANNELS), dtype=np.float32)
    bias = np.zeros(EXCESS_CHANNELS, dtype=np.float32)
    silence = np.zeros((EXCESS_CHANNELS, len(columns)), dtype=np.float32)
    for column, series in enumerate(columns):
        excess[0, :, column], bias[column] = _excess(series, inputs)
        silence[column, column] = PER_EXCESS
    excess[0, :, -1], bias[-1] = _beyond_a_slots(inputs)
    silence[-1] = [PER_EXCESS * (series.letter == "a") for series in columns]
    residual, logits = weights.residual, weights.logits
    grown = np.zeros((width + EXCESS_CHANNELS, width + EXCESS_CHANNELS), dtype=np.float32)
    grown[:width, :width] = residual.w
    return replace(
        weights,
        head=np.concatenate([weights.head, excess], 2),
        head_bias=np.concatenate([weights.head_bias, bias]),
        residual=Dense(grown, np.pad(residual.b, (0, EXCESS_CHANNELS))),
        logits=Dense(np.concatenate([logits.w, silence]), logits.b),
    )


def _excess(series: ladder.Series, inputs: int) -> tuple[np.ndarray, float]:
    """Weights [inputs] and bias of a series' mass over 2000 m/z times its charge, in Da."""
    weights = np.zeros(inputs, dtype=np.float32)
    place = inputs - features.WIDTH
    counts = place - (RESIDUES if series.from_c_terminus else 2 * RESIDUES)
    weights[counts : counts + RESIDUES] = vocabulary.COLUMN_MASS[1:]
    weights[place + features.MASK] = -NO_SITE
    weights[place + features.LAST] = NO_SITE
    return weights, NO_SITE + series.start_mass - ladder.MZ_LIMIT * series.charge


def _beyond_a_slots(inputs: int) -> tuple[np.ndarray, float]:
    """Weights [inputs] and bias of what is positive for a ions that have no slot."""
    weights = np.zeros(inputs, dtype=np.float32)
    weights[inputs - features.WIDTH + features.FROM_N] = features.RAMP
    return weights, 0.5 - ladder.A_SLOTS


def _scale(logits: tf.Tensor) -> tf.Tensor:
    """Intensities relative to the largest; those below the cut are brought under the limit."""
    intensity = tf.exp(logits)
    intensity = tf.math.divide_no_nan(intensity, tf.reduce_max(intensity, [1, 2, 3], keepdims=True))
    return tf.where(intensity < CUT, intensity * CUT_FACTOR, intensity)


def slot_table(charge: int) -> np.ndarray:
    """Where each slot finds its value in flattened sites, int32 [L + 1, slots], by peptide length.

    A placeholder points to the row of the last residue, which is no bond and always 0.
    """
    columns = ladder.columns_of_charge(charge)
    table = np.zeros((vocabulary.MAX_LENGTH[charge] + 1, ladder.ladder_length(charge)), np.int32)
    for length in range(1, len(table)):
        rows = []
        for column in columns:
            numbers = range(1, ladder.slots_of_series(column, charge) + 1)
            rows += [
                ladder.site_of(column, number, length) if number < length else length - 1
                for number in numbers
            ]
        series = np.repeat(
            np.arange(len(columns)), [ladder.slots_of_series(c, charge) for c in columns]
        )
        table[length] = np.array(rows) * len(columns) + series
    return table


def _arrange(intensity: tf.Tensor, length: tf.Tensor, charge: int) -> tf.Tensor:
    """From sites to the ladder, [B, slots]."""
    places = tf.gather(slot_table(charge), length)
    series = len(ladder.columns_of_charge(charge))
    flat = tf.reshape(intensity, [-1, tf.shape(intensity)[2] * series])
    return tf.gather(flat, places, axis=1, batch_dims=1, name=OUTPUT)
