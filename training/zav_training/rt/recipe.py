# SPDX-License-Identifier: Apache-2.0
"""How the shipped network of retention times was trained."""

import dataclasses
from collections.abc import Callable
from pathlib import Path

from zav_training.rt.data import Observation
from zav_training.rt.network import Network, Shape
from zav_training.rt.training import Schedule, train

SEED = 1
SHAPE = Shape()
SCHEDULE = Schedule(epochs=12)


def run(
    observations: list[Observation],
    folder: Path,
    seed: int,
    length: float,
    report: Callable[[Network, list[Observation]], str],
) -> Network:
    """Trains into the folder; `length` is a factor of the epochs."""
    schedule = dataclasses.replace(SCHEDULE, epochs=SCHEDULE.epochs * length)
    return train(observations, SHAPE, schedule, seed, folder, report)
