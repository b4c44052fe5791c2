# SPDX-License-Identifier: Apache-2.0
"""What training minimises: the angle between predicted and observed spectra."""

import math

import tensorflow as tf

#: Keeps the gradient of the angle finite where two spectra are alike.
ALIKE = 1.0 - 1e-5
TINY = 1e-9
#: Weight of the angle between square roots, which makes small peaks count.
ROOT_WEIGHT = 0.3


def angle(a: tf.Tensor, b: tf.Tensor) -> tf.Tensor:
    """2 / pi * the angle between the rows of two [B, slots] matrices: 0 alike, 1 disjoint."""
    norm = tf.sqrt(tf.reduce_sum(a * a, 1) * tf.reduce_sum(b * b, 1)) + TINY
    cosine = tf.reduce_sum(a * b, 1) / norm
    return 2.0 / math.pi * tf.acos(tf.minimum(cosine * ALIKE, ALIKE))


def targets(predicted: tf.Tensor, observed: tf.Tensor, noise: tf.Tensor) -> tf.Tensor:
    """Observed intensities with the absent slots filled in, [B, slots].

    An absent slot is the prediction itself, scaled to the spectrum, but at most the noise level
    [B]: only what would have been seen costs anything.
    """
    fixed = tf.stop_gradient(predicted)
    seen = tf.cast(observed > 0.0, fixed.dtype)
    scale = tf.reduce_sum(fixed * observed, 1) / (tf.reduce_sum(fixed * fixed * seen, 1) + TINY)
    absent = tf.minimum(fixed * scale[:, None], noise[:, None])
    return tf.where(observed > 0.0, observed, absent)


def spectrum_loss(
    logits: tf.Tensor, observed: tf.Tensor, mask: tf.Tensor, noise: tf.Tensor
) -> tf.Tensor:
    """Loss of each spectrum, [B]; logits, observed and mask (1 observable, 0 not) [B, slots]."""
    predicted = tf.exp(logits - tf.reduce_max(logits - 99.0 * (1.0 - mask), 1, keepdims=True))
    predicted *= mask
    wanted = targets(predicted, observed, noise) * mask
    roots = angle(tf.sqrt(predicted + TINY) * mask, tf.sqrt(wanted + TINY) * mask)
    return angle(predicted, wanted) + ROOT_WEIGHT * roots
