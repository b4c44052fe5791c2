# SPDX-License-Identifier: Apache-2.0
"""The frozen graph of the retention times."""

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.convolution import as_row, convolve, dense, mean, read_peptides
from zav_training.graphs import INIT
from zav_training.rt.directions import Directions
from zav_training.rt.network import PIECES, REACH, SUM_SCALE, UNMAPPED, Network

OUTPUT = "retention_times"


def build_graph(network: Network, directions: Directions, centre: float, width: float) -> tf.Graph:
    """Input [-1, 52, 13] rows of peptidoforms, output [-1, 25]: the heads, then the directions.

    They are put on a scale of this centre and width: those of the first head's source, whose column
    therefore is in its unit; the others are a straight line away from theirs.
    """
    w = {name: variable.numpy() for name, variable in network.weights.items()}
    shape = network.shape
    graph = tf.Graph()
    with graph.as_default():
        peptides = read_peptides()
        x = peptides.features()
        mixed = tf.nn.relu(dense(x, w["mixing/in/w"], w["mixing/in/b"]))
        trunk = dense(x, w["input/w"], w["input/b"] + w["mixing/out/b"])
        trunk = (trunk + convolve(mixed, w["mixing/out/w"][None])) * peptides.mask
        for index, reach in enumerate(shape.dilations):
            taps = w[f"block{index}/taps/w"].reshape(3, shape.width, shape.width)
            hidden = tf.nn.bias_add(convolve(trunk, taps, reach), w[f"block{index}/taps/b"])
            if index == shape.averaged:
                own = tf.nn.bias_add(mean(trunk, peptides) @ w["average/w"], w["average/b"])
                hidden += as_row(own)
            out = dense(tf.nn.relu(hidden), w[f"block{index}/out/w"], w[f"block{index}/out/b"])
            trunk = (trunk + out) * peptides.mask
        each = tf.nn.relu(dense(trunk, w["pooled/w"], w["pooled/b"]))
        pooled = tf.reshape(_pool(each, peptides), [-1, 4 * shape.pooled])
        hidden = tf.nn.relu(tf.nn.bias_add(pooled @ w["hidden0/w"], w["hidden0/b"]))
        hidden = tf.nn.relu(tf.nn.bias_add(hidden @ w["hidden1/w"], w["hidden1/b"]))
        own = hidden @ (w["number/w"] + w["heads"][:-1]) + (w["number/b"] + w["heads"][-1])
        heads = _mapped(w, network.knots, own)
        further = tf.reduce_mean(heads, 1, keepdims=True) * directions.own
        further += tf.nn.bias_add(hidden @ directions.weights, directions.offset)
        outputs = tf.concat([heads, further], 1)
        tf.add(outputs * np.float32(width), np.float32(centre), name=OUTPUT)
        tf.no_op(name=INIT)
    return graph


def _pool(each: tf.Tensor, peptides) -> tf.Tensor:  # noqa: ANN001
    """Sum, mean, first and last row of each peptide, [B, 4, channels]."""
    table = np.zeros((rows.LONGEST + 1, 4, rows.LONGEST), dtype=np.float32)
    for length in range(1, rows.LONGEST + 1):
        table[length, 0, :length] = SUM_SCALE
        table[length, 1, :length] = 1.0 / length
        table[length, 2, 0] = 1.0
        table[length, 3, length - 1] = 1.0
    chosen = tf.slice(
        tf.gather(table, peptides.length), [0, 0, 0], tf.stack([-1, 4, peptides.count])
    )
    return chosen @ tf.squeeze(each, 1)


def _mapped(w: dict[str, np.ndarray], knots: np.ndarray, own: tf.Tensor) -> tf.Tensor:
    slope, offset = np.log1p(np.exp(w["map/slope"])), w["map/offset"].copy()
    slope[UNMAPPED], offset[UNMAPPED] = 1.0, 0.0
    step = np.float32(2.0 * REACH / PIECES)
    beyond = tf.expand_dims(own, 2) - knots
    left = tf.minimum(beyond[:, :, :1], 0.0)
    inner = tf.clip_by_value(beyond[:, :, :-1], 0.0, step)
    right = tf.maximum(beyond[:, :, -1:], 0.0)
    pieces = tf.concat([left, inner, right], 2)
    return tf.reduce_sum(pieces * slope, 2) + (knots[0] + offset)
