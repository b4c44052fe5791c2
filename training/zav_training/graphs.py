# SPDX-License-Identifier: Apache-2.0
"""Graph files: what is common to all networks."""

import hashlib
from collections.abc import Sequence
from pathlib import Path

import numpy as np
import tensorflow as tf

#: What a host runs once after loading; nothing is left to initialise, but the name must be there.
INIT = "init"
MAX_BYTES = 4_000_000
#: Graph version that the files state: a low one, as nothing in them needs a recent runtime.
PRODUCER = 1000
#: Operations that would mean that the weights are not frozen into the file.
FORBIDDEN = ("Variable", "VarHandleOp", "ReadVariableOp", "RestoreV2", "SaveV2", "ReadFile")


def write_graph(graph: tf.Graph, path: Path) -> str:
    """Writes a frozen graph; returns the SHA-256 of the file.

    Attributes that hold their default are left out, so that an older runtime, which may not know
    them, reads the file.
    """
    with graph.as_default():
        meta = tf.compat.v1.train.export_meta_graph(clear_devices=True, strip_default_attrs=True)
    definition = meta.graph_def
    definition.versions.producer = PRODUCER
    check_frozen(definition)
    data = definition.SerializeToString(deterministic=True)
    if len(data) > MAX_BYTES:
        raise ValueError(f"{path.name}: {len(data)} bytes, more than {MAX_BYTES}")
    path.write_bytes(data)
    return hashlib.sha256(data).hexdigest()


def check_frozen(definition: tf.compat.v1.GraphDef) -> None:
    """Raises ValueError where an operation holds or reads weights from outside the file."""
    for node in definition.node:
        if node.op in FORBIDDEN:
            raise ValueError(f"{node.name} is a {node.op}: the graph is not frozen")
    if not any(node.name == INIT and node.op == "NoOp" for node in definition.node):
        raise ValueError(f"no operation '{INIT}' that does nothing")


class Runner:
    """Runs a graph file as a host does, by operation names, on one core."""

    def __init__(self, path: Path, input_name: str, output_name: str) -> None:
        definition = tf.compat.v1.GraphDef.FromString(path.read_bytes())
        graph = tf.Graph()
        with graph.as_default():
            tf.import_graph_def(definition, name="")
        config = tf.compat.v1.ConfigProto(
            intra_op_parallelism_threads=1, inter_op_parallelism_threads=1
        )
        session = tf.compat.v1.Session(graph=graph, config=config)
        session.run(graph.get_operation_by_name(INIT))
        self._run = session.make_callable(f"{output_name}:0", [f"{input_name}:0"])
        self.shape: Sequence[int | None] = graph.get_tensor_by_name(f"{input_name}:0").shape

    def __call__(self, batch: np.ndarray) -> np.ndarray:
        """Output for an input batch of the graph's shape."""
        return self._run(batch)
