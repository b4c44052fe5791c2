# SPDX-License-Identifier: Apache-2.0
"""The network: a U-shaped stack of convolutions along time, at a quarter of the resolution.

Four neighbouring points are folded into the channels of one place, so that no convolution runs at
full resolution: a place's channels carry its four points, and the last layer unfolds them again.
The same code runs with variables (training) and with frozen numbers (export).
"""

from dataclasses import dataclass

import numpy as np
import tensorflow as tf

FOLD = 4
#: Places folded and pooled into one at the lowest level: traces are a multiple of this long.
STRIDE = 32
#: Conventions that a network is told: width of a drawn peak, depth of a parting valley.
CONVENTIONS = 2
VIEWS = 9
#: Views of smoothed traces, one value a place: places averaged, places whose largest counts.
SMOOTHED = ((3, 75), (7, 75), (17, 257), (41, 257))
#: A lower base stays: the network knows such traces from its training.
LEAST_BASE = 0.1
#: A trace that rises by less over its base is flat: its rounding is not to be blown up.
LEAST_RISE = 1e-3


@dataclass(frozen=True)
class Size:
    """Channels of the four levels, and the values per point that come out.

    A point of `least` or more is no padding; where a trace may fall below 0, so is one that lies as
    far below. `dice` weighs the overlap in the loss. Before anything else the graph subtracts the
    base of a trace, which is its lowest point of at least `lowest`; the last `mixed` used points,
    into which the smoothing mixes padding, are no measure of it.
    """

    channels: tuple[int, int, int, int]
    heads: int
    least: float
    dice: float
    lowest: float
    mixed: int


#: Padding is -1 before the smoothing.
DETECTOR = Size((32, 48, 64, 96), heads=2, least=0.0, dice=0.3, lowest=0.0, mixed=4)
#: Padding is 0, nothing is smoothed, and a trace may fall below 0.
SPLITTER = Size((32, 48, 64, 96), heads=2, least=1e-12, dice=0.0, lowest=-1e6, mixed=0)


def convolutions(size: Size) -> dict[str, tuple[int, int, int]]:
    """Taps, inputs and outputs of each convolution, by name."""
    a, b, c, d = size.channels
    return {
        "a1": (5, VIEWS * FOLD + len(SMOOTHED), a),
        "a2": (5, a, a),
        "b1": (5, a, b),
        "b2": (5, b, b),
        "c1": (5, b, c),
        "c2": (5, c, c),
        "d1": (5, c, d),
        "d2": (5, d, d),
        "d3": (5, d, d),
        "e1": (5, d + c, c),
        "f1": (5, c + b, b),
        "g1": (5, b + a, a),
        "g2": (5, a, a),
        "out": (3, a, FOLD * size.heads),
    }


def initial_weights(size: Size, seed: int) -> dict[str, np.ndarray]:
    """Weights before training: convolutions for rectifiers (He 2015), the rest small."""
    rng = np.random.default_rng(seed)
    weights = {}
    for name, (taps, inputs, outputs) in convolutions(size).items():
        spread = np.sqrt(2.0 / (taps * inputs))
        weights[f"{name}/w"] = rng.normal(0.0, spread, (1, taps, inputs, outputs))
        weights[f"{name}/b"] = np.zeros(outputs)
    for name, level in (("a1", 0), ("d1", 3), ("g1", 0)):
        weights[f"{name}/told"] = rng.normal(0.0, 0.1, (CONVENTIONS, size.channels[level]))
    d = size.channels[3]
    weights["context/w"] = rng.normal(0.0, np.sqrt(1.0 / (2 * d)), (2 * d, d))
    weights["out/b"] -= 1.0
    return {k: v.astype(np.float32) for k, v in weights.items()}


def splitter_start(weights: dict[str, np.ndarray]) -> dict[str, np.ndarray]:
    """Weights from which the splitter learns: the limits network, its valleys for both outputs."""
    valleys = slice(1, None, DETECTOR.heads)
    result = {k: v.copy() for k, v in weights.items()}
    result["out/w"] = np.repeat(weights["out/w"][..., valleys], SPLITTER.heads, -1)
    result["out/b"] = np.repeat(weights["out/b"][valleys], SPLITTER.heads)
    return result


def views(x: tf.Tensor) -> tf.Tensor:
    """Looks at the trace [B, n] that no single scale shows, folded: [B, 1, n / 4, 40].

    A small peak beside a large one is seen relative to the largest values within about 25, 100,
    300 and 1,000 points, a wide ragged one in smoothed traces. Values below 0 are padding.
    """
    n = tf.shape(x)[1]
    folded = tf.reshape(x, [-1, 1, n // FOLD, FOLD])
    clipped = tf.clip_by_value(folded, 0.0, 1.0)
    quarter = tf.reduce_max(clipped, 3, keepdims=True)
    block = tf.nn.max_pool2d(quarter, [1, 8], [1, 8], "SAME")
    near = _relative(clipped, _max(quarter, 7))
    wide = _relative(clipped, _max(quarter, 25))
    wider = _relative(clipped, _spread(_max(block, 9), 8))
    widest = _relative(clipped, _spread(_max(block, 33), 8))
    root = tf.sqrt(clipped)
    return tf.concat(
        [
            clipped,
            root,
            tf.math.log1p(1e4 * clipped) * (1.0 / 9.21),
            near,
            wide,
            tf.sqrt(near),
            tf.sqrt(wider),
            tf.sqrt(widest),
            tf.cast(folded < 0.0, tf.float32),
            *_smoothed(clipped),
        ],
        3,
    )


def _smoothed(clipped: tf.Tensor) -> list[tf.Tensor]:
    """Roots of running means relative to the largest of them far around."""
    mean = tf.reduce_mean(clipped, 3, keepdims=True)
    result = []
    for places, around in SMOOTHED:
        calm = tf.nn.avg_pool2d(mean, [1, places], [1, 1], "SAME")
        block = tf.nn.max_pool2d(calm, [1, 8], [1, 8], "SAME")
        result.append(tf.sqrt(_relative(calm, _spread(_max(block, around // 8), 8))))
    return result


def _max(x: tf.Tensor, width: int) -> tf.Tensor:
    return tf.nn.max_pool2d(x, [1, width], [1, 1], "SAME")


def _relative(x: tf.Tensor, top: tf.Tensor) -> tf.Tensor:
    return x / (top + 1e-6)


def _spread(x: tf.Tensor, times: int) -> tf.Tensor:
    """Each place repeated along time."""
    shape = tf.shape(x)
    channels = x.shape[3]
    repeated = tf.tile(tf.expand_dims(x, 3), [1, 1, 1, times, 1])
    return tf.reshape(repeated, [-1, 1, shape[2] * times, channels])


def used_points(x: tf.Tensor, size: Size = DETECTOR) -> tf.Tensor:
    """Number of points of each trace up to its last one that is no padding, int32 [B]."""
    n = tf.shape(x)[1]
    ordinal = tf.cast(tf.range(1, n + 1), tf.float32)
    value = tf.abs(x) if size.lowest < 0.0 else x
    return tf.cast(tf.reduce_max(tf.where(value >= size.least, ordinal, 0.0), 1), tf.int32)


def levelled(x: tf.Tensor, used: tf.Tensor, size: Size) -> tf.Tensor:
    """The trace [B, n] without its lowest used value, its largest 1 again; padding stays.

    So a trace that is lifted as a whole looks as it did before. A base from 0 to LEAST_BASE stays.
    """
    ordinal, known = tf.range(tf.shape(x)[1])[None], x >= size.lowest
    counted = ordinal < used[:, None]
    measured = tf.logical_and(ordinal < used[:, None] - size.mixed, known)
    lowest = tf.reduce_min(tf.where(measured, x, 1.0), 1, keepdims=True)
    far = tf.logical_or(lowest >= LEAST_BASE, lowest < 0.0)
    base = tf.where(tf.logical_and(tf.reduce_any(measured, 1, keepdims=True), far), lowest, 0.0)
    risen = tf.maximum(x - base, 0.0) / tf.maximum(1.0 - base, LEAST_RISE)
    return tf.where(tf.logical_and(counted, known), risen, x)


def logits(weights: dict, x: tf.Tensor, used: tf.Tensor, told: tf.Tensor, size: Size) -> tf.Tensor:
    """Logits [B, n, heads] of a trace [B, n] of which the first `used` [B] points count.

    `told` [B or 1, 2] are the conventions. All channels are 0 behind the used points, as they are
    behind the end of the input, so that the padding's length changes nothing.
    """
    place = FOLD * tf.range(tf.shape(x)[1] // FOLD)
    mask = tf.cast(place < used[:, None], tf.float32)[:, None, :, None]
    half = _halve(mask)
    masks = dict(zip("abcd", (mask, half, _halve(half), _halve(_halve(half))), strict=True))
    masks |= {"e": masks["c"], "f": masks["b"], "g": masks["a"]}

    def convolve(name: str, y: tf.Tensor, extra: tf.Tensor | None = None) -> tf.Tensor:
        y = tf.nn.conv2d(y, weights[f"{name}/w"], 1, "SAME")
        y = tf.nn.bias_add(y, weights[f"{name}/b"])
        if f"{name}/told" in weights:
            y += (told @ weights[f"{name}/told"])[:, None, None, :]
        return tf.nn.relu(y if extra is None else y + extra) * masks[name[0]]

    a = convolve("a2", convolve("a1", views(x) * mask))
    b = convolve("b2", convolve("b1", _halve(a)))
    c = convolve("c2", convolve("c1", _halve(b)))
    d = convolve("d1", _halve(c))
    d = convolve("d3", convolve("d2", d, _context(weights, d, masks["d"])))
    c = convolve("e1", tf.concat([_spread(d, 2), c], 3))
    b = convolve("f1", tf.concat([_spread(c, 2), b], 3))
    a = convolve("g2", convolve("g1", tf.concat([_spread(b, 2), a], 3)))
    out = tf.nn.conv2d(a, weights["out/w"], 1, "SAME")
    out = tf.nn.bias_add(out, weights["out/b"])
    return tf.reshape(out, [-1, tf.shape(x)[1], size.heads])


def _halve(x: tf.Tensor) -> tf.Tensor:
    return tf.nn.max_pool2d(x, [1, 2], [1, 2], "VALID")


def _context(weights: dict, d: tf.Tensor, mask: tf.Tensor) -> tf.Tensor:
    """Mean and largest of each channel over the used places, [B, 1, 1, channels]."""
    mean = tf.reduce_sum(d, [1, 2]) / (tf.reduce_sum(mask, [1, 2]) + 1e-6)
    top = tf.reduce_max(d, [1, 2])
    return (tf.concat([mean, top], 1) @ weights["context/w"])[:, None, None, :]
