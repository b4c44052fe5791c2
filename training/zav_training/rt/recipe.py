# SPDX-License-Identifier: Apache-2.0
"""How the shipped network of retention times was trained: a large teacher, then a small student."""

import dataclasses
from collections.abc import Callable
from pathlib import Path

from zav_training.rt.data import Observation
from zav_training.rt.evaluation import predict
from zav_training.rt.network import Network, Shape
from zav_training.rt.training import Schedule, train

SEED = 1
TEACHER_SHAPE = Shape(width=96, mixing=48, pooled=128)
TEACHER = Schedule(epochs=10)
STUDENT_SHAPE = Shape(width=48, mixing=24, pooled=64, hidden=(96, 48))
STUDENT = Schedule(epochs=16)

Report = Callable[[Network, list[Observation]], str]


def run(
    observations: list[Observation], folder: Path, seed: int, length: float, report: Report
) -> Network:
    """Trains the student into the folder, its teacher into a subfolder; `length` is a factor of the
    epochs."""
    teacher_folder = folder / "teacher"
    teacher = train(
        observations, TEACHER_SHAPE, stretched(TEACHER, length), seed, teacher_folder, report
    )
    lessons = predict(teacher, observations)
    schedule = stretched(STUDENT, length)
    return train(observations, STUDENT_SHAPE, schedule, seed + 1, folder, report, lessons)


def stretched(schedule: Schedule, length: float) -> Schedule:
    """The schedule with its epochs multiplied."""
    return dataclasses.replace(schedule, epochs=schedule.epochs * length)
