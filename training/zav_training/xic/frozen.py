# SPDX-License-Identifier: Apache-2.0
"""Weights read back from a graph file, so that a training can go on from a shipped network."""

from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.xic import network

#: Kinds of operations that read a weight as their second input.
READERS = ("Conv2D", "BiasAdd", "MatMul")


def read_weights(path: Path, size: network.Size) -> dict[str, np.ndarray]:
    """The weights of a network, from its graph file or from the `.npz` of a training run.

    Raises ValueError where they are not those of a network of this size.
    """
    found = dict(np.load(path)) if path.suffix == ".npz" else _frozen(path, size)
    expected = network.initial_weights(size, 0)
    shapes = {k: v.shape for k, v in expected.items()}
    if {k: v.shape for k, v in found.items()} != shapes:
        raise ValueError(f"{path.name} does not hold the weights of this network")
    return {k: found[k] for k in expected}


def _frozen(path: Path, size: network.Size) -> dict[str, np.ndarray]:
    """Constants by the order in which the network's code reads them, which the file keeps."""
    definition = tf.compat.v1.GraphDef.FromString(path.read_bytes())
    constants = {n.name: n.attr["value"].tensor for n in definition.node if n.op == "Const"}
    read: dict[str, list[np.ndarray]] = {kind: [] for kind in READERS}
    for node in definition.node:
        if node.op in READERS and node.input[1] in constants:
            read[node.op].append(tf.make_ndarray(constants[node.input[1]]))
    names = list(network.convolutions(size))
    order = {
        "Conv2D": [f"{name}/w" for name in names],
        "BiasAdd": [f"{name}/b" for name in names],
        "MatMul": ["a1/told", "d1/told", "context/w", "g1/told"],
    }
    if any(len(read[kind]) != len(order[kind]) for kind in READERS):
        return {}
    return {k: v for kind in READERS for k, v in zip(order[kind], read[kind], strict=True)}
