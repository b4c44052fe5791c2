# SPDX-License-Identifier: Apache-2.0
"""AdamW with clipped gradients and a moving average of the weights."""

import math

import numpy as np
import tensorflow as tf

BETAS = (0.9, 0.99)
EPSILON = 1e-8


def cosine_rate(rate: float, step: int, steps: int, warm_up: int, last: float = 0.0) -> float:
    """Learning rate of a step, counted from 0: a warm-up, then a cosine down to `last` * rate."""
    done = min(step / steps, 1.0)
    share = last + (1.0 - last) * 0.5 * (1.0 + math.cos(math.pi * done))
    return rate * min(1.0, (step + 1) / warm_up) * share


class AdamW:
    """The state of an optimisation of `weights`."""

    def __init__(
        self, weights: dict[str, tf.Variable], decay: float, clip: float, average: float
    ) -> None:
        self._names = list(weights)
        self._variables = list(weights.values())
        self._decay, self._clip, self._average = decay, clip, average
        self._first = [tf.Variable(tf.zeros_like(v)) for v in self._variables]
        self._second = [tf.Variable(tf.zeros_like(v)) for v in self._variables]
        self._mean = [tf.Variable(v) for v in self._variables]

    def average_rate_at(self, step: int) -> float:
        """Share of the old average that a step keeps; less at first."""
        return min(self._average, (step + 1) / (step + 10))

    def numbers(self, step: int, rate: float) -> np.ndarray:
        """What `apply` needs to know of a step, float32 [4]."""
        corrections = [1.0 - beta ** (step + 1) for beta in BETAS]
        return np.array([rate, self.average_rate_at(step), *corrections], dtype=np.float32)

    def averaged(self) -> dict[str, np.ndarray]:
        """The moving average of the weights by name."""
        return {n: m.numpy() for n, m in zip(self._names, self._mean, strict=True)}

    def apply(self, tape: tf.GradientTape, loss: tf.Tensor, numbers: tf.Tensor) -> None:
        """One step down the gradient of the loss; matrices decay."""
        gradients = tape.gradient(loss, self._variables)
        gradients = [tf.convert_to_tensor(g) for g in gradients]
        gradients, _ = tf.clip_by_global_norm(gradients, self._clip)
        rate, keep, first, second = tf.unstack(numbers)
        state = zip(self._variables, gradients, self._first, self._second, self._mean, strict=True)
        for v, g, m, s, mean in state:
            if len(v.shape) > 1:
                v.assign_sub(v * (rate * self._decay))
            tf.raw_ops.ResourceApplyAdam(
                var=v.handle,
                m=m.handle,
                v=s.handle,
                beta1_power=1.0 - first,
                beta2_power=1.0 - second,
                lr=rate,
                beta1=BETAS[0],
                beta2=BETAS[1],
                epsilon=EPSILON,
                grad=g,
            )
            mean.assign(mean * keep + v * (1.0 - keep))
