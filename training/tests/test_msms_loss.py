# SPDX-License-Identifier: Apache-2.0
import numpy as np
import tensorflow as tf

from zav_training.msms import loss

#: acos near 1 costs half of float32's digits; loss.ALIKE adds about as much.
ANGLE_TOLERANCE = 5e-3


def of(logits: list[float], observed: list[float], mask: list[float], noise: float) -> float:
    rows = [tf.constant([x], tf.float32) for x in (logits, observed, mask)]
    return float(loss.spectrum_loss(*rows, tf.constant([noise]))[0])


def test_perfect_prediction_costs_nothing_on_any_scale() -> None:
    observed = [1.0, 0.5, 0.25]
    logits = (np.log(observed) + 3.0).tolist()
    assert of(logits, observed, [1.0] * 3, 0.01) < ANGLE_TOLERANCE


def test_absent_slot_costs_only_what_exceeds_the_noise() -> None:
    below, above = float(np.log(0.04)), float(np.log(0.3))
    assert of([0.0, below], [1.0, 0.0], [1.0, 1.0], 0.05) < ANGLE_TOLERANCE
    assert of([0.0, above], [1.0, 0.0], [1.0, 1.0], 0.05) > 0.1


def test_masked_slots_cost_nothing() -> None:
    assert of([0.0, 5.0], [1.0, 0.0], [1.0, 0.0], 0.01) < ANGLE_TOLERANCE


def test_gradient_is_finite_for_a_perfect_prediction() -> None:
    logits = tf.Variable([[0.0, -30.0, -1.0]])
    with tf.GradientTape() as tape:
        observed = tf.exp(tf.constant([[0.0, -30.0, -1.0]]))
        value = loss.spectrum_loss(logits, observed, tf.ones((1, 3)), tf.constant([0.01]))
    assert np.isfinite(tape.gradient(value, logits).numpy()).all()
