# SPDX-License-Identifier: Apache-2.0
"""The training loop of the retention times."""

import json
import time
from collections.abc import Callable, Iterator
from dataclasses import asdict, dataclass
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms.training import save, set_weights
from zav_training.optimiser import AdamW, cosine_rate
from zav_training.rt.data import HEADS, Observation, scales, weights
from zav_training.rt.network import Network, Shape

#: Batches are padded to one of these lengths, so that the step is compiled a few times only.
LENGTHS = (9, 11, 13, 16, 20, 28, 52)
#: Error in scaled units below which the loss is quadratic: about 2 iRT.
QUADRATIC = 0.05


@dataclass(frozen=True)
class Schedule:
    """How to train.

    epochs     passes over the training peptides
    rate       highest learning rate, reached after the warm-up, lowered to `last` of it by a cosine
    warm_up    steps
    decay      weight decay of the matrices, decoupled, times the learning rate
    clip       largest norm of a gradient
    average    rate of the exponential moving average of the weights
    batch      peptides in a batch
    deviation  factor of the penalty on what the heads add to the common number
    taught     share of the loss that the teacher's predictions for all heads make, if there is one
    """

    epochs: float = 12.0
    rate: float = 2e-3
    last: float = 0.01
    warm_up: int = 200
    decay: float = 0.01
    clip: float = 1.0
    average: float = 0.998
    batch: int = 128
    deviation: float = 0.01
    taught: float = 0.5


class Bucket:
    """The observations of peptides that are padded to one length."""

    def __init__(
        self,
        observations: list[Observation],
        factor: np.ndarray,
        lessons: np.ndarray,
        length: int,
    ) -> None:
        self.encoded = np.zeros((len(observations), length, rows.WIDTH), dtype=np.int8)
        for encoded, one in zip(self.encoded, observations, strict=True):
            encoded[: len(one.peptide)] = rows.encode(one.peptide, one.modified)
        self.head = np.array([one.head for one in observations], dtype=np.int32)
        self.factor = factor
        self.lessons = lessons
        self.target = np.zeros(len(observations), dtype=np.float32)


def fill_buckets(
    observations: list[Observation], lessons: np.ndarray | None = None
) -> list[Bucket]:
    """The observations by padded length, times brought to their source's scale.

    `lessons`: what a teacher predicts for them, [observations, heads]; none without a teacher.
    """
    scale, factor = scales(observations), weights(observations)
    if lessons is None:
        lessons = np.zeros((len(observations), 0), dtype=np.float32)
    of = np.searchsorted(LENGTHS, [len(one.peptide) for one in observations])
    buckets = []
    for index, length in enumerate(LENGTHS):
        chosen = np.flatnonzero(of == index)
        own = [observations[i] for i in chosen]
        bucket = Bucket(own, factor[chosen], lessons[chosen], length)
        bucket.target[:] = [
            (one.time - scale[one.head].centre) / scale[one.head].width for one in own
        ]
        buckets.append(bucket)
    return buckets


def epoch(
    buckets: list[Bucket], size: int, random: np.random.Generator
) -> Iterator[tuple[np.ndarray, ...]]:
    """One pass in a random order, full batches only: rows, heads, weights, targets, lessons."""
    batches = []
    for bucket in buckets:
        order = random.permutation(len(bucket.head))
        last = len(order) - size + 1
        batches += [(bucket, order[i : i + size]) for i in range(0, last, size)]
    for index in random.permutation(len(batches)):
        bucket, chosen = batches[index]
        encoded = bucket.encoded[chosen].astype(np.float32)
        own = (bucket.head, bucket.factor, bucket.target, bucket.lessons)
        yield encoded, *(column[chosen] for column in own)


def robust_loss(error: tf.Tensor) -> tf.Tensor:
    """Absolute error, quadratic near 0."""
    size = tf.abs(error)
    return tf.where(size < QUADRATIC, 0.5 * size * size / QUADRATIC, size - 0.5 * QUADRATIC)


class Trainer:
    """One network in training."""

    def __init__(self, network: Network, schedule: Schedule) -> None:
        self.network = network
        self.schedule = schedule
        self.optimiser = AdamW(network.weights, schedule.decay, schedule.clip, schedule.average)

    @tf.function(jit_compile=True, reduce_retracing=False)
    def step(self, encoded, head, factor, target, lessons, numbers):  # noqa: ANN001, ANN201
        """Learns from a batch; returns its mean loss against what was observed."""
        taught = self.schedule.taught if lessons.shape[1] > 0 else 0.0
        with tf.GradientTape() as tape:
            heads = self.network(encoded)
            own = tf.reduce_sum(heads * tf.one_hot(head, len(HEADS)), 1)
            fit = tf.reduce_sum(factor * robust_loss(own - target)) / tf.reduce_sum(factor)
            loss = (1.0 - taught) * fit + self.schedule.deviation * self.network.deviation()
            if taught > 0.0:
                apart = tf.reduce_mean(robust_loss(heads - lessons), 1)
                loss += taught * tf.reduce_sum(factor * apart) / tf.reduce_sum(factor)
        self.optimiser.apply(tape, loss, numbers)
        return fit


def train(
    observations: list[Observation],
    shape: Shape,
    schedule: Schedule,
    seed: int,
    folder: Path,
    report: Callable[[Network, list[Observation]], str],
    lessons: np.ndarray | None = None,
) -> Network:
    """Trains on the observations; writes weights.npz, run.json and log.tsv into the folder.

    With `lessons`, as for `fill_buckets`, also on those. Returns a network with the averaged
    weights. `report` gives a line of figures, after each epoch.
    """
    folder.mkdir(parents=True, exist_ok=True)
    random = np.random.default_rng(seed)
    buckets = fill_buckets(observations, lessons)
    steps = int(sum(len(b.head) // schedule.batch for b in buckets) * schedule.epochs)
    network, mean = Network(shape, seed), Network(shape, seed)
    trainer = Trainer(network, schedule)
    about = {
        "shape": asdict(shape),
        "schedule": asdict(schedule),
        "seed": seed,
        "steps": steps,
        "scales": [asdict(s) for s in scales(observations)],
    }
    (folder / "run.json").write_text(json.dumps(about, indent=2) + "\n")
    index, began = 0, time.monotonic()
    with (folder / "log.tsv").open("a") as log:
        while index < steps:
            losses = []
            for batch in epoch(buckets, schedule.batch, random):
                rate = cosine_rate(schedule.rate, index, steps, schedule.warm_up, schedule.last)
                numbers = trainer.optimiser.numbers(index, rate)
                losses.append(trainer.step(*batch, numbers))
                index += 1
                if index >= steps:
                    break
            set_weights(mean, trainer.optimiser.averaged())
            save(mean, folder / "weights.npz")
            seconds = time.monotonic() - began
            figures = report(mean, observations)
            line = f"{index}\t{seconds:.0f}\t{np.mean(losses):.4f}\t{figures}"
            print(line, file=log, flush=True)
            print(line, flush=True)
    return mean


def load(folder: Path) -> tuple[Network, dict]:
    """The network that `train` wrote into the folder, and its run.json."""
    about = json.loads((folder / "run.json").read_text())
    sizes = {k: tuple(v) if isinstance(v, list) else v for k, v in about["shape"].items()}
    network = Network(Shape(**sizes), about["seed"])
    with np.load(folder / "weights.npz") as values:
        set_weights(network, dict(values))
    return network, about
