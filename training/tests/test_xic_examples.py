# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.xic import examples
from zav_training.xic.examples import Example


def example() -> Example:
    y = np.exp(-0.5 * ((np.arange(100.0) - 40.0) / 4.0) ** 2) + 0.5
    targets, weights = np.zeros((2, 100), np.float32), np.ones((2, 100), np.float32)
    targets[0, 30:51] = 1.0
    return Example(y, targets, weights, np.zeros(2, np.float32))


def test_lifted_trace_keeps_its_noise_and_its_targets(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(examples, "BROKEN_SHARE", 0.0)
    before, rng = example(), np.random.default_rng(1)
    for _ in range(50):
        after = examples.lift(rng, before, 1.0)
        base = after.intensity - before.intensity
        assert np.ptp(base) < 1e-9
        # 1.5 is the largest value
        assert 0.05 * 1.5 <= base[0] <= 50.0 * 1.5
        assert np.array_equal(after.targets, before.targets)


def test_few_points_of_a_broken_base_stay_behind_at_0(monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setattr(examples, "BROKEN_SHARE", 1.0)
    before, rng = example(), np.random.default_rng(2)
    at_start = at_end = 0
    for _ in range(60):
        y = examples.lift(rng, before, 1.0).intensity
        assert 1 <= np.sum(y == 0.0) <= 5
        at_start, at_end = at_start + (y[0] == 0.0), at_end + (y[-1] == 0.0)
    assert at_start > 0 and at_end > 0


def test_as_many_examples_are_lifted_as_asked_for() -> None:
    before, rng = example(), np.random.default_rng(3)
    same = sum(examples.lift(rng, before, 0.2) is before for _ in range(400))
    # four standard deviations of 400 draws
    assert same / 400 == pytest.approx(0.8, abs=0.08)


def test_share_of_0_draws_nothing() -> None:
    rng, other = np.random.default_rng(4), np.random.default_rng(4)
    before = example()
    assert examples.lift(rng, before, 0.0) is before
    assert rng.random() == other.random()
