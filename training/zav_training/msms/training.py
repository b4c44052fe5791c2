# SPDX-License-Identifier: Apache-2.0
"""The training loop: AdamW, a cosine learning rate, an average of the weights, checkpoints."""

import json
import time
from collections.abc import Callable
from dataclasses import asdict, dataclass, field
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.msms.batches import Batch, epoch, hide_sources, loss_factors
from zav_training.msms.loss import spectrum_loss
from zav_training.msms.network import Network, Shape
from zav_training.msms.spectra import Spectrum
from zav_training.optimiser import AdamW, cosine_rate


@dataclass(frozen=True)
class Schedule:
    """How to train.

    epochs        passes over the training spectra
    rate          highest learning rate, reached after the warm-up and lowered to 0 by a cosine
    warm_up       steps
    decay         weight decay of the matrices, decoupled, times the learning rate
    clip          largest norm of a gradient
    average       rate of the exponential moving average of the weights
    batch         spectra in a batch
    generic       share of the spectra whose source is hidden
    typical       share of the Orbitrap spectra whose source is given as the mean of the typical
    noise_scale   factor of the noise level of absent slots: less is a stronger penalty on them
    boosts        factor of the loss by precursor charge
    orbitrap      factor of the loss of the sources that the shipped networks imitate
    """

    epochs: float = 16.0
    rate: float = 3e-3
    warm_up: int = 200
    decay: float = 0.01
    clip: float = 1.0
    average: float = 0.999
    batch: int = 64
    generic: float = 0.2
    typical: float = 0.0
    noise_scale: float = 1.0
    boosts: dict[int, float] = field(default_factory=dict)
    orbitrap: float = 1.0


class Trainer:
    """One network in training."""

    def __init__(self, network: Network, schedule: Schedule, steps: int) -> None:
        self.network = network
        self.schedule = schedule
        self.steps = steps
        self._optimiser = AdamW(network.weights, schedule.decay, schedule.clip, schedule.average)

    def rate_at(self, step: int) -> float:
        """Learning rate of a step, counted from 0."""
        return cosine_rate(self.schedule.rate, step, self.steps, self.schedule.warm_up)

    def averaged(self) -> dict[str, np.ndarray]:
        """The moving average of the weights by name."""
        return self._optimiser.averaged()

    def step(self, batch: Batch, index: int) -> float:
        """Learns from a batch; returns its mean loss."""
        return self._step(
            batch.residues,
            batch.length,
            batch.charge,
            batch.source,
            batch.noise * self.schedule.noise_scale,
            batch.weight,
            batch.observed,
            batch.mask,
            self._optimiser.numbers(index, self.rate_at(index)),
        )

    @tf.function(
        input_signature=[
            tf.TensorSpec([None, None], tf.int32),
            tf.TensorSpec([None], tf.int32),
            tf.TensorSpec([None], tf.int32),
            tf.TensorSpec([None], tf.int32),
            tf.TensorSpec([None], tf.float32),
            tf.TensorSpec([None], tf.float32),
            tf.TensorSpec([None, None, 11], tf.float32),
            tf.TensorSpec([None, None, 11], tf.float32),
            tf.TensorSpec([4], tf.float32),
        ]
    )
    def _step(self, residues, length, charge, source, noise, weight, observed, mask, numbers):  # noqa: ANN001, ANN202
        with tf.GradientTape() as tape:
            condition = self.network.condition(charge, source)
            logits = self.network(residues, length, charge, condition, training=True)
            size = tf.shape(residues)[0]
            flat = [tf.reshape(x, [size, -1]) for x in (logits, observed, mask)]
            loss = tf.reduce_mean(weight * spectrum_loss(*flat, noise))
        self._optimiser.apply(tape, loss, numbers)
        return loss


def train(
    spectra: list[Spectrum],
    shape: Shape,
    schedule: Schedule,
    seed: int,
    folder: Path,
    report: Callable[[Network], str] | None = None,
    start: Network | None = None,
) -> Network:
    """Trains on the spectra; writes weights.npz, run.json and log.tsv into the folder.

    It begins with random weights, or with those of `start`, which has the same sizes. Returns a
    network with the averaged weights. `report` gives a line of figures after each epoch.
    """
    folder.mkdir(parents=True, exist_ok=True)
    tf.random.set_seed(seed)
    random = np.random.default_rng(seed)
    factors = loss_factors(spectra, schedule.boosts, schedule.orbitrap)
    steps = int(len(spectra) / schedule.batch * schedule.epochs)
    begin = Network(shape, seed)
    if start is not None:
        set_weights(begin, {name: v.numpy() for name, v in start.weights.items()})
    trainer = Trainer(begin, schedule, steps)
    about = {"shape": asdict(shape), "schedule": asdict(schedule), "seed": seed, "steps": steps}
    (folder / "run.json").write_text(json.dumps(about, indent=2) + "\n")
    mean = Network(shape, seed)
    index, start, losses = 0, time.monotonic(), []
    with (folder / "log.tsv").open("a") as log:
        while index < steps:
            for batch in epoch(spectra, factors, schedule.batch, random):
                batch.source = hide_sources(
                    batch.source, schedule.generic, schedule.typical, random
                )
                losses.append(float(trainer.step(batch, index)))
                index += 1
                if index >= steps:
                    break
            set_weights(mean, trainer.averaged())
            save(mean, folder / "weights.npz")
            figures = report(mean) if report else ""
            seconds = time.monotonic() - start
            line = f"{index}\t{seconds:.0f}\t{np.mean(losses):.4f}\t{figures}"
            print(line, file=log, flush=True)
            print(line, flush=True)
            losses.clear()
    return mean


def set_weights(network: Network, values: dict[str, np.ndarray]) -> None:
    """Overwrites the network's weights."""
    for name, variable in network.weights.items():
        variable.assign(values[name])


def save(network: Network, path: Path) -> None:
    """Writes the weights as NumPy's archive, whole or not at all."""
    part = path.with_suffix(".part.npz")
    np.savez(part, **{name: v.numpy() for name, v in network.weights.items()})
    part.replace(path)


def load(folder: Path) -> Network:
    """The network that `train` wrote into the folder."""
    about = json.loads((folder / "run.json").read_text())
    sizes = about["shape"]
    sizes["dilations"] = tuple(sizes["dilations"])
    network = Network(Shape(**sizes), about["seed"])
    with np.load(folder / "weights.npz") as values:
        set_weights(network, dict(values))
    return network
