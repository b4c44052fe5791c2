# SPDX-License-Identifier: Apache-2.0
"""A trained network's weights for one charge, with the condition folded in."""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training.msms import features, ladder
from zav_training.msms.network import COUNT_SCALE, RESIDUES, Network


@dataclass
class Dense:
    """y = x @ w + b, w [inputs, outputs], b [outputs]; float32."""

    w: np.ndarray
    b: np.ndarray


@dataclass
class Block:
    """One trunk block: a 3-tap convolution [3, width, width], ReLU, a dense layer."""

    taps: np.ndarray
    bias: np.ndarray
    dilation: int
    out: Dense


@dataclass
class Folded:
    """All weights that one charge needs.

    input     [20 + 21, width], without a bias: the mask feature carries it
    pool_in, pool_out  of the mean over the peptide, added inside block `pooled`; pool_out's bias is
              part of that block's bias
    head      two taps [2, width + 61, head]: trunk, counts left, counts right, positional features
    logits    [head, series of the charge]
    """

    input: np.ndarray
    blocks: list[Block]
    pooled: int
    pool_in: Dense
    pool_out: np.ndarray
    head: np.ndarray
    head_bias: np.ndarray
    residual: Dense
    logits: Dense


def fold(network: Network, charge: int) -> Folded:
    """Folds charge and the shipped source into the weights."""
    w = {name: variable.numpy() for name, variable in network.weights.items()}
    condition = network.shipped_condition(tf.constant([charge]))

    def film(name: str) -> tuple[np.ndarray, np.ndarray]:
        scale, shift = network.film(name, condition)
        return scale.numpy()[0], shift.numpy()[0]

    return Folded(
        _input(w, *film("input")),
        [_block(w, network, i, *film(f"block{i}")) for i in range(len(network.shape.dilations))],
        network.shape.pooled,
        Dense(w["pool/in/w"], w["pool/in/b"]),
        w["pool/out/w"] * film(f"block{network.shape.pooled}")[0],
        *_head(w, network.shape.width, *film("head")),
        Dense(w["head/residual/w"], w["head/residual/b"]),
        _logits(w, charge),
    )


def _input(w: dict[str, np.ndarray], scale: np.ndarray, shift: np.ndarray) -> np.ndarray:
    weights = w["input/w"] * scale
    weights[RESIDUES + features.MASK] += w["input/b"] * scale + shift
    return weights


def _block(
    w: dict[str, np.ndarray], network: Network, index: int, scale: np.ndarray, shift: np.ndarray
) -> Block:
    name, width = f"block{index}", network.shape.width
    bias = w[f"{name}/taps/b"]
    if index == network.shape.pooled:
        bias = bias + w["pool/out/b"]
    return Block(
        (w[f"{name}/taps/w"] * scale).reshape(3, width, width),
        bias * scale + shift,
        network.shape.dilations[index],
        Dense(w[f"{name}/out/w"], w[f"{name}/out/b"]),
    )


def _head(
    w: dict[str, np.ndarray], width: int, scale: np.ndarray, shift: np.ndarray
) -> tuple[np.ndarray, np.ndarray]:
    own, after, counts, place = np.split(
        w["head/w"] * scale, [width, 2 * width, 2 * width + 2 * RESIDUES]
    )
    first = np.concatenate([own, counts / COUNT_SCALE, place])
    second = np.zeros_like(first)
    second[:width] = after
    return np.stack([first, second]), w["head/b"] * scale + shift


def _logits(w: dict[str, np.ndarray], charge: int) -> Dense:
    own = w["logits/charge"][charge - 1]
    columns = ladder.columns_of_charge(charge)
    return Dense((w["logits/w"] + own[:-1])[:, columns], (w["logits/b"] + own[-1])[columns])
