# SPDX-License-Identifier: Apache-2.0
"""How the shipped peptidoform network was trained."""

import dataclasses
from collections.abc import Callable
from functools import partial
from pathlib import Path

from zav_training.peptidoforms.beginning import begin_from
from zav_training.peptidoforms.lessons import make_lessons, plain_peptides
from zav_training.peptidoforms.network import Network, Shape
from zav_training.peptidoforms.spectra import Spectrum
from zav_training.peptidoforms.training import Schedule, load, set_weights, train

SEED = 1
#: Two stages: the second sees more of what the five networks predict, and less dropout.
STAGES = (
    (Shape(dropout=0.1), Schedule(epochs=12.0)),
    (Shape(dropout=0.05), Schedule(epochs=16.0, rate=1e-3, lessons=0.5)),
)
#: The trunk begins as the network of the charge that most spectra have.
BEGINNING = "msms_charge2.pb", 2
LESSONS = 90_000

Report = Callable[[Network], str]


def run(
    spectra: list[Spectrum],
    times: Path,
    models: Path,
    folder: Path,
    seed: int,
    length: float,
    report: Report,
) -> Network:
    """Trains the stages into subfolders of the folder; `length` is a factor of their epochs.

    A stage whose folder holds weights is taken as done.
    """
    learnt = [s for s in spectra if not s.held_out]
    learnt += make_lessons(models, plain_peptides(times), LESSONS, seed)
    graph, charge = BEGINNING
    begin: Callable[[Network], None] = partial(begin_from, graph=models / graph, charge=charge)
    for index, (shape, schedule) in enumerate(STAGES):
        stage = folder / f"stage{index}"
        if (stage / "weights.npz").exists():
            network = load(stage)
        else:
            stretched = dataclasses.replace(schedule, epochs=schedule.epochs * length)
            network = train(learnt, shape, stretched, seed + index, stage, begin, report)
        begin = partial(copy_weights, source=network)
    return network


def copy_weights(network: Network, source: Network) -> None:
    """Sets the network's weights to those of another of the same sizes."""
    set_weights(network, {name: v.numpy() for name, v in source.weights.items()})
