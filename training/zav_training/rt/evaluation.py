# SPDX-License-Identifier: Apache-2.0
"""How near predicted retention times come to observed ones."""

from collections.abc import Callable
from dataclasses import dataclass

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.rt.data import Observation
from zav_training.rt.network import Network


@dataclass
class Figures:
    """Figures of one group of observations; the last two in per cent of the observed range.

    count    observations
    median   median absolute error in the unit of the source
    percent  the same in per cent of the range from 0.5 to 99.5 % of the observed times
    width    twice the 95th percentile of the absolute errors
    bias     median error, predicted - observed
    pearson  correlation
    """

    count: int
    median: float
    percent: float
    width: float
    bias: float
    pearson: float


def compare(observed: np.ndarray, predicted: np.ndarray, span: float | None = None) -> Figures:
    """Figures of predicted against observed times; the span of the observed ones unless given."""
    low, high = np.quantile(observed, [0.005, 0.995])
    per = 100.0 / (span or high - low)
    error = predicted - observed
    median, far = np.quantile(np.abs(error), [0.5, 0.95])
    correlation = np.corrcoef(observed, predicted)[0, 1] if len(observed) > 2 else np.nan
    return Figures(
        len(observed),
        float(median),
        float(per * median),
        float(per * 2.0 * far),
        float(per * np.median(error)),
        float(correlation),
    )


def predict(network: Network, observations: list[Observation]) -> np.ndarray:
    """What every head predicts, in scaled units, [observations, heads]."""
    return run_in_batches(network, observations)


def run_in_batches(
    outputs: Callable[[np.ndarray], tf.Tensor], observations: list[Observation], batch: int = 512
) -> np.ndarray:
    """What a function of padded rows gives for each observation, in their order."""
    order = np.argsort([len(one.peptide) for one in observations], kind="stable")
    found = None
    for first in range(0, len(order), batch):
        chosen = order[first : first + batch]
        own = [rows.encode(observations[i].peptide, observations[i].modified) for i in chosen]
        values = outputs(rows.pad(own, len(own[-1]))).numpy()
        if found is None:
            found = np.zeros((len(observations), values.shape[1]), dtype=np.float32)
        found[chosen] = values
    return found


def own_heads(
    network: Network, observations: list[Observation], scale: list[dict]
) -> dict[str, Figures]:
    """Figures of each source by its own head, without any calibration."""
    predicted = predict(network, observations)
    sources = np.array([one.source for one in observations])
    figures = {}
    for source in sorted(set(sources)):
        chosen = np.flatnonzero(sources == source)
        head = observations[chosen[0]].head
        own = predicted[chosen, head] * scale[head]["width"] + scale[head]["centre"]
        times = np.array([observations[i].time for i in chosen])
        figures[source] = compare(times, own)
    return figures
