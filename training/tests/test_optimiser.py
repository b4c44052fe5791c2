# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest
import tensorflow as tf

from zav_training.optimiser import AdamW, cosine_rate


def test_rate_warms_up_and_follows_a_cosine_to_its_last_share() -> None:
    assert cosine_rate(1.0, 0, 1000, 10) == pytest.approx(0.1)
    assert cosine_rate(1.0, 500, 1000, 10) == pytest.approx(0.5)
    assert cosine_rate(1.0, 1000, 1000, 10) == pytest.approx(0.0)
    assert cosine_rate(2.0, 1000, 1000, 10, last=0.01) == pytest.approx(0.02)


def test_matrices_decay_and_vectors_do_not() -> None:
    weights = {"w": tf.Variable(tf.ones((1, 1))), "b": tf.Variable(tf.ones(1))}
    optimiser = AdamW(weights, decay=0.5, clip=1.0, average=0.0)
    with tf.GradientTape() as tape:
        loss = 0.0 * (tf.reduce_sum(weights["w"]) + tf.reduce_sum(weights["b"]))
    optimiser.apply(tape, loss, optimiser.numbers(0, rate=0.1))
    assert weights["w"].numpy().item() == pytest.approx(0.95)
    assert weights["b"].numpy().item() == pytest.approx(1.0)


def test_a_parabola_is_descended_to_its_minimum() -> None:
    weights = {"x": tf.Variable(4.0)}
    optimiser = AdamW(weights, decay=0.0, clip=1.0, average=0.9)
    for step in range(400):
        with tf.GradientTape() as tape:
            loss = tf.square(weights["x"] - 3.0)
        optimiser.apply(tape, loss, optimiser.numbers(step, cosine_rate(0.1, step, 400, 10)))
    assert weights["x"].numpy() == pytest.approx(3.0, abs=1e-2)
    assert optimiser.averaged()["x"] == pytest.approx(3.0, abs=1e-2)


def test_average_begins_with_the_first_weights_and_follows_slowly() -> None:
    optimiser = AdamW({"x": tf.Variable(1.0)}, 0.0, 1.0, average=0.99)
    assert optimiser.average_rate_at(0) == pytest.approx(0.1)
    assert optimiser.average_rate_at(10_000) == pytest.approx(0.99)
    assert np.isclose(optimiser.averaged()["x"], 1.0)
