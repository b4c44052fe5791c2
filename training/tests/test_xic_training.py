# SPDX-License-Identifier: Apache-2.0
from pathlib import Path

import numpy as np

from zav_training.xic import network
from zav_training.xic.batches import collate
from zav_training.xic.examples import simulated_example
from zav_training.xic.pipeline import PADDING, gaussian_filter
from zav_training.xic.training import WARM_UP, Trainer, learning_rate, train

SMALL = network.Size((8, 8, 8, 8), heads=2, least=0.0, dice=0.3, lowest=0.0, mixed=4)


def test_learning_rate_rises_then_falls_to_a_hundredth() -> None:
    assert learning_rate(0, 1000, 1.0) < learning_rate(WARM_UP - 1, 1000, 1.0) == 1.0
    assert learning_rate(999, 1000, 1.0) < 0.011


def test_training_learns_and_leaves_its_weights(tmp_path: Path) -> None:
    rng = np.random.default_rng(1)
    kernel = gaussian_filter(5)
    few = [collate([simulated_example(rng, 128) for _ in range(8)], 128, kernel, PADDING)] * 2
    trainer = Trainer(SMALL, 1)
    before = trainer.step(few[0], 0.0)
    path = tmp_path / "weights.npz"
    weights = train(trainer, iter(few * 100), 120, 5e-3, path, lambda _: None)
    assert trainer.step(few[0], 0.0) < 0.8 * before
    kept = np.load(path)
    assert all(np.array_equal(kept[k], v) for k, v in weights.items())


def test_padding_does_not_count() -> None:
    rng = np.random.default_rng(2)
    batch = collate([simulated_example(rng, 60)], 128, None, PADDING)
    assert np.all(batch.weights[0, 60:] == 0.0)
    assert np.all(batch.x[0, 60:] < 0.0)
