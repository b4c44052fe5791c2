# SPDX-License-Identifier: Apache-2.0
import numpy as np

from zav_training.xic.groups import agreed
from zav_training.xic.traces import Trace

POINTS = np.arange(200.0)
LABEL = (85.0, 115.0)
BELL = np.exp(-0.5 * ((POINTS - 100.0) / 6.0) ** 2)


def transition(height: float, group: str = "g", peak: tuple[float, float] = LABEL) -> Trace:
    """A bell of the given height in noise of standard deviation 1."""
    noise = np.random.default_rng(3).standard_normal(len(POINTS))
    y = np.maximum(height * BELL + noise + 5.0, 0.0)
    return Trace("i", "s", "d", "m", "software", POINTS, y, [peak], group=group)


def test_shown_peak_needs_no_witness() -> None:
    strong = transition(1000.0, group="")
    assert [t for t, _ in agreed([strong])] == [strong]


def test_weak_transition_counts_when_another_shows_the_peak() -> None:
    strong, weak = transition(1000.0), transition(4.0)
    assert agreed([weak]) == []
    found = agreed([strong, weak])
    assert [t for t, _ in found] == [strong, weak]
    assert found[1][1].half_width == found[0][1].half_width


def test_witness_of_another_group_does_not_count() -> None:
    strong = transition(1000.0, group="other")
    assert [t for t, _ in agreed([strong, transition(4.0)])] == [strong]


def test_witness_of_another_label_does_not_count() -> None:
    strong = transition(1000.0, peak=(80.0, 120.0))
    assert [t for t, _ in agreed([strong, transition(4.0)])] == [strong]


def test_trace_without_the_peak_is_not_held_to_it() -> None:
    strong = transition(1000.0)
    assert [t for t, _ in agreed([strong, transition(0.0)])] == [strong]
