# SPDX-License-Identifier: Apache-2.0
"""The training loop of the peptidoform network."""

import json
import time
from collections.abc import Callable, Iterator
from dataclasses import asdict, dataclass
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms.loss import spectrum_loss
from zav_training.msms.training import save, set_weights
from zav_training.optimiser import AdamW, cosine_rate
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.network import Network, Shape
from zav_training.peptidoforms.sources import NEAR_SHIPPED, PHOSPHO, SHIPPED
from zav_training.peptidoforms.spectra import ENERGY_CENTRE, ENERGY_SCALE, Spectrum

#: Batches are padded to one of these lengths, so that the step is compiled a few times only.
LENGTHS = (9, 11, 13, 16, 20, 28, 52)


@dataclass(frozen=True)
class Schedule:
    """How to train.

    epochs        passes over the training spectra, of the phosphorylated ones a share
    rate          highest learning rate, reached after the warm-up and lowered to 0 by a cosine
    warm_up       steps
    decay         weight decay of the matrices, decoupled, times the learning rate
    clip          largest norm of a gradient
    average       rate of the exponential moving average of the weights
    batch         spectra in a batch
    phospho       share of the spectra of phospho libraries that an epoch holds
    lessons       share of what the five networks predict that an epoch holds
    repeats       times that an epoch holds each spectrum of the small sources of modified peptides
    near          share of the absolute spectra that are shown as the shipped kind
    near_phospho  share of the phosphorylated spectra that are
    """

    epochs: float = 30.0
    rate: float = 1.5e-3
    warm_up: int = 300
    decay: float = 0.02
    clip: float = 1.0
    average: float = 0.999
    batch: int = 64
    phospho: float = 0.35
    lessons: float = 0.35
    repeats: int = 3
    near: float = 0.4
    near_phospho: float = 0.2


class Bucket:
    """Spectra that are padded to one length, as arrays."""

    def __init__(self, spectra: list[Spectrum], length: int) -> None:
        count = len(spectra)
        self.encoded = np.zeros((count, length, rows.WIDTH), dtype=np.int8)
        self.observed = np.zeros((count, length, ladder.COUNT), dtype=np.float16)
        self.mask = np.zeros((count, length, ladder.COUNT), dtype=bool)
        for i, s in enumerate(spectra):
            n = len(s.peptide)
            self.encoded[i, :n] = rows.encode(s.peptide, s.modified)
            self.observed[i, : n - 1] = s.intensity
            self.mask[i, : n - 1] = s.observed
        self.charge = np.array([s.charge for s in spectra], dtype=np.int32)
        self.kind = np.array([s.kind for s in spectra], dtype=np.int32)
        self.energy = energy_input(np.array([s.energy for s in spectra]))
        self.noise = np.array([s.noise for s in spectra], dtype=np.float32)
        self.weight = np.array([s.weight for s in spectra], dtype=np.float32)
        self.share = np.array([0.0] * count, dtype=np.float32)


def energy_input(energy: np.ndarray) -> np.ndarray:
    """The network's input for collision energies, float32; an unknown one is the centre."""
    scaled = (np.asarray(energy, dtype=np.float64) - ENERGY_CENTRE) / ENERGY_SCALE
    return np.nan_to_num(scaled, nan=0.0).astype(np.float32)


def share_of(spectrum: Spectrum, schedule: Schedule) -> float:
    """How often an epoch holds the spectrum."""
    if spectrum.group == "lesson":
        return schedule.lessons
    if spectrum.group.startswith("phospho_"):
        rare = any(n.startswith(("Phospho@Y", "Oxidation", "Acetyl")) for n in spectrum.names)
        return 1.0 if rare else schedule.phospho
    return float(schedule.repeats) if spectrum.names or spectrum.energy > 0 else 1.0


def fill_buckets(spectra: list[Spectrum], schedule: Schedule) -> list[Bucket]:
    """The spectra by padded length."""
    of = np.searchsorted(LENGTHS, [len(s.peptide) for s in spectra])
    buckets = []
    for index, length in enumerate(LENGTHS):
        own = [spectra[i] for i in np.flatnonzero(of == index)]
        bucket = Bucket(own, length)
        bucket.share[:] = [share_of(s, schedule) for s in own]
        buckets.append(bucket)
    return buckets


def shown_kind(kind: np.ndarray, schedule: Schedule, random: np.random.Generator) -> np.ndarray:
    """Replaces some kinds by the shipped one, so that it learns what only they have."""
    draw = random.random(kind.shape)
    near = np.isin(kind, NEAR_SHIPPED) & (draw < schedule.near)
    phospho = np.isin(kind, PHOSPHO) & (draw < schedule.near_phospho)
    return np.where(near | phospho, SHIPPED, kind).astype(np.int32)


def epoch(
    buckets: list[Bucket], schedule: Schedule, random: np.random.Generator
) -> Iterator[tuple[np.ndarray, ...]]:
    """One pass in a random order, full batches only."""
    batches, size = [], schedule.batch
    for bucket in buckets:
        times = np.floor(bucket.share + random.random(bucket.share.shape)).astype(int)
        order = random.permutation(np.repeat(np.arange(len(times)), times))
        batches += [(bucket, order[i : i + size]) for i in range(0, len(order) - size + 1, size)]
    for index in random.permutation(len(batches)):
        bucket, chosen = batches[index]
        phospho = bucket.encoded[chosen, :, 5].any(1)  # the column of phosphorus
        kind = bucket.kind[chosen]
        kind = np.where(phospho | ~np.isin(kind, PHOSPHO), shown_kind(kind, schedule, random), kind)
        yield (
            bucket.encoded[chosen].astype(np.float32),
            bucket.charge[chosen],
            kind.astype(np.int32),
            bucket.energy[chosen],
            bucket.noise[chosen],
            bucket.weight[chosen],
            bucket.observed[chosen].astype(np.float32),
            bucket.mask[chosen].astype(np.float32),
        )


class Trainer:
    """One network in training."""

    def __init__(self, network: Network, schedule: Schedule) -> None:
        self.network = network
        self.schedule = schedule
        self.optimiser = AdamW(network.weights, schedule.decay, schedule.clip, schedule.average)

    @tf.function(jit_compile=True)
    def step(self, encoded, charge, kind, energy, noise, weight, observed, mask, numbers):  # noqa: ANN001, ANN201
        """Learns from a batch; returns its mean loss."""
        with tf.GradientTape() as tape:
            logits = self.network(encoded, charge, kind, energy, training=True)
            flat = [tf.reshape(x, [tf.shape(x)[0], -1]) for x in (logits, observed, mask)]
            loss = tf.reduce_mean(weight * spectrum_loss(*flat, noise))
        self.optimiser.apply(tape, loss, numbers)
        return loss


def train(
    spectra: list[Spectrum],
    shape: Shape,
    schedule: Schedule,
    seed: int,
    folder: Path,
    begin: Callable[[Network], None],
    report: Callable[[Network], str],
) -> Network:
    """Trains on the spectra; writes weights.npz, run.json and log.tsv into the folder.

    `begin` sets the first weights. Returns a network with the averaged weights. `report` gives a
    line of figures after each epoch.
    """
    folder.mkdir(parents=True, exist_ok=True)
    tf.random.set_seed(seed)
    random = np.random.default_rng(seed)
    buckets = fill_buckets(spectra, schedule)
    steps = int(schedule.epochs * sum(b.share.sum() // schedule.batch for b in buckets))
    network, mean = Network(shape, seed), Network(shape, seed)
    begin(network)
    trainer = Trainer(network, schedule)
    about = {"shape": asdict(shape), "schedule": asdict(schedule), "seed": seed, "steps": steps}
    (folder / "run.json").write_text(json.dumps(about, indent=2) + "\n")
    index, began = 0, time.monotonic()
    with (folder / "log.tsv").open("a") as log:
        while index < steps:
            losses = []
            for batch in epoch(buckets, schedule, random):
                rate = cosine_rate(schedule.rate, index, steps, schedule.warm_up)
                losses.append(trainer.step(*batch, trainer.optimiser.numbers(index, rate)))
                index += 1
                if index >= steps:
                    break
            set_weights(mean, trainer.optimiser.averaged())
            save(mean, folder / "weights.npz")
            seconds = time.monotonic() - began
            line = f"{index}\t{seconds:.0f}\t{np.mean(losses):.4f}\t{report(mean)}"
            print(line, file=log, flush=True)
            print(line, flush=True)
    return mean


def load(folder: Path) -> Network:
    """The network that `train` wrote into the folder."""
    about = json.loads((folder / "run.json").read_text())
    sizes = {k: tuple(v) if isinstance(v, list) else v for k, v in about["shape"].items()}
    network = Network(Shape(**sizes), about["seed"])
    with np.load(folder / "weights.npz") as values:
        set_weights(network, dict(values))
    return network
