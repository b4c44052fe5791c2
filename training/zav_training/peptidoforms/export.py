# SPDX-License-Identifier: Apache-2.0
"""The frozen graph of the peptidoform network, as the shipped kind of spectra."""

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.convolution import Peptides, as_row, convolve, dense, mean, read_peptides
from zav_training.graphs import INIT
from zav_training.msms.network import COUNT_SCALE, MAX_LOGIT
from zav_training.peptidoforms.network import COUNTED, Network
from zav_training.peptidoforms.sources import SHIPPED

PRECURSORS = "precursors"
OUTPUT = "intensities"
LATE = ("head", "residual", "logits")

Weights = dict[str, np.ndarray]


def build_graph(network: Network) -> tf.Graph:
    """Inputs [-1, 52, 13] rows of peptidoforms and [-1, 3] precursors: the row of its peptidoform,
    the charge, (NCE - 30) / 10. Output [-1, bonds, 27]: intensities that are neither masked nor
    scaled; bonds are those of the longest peptidoform.
    """
    w = {name: variable.numpy() for name, variable in network.weights.items()}
    graph = tf.Graph()
    with graph.as_default():
        peptides = read_peptides()
        precursors = tf.compat.v1.placeholder(tf.float32, [None, 3], name=PRECURSORS)
        bonds = _bonds(_fold_trunk(w, network), network, peptides)
        owner = tf.cast(precursors[:, 0], tf.int32)
        changes = _changes(w, network.shape.head, precursors)
        hidden = tf.nn.relu(_late(tf.gather(bonds, owner), changes[0]))
        inner = dense(hidden, w["residual/w"], w["residual/b"])
        hidden += tf.nn.relu(_late(inner, changes[1]))
        hidden = _late(hidden, changes[2])
        charge = tf.cast(precursors[:, 1], tf.int32)
        own = as_row(tf.gather(w["logits/charge"] + w["logits/b"], charge))
        logits = tf.minimum(convolve(hidden, w["logits/w"][None]) + own, MAX_LOGIT)
        tf.exp(tf.squeeze(logits, 1)[:, :-1], name=OUTPUT)
        tf.no_op(name=INIT)
    return graph


def _fold_trunk(w: Weights, network: Network) -> Weights:
    """The trunk's weights with the kind's scales and shifts in them."""
    kind, folded = w["kind"][SHIPPED], dict(w)
    names = {"input": "input"} | {
        f"block{i}/taps": f"block{i}" for i in range(len(network.shape.dilations))
    }
    for layer, film in names.items():
        scale, shift = np.split(kind @ w[f"{film}/film"], 2)
        folded[f"{layer}/w"] = w[f"{layer}/w"] * (1.0 + scale)
        folded[f"{layer}/b"] = w[f"{layer}/b"] * (1.0 + scale) + shift
        if film == f"block{network.shape.pooled}":
            folded["pool/out/w"] = w["pool/out/w"] * (1.0 + scale)
            folded["pool/out/b"] = w["pool/out/b"] * (1.0 + scale)
    return folded


def _bonds(w: Weights, network: Network, peptides: Peptides) -> tf.Tensor:
    shape = network.shape
    trunk = tf.nn.relu(dense(peptides.features(), w["input/w"], w["input/b"])) * peptides.mask
    for index, reach in enumerate(shape.dilations):
        taps = w[f"block{index}/taps/w"].reshape(3, shape.width, shape.width)
        hidden = tf.nn.bias_add(convolve(trunk, taps, reach), w[f"block{index}/taps/b"])
        if index == shape.pooled:
            inner = mean(trunk, peptides) @ w["pool/in/w"]
            inner = tf.nn.relu(tf.nn.bias_add(inner, w["pool/in/b"]))
            hidden += as_row(tf.nn.bias_add(inner @ w["pool/out/w"], w["pool/out/b"]))
        out = dense(tf.nn.relu(hidden), w[f"block{index}/out/w"], w[f"block{index}/out/b"])
        trunk = (trunk + out) * peptides.mask
    return _head(w, shape.width, peptides, trunk)


def _head(w: Weights, width: int, peptides: Peptides, trunk: tf.Tensor) -> tf.Tensor:
    """The head's first layer. What is counted right of a bond is what the peptide holds less what
    is left of it, so the counts enter as left and total."""
    both = peptides.atoms[:, :, :, : rows.ATOMS] + peptides.atoms[:, :, :, rows.ATOMS :]
    counted = tf.concat([peptides.one_hot, both], 3)
    until = tf.constant(np.tril(np.ones((rows.LONGEST, rows.LONGEST), dtype=np.float32)))
    left = tf.slice(until, [0, 0], tf.stack([peptides.count, peptides.count])) @ counted
    total = tf.reduce_sum(counted, [1, 2])
    sizes = [width, width, COUNTED, COUNTED, peptides.place.shape[-1]]
    own, after, before, behind, place = np.split(w["head/w"], np.cumsum(sizes)[:-1])
    before, behind = before / np.float32(COUNT_SCALE), behind / np.float32(COUNT_SCALE)
    sites = convolve(
        tf.concat([left, peptides.place], 3), np.concatenate([before - behind, place])[None]
    )
    sites += as_row(tf.nn.bias_add(total @ behind, w["head/b"]))
    return sites + convolve(trunk, np.stack([own, after]))


def _changes(w: Weights, head: int, precursors: tf.Tensor) -> list[tuple[tf.Tensor, tf.Tensor]]:
    """Scale and shift of each late layer by charge and energy, [B, 1, 1, head] each."""
    charges = w["charge"]
    kinds = np.repeat(w["kind"][SHIPPED][None], len(charges), 0)
    condition = np.concatenate([kinds, charges], 1)
    plain = np.concatenate([condition @ w[f"{name}/film"] for name in LATE], 1)
    linear = np.concatenate(
        [w[f"{name}/energy"][0] + charges @ w[f"{name}/energy"][2:] for name in LATE], 1
    )
    square = np.concatenate([w[f"{name}/energy"][1] for name in LATE])
    plain.reshape(len(charges), len(LATE), 2, head)[:, :, 0] += 1.0
    charge = tf.cast(precursors[:, 1], tf.int32)
    energy = precursors[:, 2:]
    change = tf.gather(plain, charge) + energy * (tf.gather(linear, charge) + energy * square)
    parts = [as_row(part) for part in tf.split(change, 2 * len(LATE), axis=1)]
    return list(zip(parts[::2], parts[1::2], strict=True))


def _late(x: tf.Tensor, change: tuple[tf.Tensor, tf.Tensor]) -> tf.Tensor:
    return x * change[0] + change[1]
