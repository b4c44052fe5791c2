# SPDX-License-Identifier: Apache-2.0
"""How the shipped networks were trained."""

from zav_training.msms.network import Shape
from zav_training.msms.training import Schedule

SEED = 1
SHAPE = Shape()
SCHEDULE = Schedule()
