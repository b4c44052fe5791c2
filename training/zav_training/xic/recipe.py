# SPDX-License-Identifier: Apache-2.0
"""What was chosen: schedules, conventions told to the shipped networks, options that fit."""

from dataclasses import dataclass

from zav_training.xic.examples import conventions
from zav_training.xic.graph import LimitsRule, SplitRule
from zav_training.xic.pipeline import LimitsOptions, SplitOptions
from zav_training.xic.simulate import VALLEY_DEPTH


@dataclass(frozen=True)
class Schedule:
    """Steps of the training and its largest learning rate."""

    steps: int
    rate: float


SEED = 4
LIMITS_SCHEDULE = Schedule(50_000, 2e-3)
#: For a training of the limits network that starts from given weights: on levelled traces, of which
#: these shares stand on a constant base or have a small neighbour.
CONTINUED_SCHEDULE = Schedule(8_000, 6e-4)
LIFTED_SHARE, NEIGHBOUR_SHARE = 0.2, 0.2
SPLIT_SCHEDULE = Schedule(25_000, 2e-3)
#: Peaks drawn 3.45 widths at half height wide; valleys of 20 % part them.
LIMITS_RULE = LimitsRule(told=tuple(conventions(3.45, 0.2).tolist()), inside=0.7, valley=1.0)
SPLIT_RULE = SplitRule(
    told=tuple(conventions(3.7, VALLEY_DEPTH[0]).tolist()), valley=0.3, shoulder=0.6
)
LIMITS_OPTIONS = LimitsOptions()
SPLIT_OPTIONS = SplitOptions()
