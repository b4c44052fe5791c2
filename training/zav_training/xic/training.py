# SPDX-License-Identifier: Apache-2.0
"""The training loop of both networks."""

from collections.abc import Callable, Iterator
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.xic import network
from zav_training.xic.batches import Batch

WARM_UP = 200
AVERAGED = 0.999


def learning_rate(step: int, steps: int, peak: float) -> float:
    """Rises over the first steps, then falls along a cosine to a hundredth."""
    if step < WARM_UP:
        return peak * (step + 1) / WARM_UP
    share = (step - WARM_UP) / max(steps - WARM_UP, 1)
    return peak * (0.01 + 0.99 * 0.5 * (1.0 + np.cos(np.pi * share)))


def loss(logits: tf.Tensor, targets: tf.Tensor, weights: tf.Tensor, dice: float) -> tf.Tensor:
    """Weighted cross-entropy of all heads, and overlap of the first (Milletari 2016)."""
    entropy = tf.nn.sigmoid_cross_entropy_with_logits(labels=targets, logits=logits)
    entropy = tf.reduce_sum(entropy * weights) / (tf.reduce_sum(weights[:, :, 0]) + 1.0)
    inside = tf.sigmoid(logits[:, :, 0])
    weight = tf.minimum(weights[:, :, 0], 1.0)
    both = tf.reduce_sum(weight * inside * targets[:, :, 0], 1)
    either = tf.reduce_sum(weight * (inside + targets[:, :, 0]), 1)
    return entropy + dice * tf.reduce_mean(1.0 - (2.0 * both + 1.0) / (either + 1.0))


class Trainer:
    """Weights, their running average, and one step of AdamW (Loshchilov 2019) at a time."""

    def __init__(
        self, size: network.Size, seed: int, start: dict | None = None, levelled: bool = False
    ) -> None:
        initial = start or network.initial_weights(size, seed)
        self.size, self._levelled = size, levelled
        self.variables = {k: tf.Variable(v, name=k.replace("/", "_")) for k, v in initial.items()}
        self._average = {k: v.copy() for k, v in initial.items()}
        self._optimizer = tf.keras.optimizers.AdamW(
            1e-3, weight_decay=1e-3, global_clipnorm=1.0, epsilon=1e-7
        )
        self._optimizer.build(list(self.variables.values()))
        self._steps = 0
        signature = [tf.TensorSpec([None, None])] + [tf.TensorSpec([None, None, size.heads])] * 2
        self._apply = tf.function(
            self._descend, input_signature=[*signature, tf.TensorSpec([None, network.CONVENTIONS])]
        )

    def _descend(
        self, x: tf.Tensor, targets: tf.Tensor, weights: tf.Tensor, told: tf.Tensor
    ) -> tf.Tensor:
        with tf.GradientTape() as tape:
            used = network.used_points(x, self.size)
            x = network.levelled(x, used, self.size) if self._levelled else x
            logits = network.logits(self.variables, x, used, told, self.size)
            value = loss(logits, targets, weights, self.size.dice)
        variables = list(self.variables.values())
        self._optimizer.apply_gradients(
            zip(tape.gradient(value, variables), variables, strict=True)
        )
        return value

    def step(self, batch: Batch, rate: float) -> float:
        """One step at the given learning rate; returns the loss."""
        self._optimizer.learning_rate.assign(rate)
        value = float(self._apply(batch.x, batch.targets, batch.weights, batch.told))
        self._steps += 1
        if self._steps % 10 == 0:
            self._keep(min(AVERAGED**10, self._steps / (self._steps + 100.0)))
        return value

    def _keep(self, share: float) -> None:
        for key, variable in self.variables.items():
            self._average[key] += (1.0 - share) * (variable.numpy() - self._average[key])

    def weights(self) -> dict[str, np.ndarray]:
        """The running average, which generalises better than the last step."""
        return {k: v.copy() for k, v in self._average.items()}


def train(
    trainer: Trainer,
    batches: Iterator[Batch],
    steps: int,
    peak_rate: float,
    checkpoint: Path,
    report: Callable[[str], None] = print,
) -> dict[str, np.ndarray]:
    """Runs the steps; leaves the averaged weights in the checkpoint now and then."""
    mean = None
    for step in range(steps):
        value = trainer.step(next(batches), learning_rate(step, steps, peak_rate))
        mean = value if mean is None else 0.99 * mean + 0.01 * value
        if step % 500 == 499 or step == steps - 1:
            report(f"step {step + 1} of {steps}, loss {mean:.4f}")
            np.savez(checkpoint, **trainer.weights())
    return trainer.weights()
