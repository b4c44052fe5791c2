# SPDX-License-Identifier: Apache-2.0
"""Begins a training from a shipped network for plain peptides, whose trunk has the same shape."""

import re
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms import ladder
from zav_training.msms.network import COUNT_SCALE
from zav_training.peptidoforms.network import COUNTED, LETTER_COUNT, Network

#: Names of the weights in the graph of a shipped network.
WEIGHT = re.compile(r"(Conv2D\w*/filter|BiasAdd\w*/bias|matmul\w*/b)$")
BLOCKS = 4
POOLED = 2


def begin_from(network: Network, graph: Path, charge: int) -> None:
    """Sets the weights to those of the graph file; what it does not have is 0 or stays random."""
    constants = _constants(graph)
    w = {name: variable.numpy() for name, variable in network.weights.items()}
    width, head = network.shape.width, network.shape.head
    first = constants.pop(0)[0, 0]
    w["input/w"][:] = 0.0
    w["input/w"][:LETTER_COUNT] = first[:LETTER_COUNT]
    w["input/w"][LETTER_COUNT + 2 * rows.ATOMS :] = first[LETTER_COUNT:]
    for index in range(BLOCKS):
        if index == POOLED:
            w["pool/in/w"], w["pool/in/b"], w["pool/out/w"] = (constants.pop(0) for _ in range(3))
            w["pool/out/b"][:] = 0.0
        w[f"block{index}/taps/w"] = constants.pop(0)[0].reshape(3 * width, width)
        w[f"block{index}/taps/b"] = constants.pop(0)
        w[f"block{index}/out/w"] = constants.pop(0)[0, 0]
        w[f"block{index}/out/b"] = constants.pop(0)
    taps, bias, residual, residual_bias, logits = (constants.pop(0) for _ in range(5))
    own, after = taps[0, 0, :, :head], taps[0, 1, :width, :head]
    left, right, place = np.split(own[width:], [LETTER_COUNT, 2 * LETTER_COUNT])
    w["head/w"][:] = 0.0
    w["head/w"][:width] = own[:width]
    w["head/w"][width : 2 * width] = after
    at = 2 * width
    w["head/w"][at : at + LETTER_COUNT] = left * COUNT_SCALE
    w["head/w"][at + COUNTED : at + COUNTED + LETTER_COUNT] = right * COUNT_SCALE
    w["head/w"][at + 2 * COUNTED :] = place
    w["head/b"] = bias[:head]
    w["residual/w"] = residual[0, 0, :head, :head]
    w["residual/b"] = residual_bias[:head]
    columns = ladder.columns_of_charge(charge)
    w["logits/w"][:, columns] = logits[0, 0, :head]
    w["logits/b"][columns] = constants.pop(0)
    for name, values in w.items():
        if name.endswith("/film"):
            values[:] = 0.0
    for name, variable in network.weights.items():
        variable.assign(w[name])


def _constants(graph: Path) -> list[np.ndarray]:
    """The weights of a graph file, in its order."""
    definition = tf.compat.v1.GraphDef.FromString(graph.read_bytes())
    return [
        tf.make_ndarray(node.attr["value"].tensor)
        for node in definition.node
        if node.op == "Const" and WEIGHT.match(node.name)
    ]
