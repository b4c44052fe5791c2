# SPDX-License-Identifier: Apache-2.0
"""How the shipped networks were trained: two teachers, then a student of their mean."""

import dataclasses
from collections.abc import Callable
from pathlib import Path

import numpy as np

from zav_training.msms.distillation import lessons
from zav_training.msms.network import Network, Shape
from zav_training.msms.spectra import Spectrum
from zav_training.msms.training import Schedule, train

SEED = 1
SHAPE = Shape(dropout=0.2)
BOOSTS = {1: 1.5, 4: 1.5, 5: 2.0}
#: The second is stricter about absent peaks and is taught part of the time what ships.
TEACHERS = (
    Schedule(epochs=72, decay=0.03, boosts=BOOSTS, orbitrap=2.0),
    Schedule(epochs=54, decay=0.03, boosts=BOOSTS, orbitrap=2.5, noise_scale=0.5, typical=0.35),
)
STUDENT = Schedule(epochs=8, rate=1e-3, decay=0.0, generic=0.0, boosts=BOOSTS)

Report = Callable[[Network], str]


def run(spectra: list[Spectrum], folder: Path, seed: int, length: float, report: Report) -> Network:
    """Trains teachers and student into subfolders; `length` is a factor of their epochs."""
    learnt = [s for s in spectra if not s.held_out]
    teachers = [
        train(learnt, SHAPE, stretched(schedule, length), seed + i, folder / f"teacher{i}", report)
        for i, schedule in enumerate(TEACHERS)
    ]
    return teach(teachers, learnt, folder / "student", seed + len(TEACHERS), length, report)


def teach(
    teachers: list[Network],
    spectra: list[Spectrum],
    folder: Path,
    seed: int,
    length: float,
    report: Report,
) -> Network:
    """Trains the student, which begins as the last teacher, and needs no dropout."""
    shown = lessons(teachers, spectra, np.random.default_rng(seed))
    shape = dataclasses.replace(SHAPE, dropout=0.0)
    return train(shown, shape, stretched(STUDENT, length), seed, folder, report, teachers[-1])


def stretched(schedule: Schedule, length: float) -> Schedule:
    """The schedule with its epochs multiplied."""
    return dataclasses.replace(schedule, epochs=schedule.epochs * length)
