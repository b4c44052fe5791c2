# SPDX-License-Identifier: Apache-2.0
"""Ways in which a chromatography that is not among the heads may differ from them.

A head is a linear function of the last hidden layer, bent by its map. The main components of that
layer, beyond what the mean of the heads explains, are offered to the calibration as further
outputs, each on top of that mean: chromatographies that nobody has run, from which those that
someone will run can be mixed.
"""

from dataclasses import dataclass

import numpy as np

from zav_training.rt.data import HEADS, Observation
from zav_training.rt.evaluation import run_in_batches
from zav_training.rt.network import Network

COUNT = 16
#: Peptidoforms that the components are taken from.
SAMPLE = 20_000


@dataclass
class Directions:
    """Output i is mean of the heads * own[i] + hidden @ weights[:, i] + offset[i], as heads."""

    own: np.ndarray
    weights: np.ndarray
    offset: np.ndarray


def find_directions(network: Network, observations: list[Observation]) -> Directions:
    """The directions of a network, from peptidoforms that it was trained on; times are not used."""
    step = max(1, len(observations) // SAMPLE)
    both = run_in_batches(network.heads_and_hidden, observations[::step])
    heads, hidden = both[:, : len(HEADS)], both[:, len(HEADS) :]
    mean = heads.mean(1)
    known = np.stack([np.ones_like(mean), mean], 1)
    explained = np.linalg.lstsq(known, hidden, rcond=None)[0]
    rest = hidden - known @ explained
    _, components = np.linalg.eigh(rest.T @ rest)
    chosen = components[:, ::-1][:, :COUNT]
    # Together the directions spread as far from the mean as the heads do.
    scale = (heads - mean[:, None]).std() / (rest @ chosen).std()
    chosen = chosen * scale
    return Directions(1.0 - explained[1] @ chosen, chosen, -explained[0] @ chosen)
