# SPDX-License-Identifier: Apache-2.0
from collections.abc import Callable

import numpy as np
import pytest
import tensorflow as tf

from zav_training import graphs
from zav_training.xic import graph, network
from zav_training.xic.graph import LimitsRule, SplitRule
from zav_training.xic.pipeline import LimitsOptions, SplitOptions, limits_input, split_input

#: Float arithmetic in another order: the two differ by a few units in the seventh digit.
FLOAT_TOLERANCE = 1e-5
TOLD = (0.1, 0.4)
Run = Callable[[np.ndarray], np.ndarray]


@pytest.fixture(scope="module")
def weights() -> dict[str, np.ndarray]:
    return network.initial_weights(network.DETECTOR, 3)


@pytest.fixture(scope="module")
def limits(weights: dict[str, np.ndarray], tmp_path_factory: pytest.TempPathFactory) -> Run:
    path = tmp_path_factory.mktemp("graphs") / "xic_limits.pb"
    graphs.write_graph(graph.limits_graph(weights, LimitsRule(TOLD)), path)
    return graph.trace_runner(path)


@pytest.fixture(scope="module")
def splitter(weights: dict[str, np.ndarray], tmp_path_factory: pytest.TempPathFactory) -> Run:
    path = tmp_path_factory.mktemp("graphs") / "xic_split.pb"
    start = network.splitter_start(weights)
    graphs.write_graph(graph.split_graph(start, SplitRule(TOLD)), path)
    return graph.trace_runner(path)


def some_trace(points: int) -> np.ndarray:
    rng = np.random.default_rng(points)
    t = np.arange(points)
    return 1e4 * np.exp(-0.5 * ((t - points / 2) / 6.0) ** 2) + rng.uniform(50.0, 90.0, points)


@pytest.mark.parametrize("length", [32, 224, 512, 1056, 4096])
def test_every_multiple_of_32_gives_as_many_values(limits: Run, splitter: Run, length: int) -> None:
    x = limits_input(some_trace(30), LimitsOptions(maxPointCount=length))[None]
    for run in (limits, splitter):
        y = run(x)
        assert y.shape == (1, length)
        assert np.all((y >= 0.0) & (y <= 1.0))


@pytest.mark.parametrize("points", [20, 200, 255, 256, 257, 700])
def test_length_of_the_padding_changes_nothing(limits: Run, splitter: Run, points: int) -> None:
    y = some_trace(points)
    for run, prepare, options in (
        (limits, limits_input, LimitsOptions),
        (splitter, split_input, SplitOptions),
    ):
        short = run(prepare(y, options(maxPointCount=1024))[None])[0, :points]
        long = run(prepare(y, options(maxPointCount=4096))[None])[0, :points]
        assert long == pytest.approx(short, abs=FLOAT_TOLERANCE)


@pytest.mark.parametrize("base", [0.0, 3e4])
def test_file_gives_what_training_computes(
    weights: dict[str, np.ndarray], limits: Run, base: float
) -> None:
    x = limits_input(some_trace(300) + base, LimitsOptions())[None]
    used = network.used_points(tf.constant(x))
    x_levelled = network.levelled(tf.constant(x), used, network.DETECTOR)
    told = tf.constant([TOLD])
    logits = network.logits(weights, x_levelled, used, told, network.DETECTOR)
    rule = LimitsRule(TOLD)
    joined = graph.part(logits[:, :, 0] - rule.inside, logits[:, :, 1] - rule.valley, used)
    final = graph.combine_limits(joined, x_levelled, used, rule)
    expected = tf.sigmoid(final + rule.offset).numpy()
    assert limits(x) == pytest.approx(expected, abs=FLOAT_TOLERANCE)


def levelled(x: tf.Tensor, size: network.Size = network.DETECTOR) -> tf.Tensor:
    return network.levelled(x, network.used_points(x, size), size)


def test_levelling_subtracts_the_lowest_point_and_leaves_the_padding() -> None:
    x = tf.constant([[0.6, 0.5, 1.0, 0.75, 0.5, 0.4, 0.3, 0.2, 0.1, -0.1, -0.2, -0.2]])
    found = levelled(x).numpy()[0]
    # of nine used points the last four hold padding: 0.5 is the lowest of the others
    expected = [0.2, 0.0, 1.0, 0.5, 0.0, 0.0, 0.0, 0.0, 0.0, -0.1, -0.2, -0.2]
    assert found == pytest.approx(expected, abs=1e-6)


@pytest.mark.parametrize(
    "row",
    [
        [0.0, 0.3, 1.0, 0.2, 0.1, 0.1, 0.1, 0.1, -1.0],
        [0.09, 0.3, 1.0, 0.2, 0.1, 0.1, 0.1, 0.1, -1.0],
        [0.9, 1.0, 0.9, 0.7, -1.0],
    ],
    ids=["reaches 0", "low base", "too short to tell"],
)
def test_levelling_leaves_a_trace(row: list[float]) -> None:
    x = tf.constant([row])
    assert np.array_equal(levelled(x), x)


def test_trace_below_0_is_levelled_for_the_splitter_alone() -> None:
    x = tf.constant([[0.5, -0.25, 1.0, 0.0, 0.0, 0.0]])
    # three used points: 0.75 and 1.25 over 1.25; the padding stays
    expected = [0.6, 0.0, 1.0, 0.0, 0.0, 0.0]
    assert levelled(x, network.SPLITTER).numpy()[0] == pytest.approx(expected, abs=1e-6)
    behind = tf.constant([[0.5, 1.0, -0.25, 0.0, 0.0, 0.0]])
    assert levelled(behind, network.SPLITTER).numpy()[0, :3] == pytest.approx([0.6, 1.0, 0.0])
    smoothed = tf.constant([[0.5, -0.25, 1.0, *[0.0] * 8, -1.0]])
    assert np.array_equal(levelled(smoothed), smoothed)


def test_rounding_of_a_flat_trace_is_not_blown_up() -> None:
    x = tf.constant([[1.0, 1.0 - 1e-7] * 16])
    assert np.max(levelled(x)) < 1e-3


@pytest.mark.parametrize("base", [0.5, 5.0, 50.0])
def test_trace_on_a_constant_base_looks_as_without_it(base: float) -> None:
    y = some_trace(300)
    y[:9] = 0.0  # the filter is five points wide: 0 is the lowest smoothed value, too
    options = LimitsOptions(maxPointCount=512)
    lifted = tf.constant(limits_input(y + base * y.max(), options)[None])
    found = levelled(lifted).numpy()[0, :298]
    # of the 24 bits of a float the base takes up six
    assert found == pytest.approx(limits_input(y, options)[:298], abs=1e-5)


@pytest.mark.parametrize("fill", [0.0, -1.0, -np.inf, 1.0])
def test_traces_without_a_shape_give_numbers(limits: Run, splitter: Run, fill: float) -> None:
    x = np.full((1, 512), fill, np.float32)
    for run in (limits, splitter):
        assert np.all(np.isfinite(run(x)))


def test_cut_is_what_the_options_ask_for() -> None:
    offset = LimitsRule(TOLD).offset
    threshold = 1.0 - LimitsOptions().probabilityTolerance
    assert 1.0 / (1.0 + np.exp(-offset)) == pytest.approx(threshold)


def combined(logits: list[float], rule: LimitsRule, x: list[float] | None = None) -> np.ndarray:
    row = tf.constant([logits], tf.float32)
    trace = tf.constant([x], tf.float32) if x else tf.ones_like(row)
    return graph.combine_limits(row, trace, tf.constant([len(logits)]), rule).numpy()[0]


def test_runs_of_one_and_two_points_disappear() -> None:
    rule = LimitsRule(TOLD, rescue=0.0)
    row = [-4, 3, -4, -4, 3, 3, -4, -4, 3, 3, 3, -4]
    assert np.flatnonzero(combined(row, rule) > 0).tolist() == [8, 9, 10]


def test_best_of_a_trace_that_fails_by_little_is_lifted() -> None:
    rule = LimitsRule(TOLD, rescue=2.0, lifted=0.5)
    row = [-9, -1, -1, -1, -9, -1.8, -1.8, -1.8, -9]
    assert np.flatnonzero(combined(row, rule) > 0).tolist() == [1, 2, 3]


def test_trace_that_fails_by_much_stays_empty() -> None:
    rule = LimitsRule(TOLD, rescue=2.0)
    assert np.all(combined([-9, -3, -3, -3, -9], rule) < 0)


def test_foot_is_cut_at_twice_the_high_points_beyond_them() -> None:
    x = [0.1] * 20 + [0.6, 1.0, 0.6] + [0.1] * 20
    found = np.flatnonzero(combined([3.0] * 43, LimitsRule(TOLD, reach=2.0), x) > 0)
    assert (found[0], found[-1], len(found)) == (12, 30, 19)


def test_each_run_is_cut_by_its_own_height() -> None:
    x = [0.0] * 8 + [0.01, 0.02, 0.01] + [0.0] * 8 + [0.0] + [1.0] * 10
    logits = [3.0] * 19 + [-3.0] + [3.0] * 10
    found = np.flatnonzero(combined(logits, LimitsRule(TOLD, reach=1.0, rise=0.0), x) > 0)
    assert found.tolist() == [*range(4, 15), *range(20, 30)]


def test_run_that_hardly_rises_is_dropped() -> None:
    x = [0.5, 0.52, 0.5, 0.0, 0.1, 1.0, 0.2, 0.0]
    logits = [3.0, 3.0, 3.0, -9.0, 3.0, 3.0, 3.0, -9.0]
    rule = LimitsRule(TOLD, rise=0.05)
    assert np.flatnonzero(combined(logits, rule, x) > 0).tolist() == [4, 5, 6]


def test_peak_on_the_flank_of_a_larger_one_is_kept() -> None:
    x = [0.0, 0.2, 0.3, 0.29, 0.3, 0.3, 1.0, 0.2, 0.0]
    logits = [3.0, 3.0, 3.0, 3.0, -9.0, 3.0, 3.0, 3.0, -9.0]
    found = np.flatnonzero(combined(logits, LimitsRule(TOLD, rise=0.1, reach=9.0), x) > 0)
    assert found.tolist() == [0, 1, 2, 3, 5, 6, 7]


def parted(inside: list[float], valley: list[float], used: int) -> np.ndarray:
    rows = [tf.constant([row], tf.float32) for row in (inside, valley)]
    return graph.part(*rows, tf.constant([used])).numpy()[0]


def test_valley_parts_at_its_surest_point_and_one_on_each_side() -> None:
    valley = [-5, -5, 1, 2, 3, 4, 1, 1, -5, -5]
    found = parted([3] * 10, valley, 10)
    assert np.flatnonzero(found < 0).tolist() == [4, 5, 6]
    assert np.all(found[[2, 3, 7]] == 3)


def test_each_valley_parts_once() -> None:
    found = parted([3] * 12, [-5, 1, 2, 1, -5, -5, -5, -5, 2, -5, -5, -5], 12)
    assert np.flatnonzero(found < 0).tolist() == [1, 2, 3, 7, 8, 9]


def test_valley_does_not_make_a_peak_of_what_is_none() -> None:
    found = parted([-2] * 8, [-5, 1, 2, 1, 1, 1, -5, -5], 8)
    assert np.all(found < 0)


def test_valley_behind_the_used_points_does_not_count() -> None:
    found = parted([3] * 8, [-5, -5, -5, 1, 2, 9, 9, 9], 5)
    assert np.flatnonzero(found[:5] < 0).tolist() == [3, 4]


def test_run_that_rises_most_is_kept_however_little_that_is() -> None:
    x = [1.0, 1.0, 1.0, 1.0, 0.98, 0.99, 0.98, 1.0]
    logits = [3.0, 3.0, 3.0, -9.0, 3.0, 3.0, 3.0, -9.0]
    rule = LimitsRule(TOLD, rise=0.05)
    assert np.flatnonzero(combined(logits, rule, x) > 0).tolist() == [4, 5, 6]


def test_nothing_is_found_behind_the_used_points() -> None:
    row = tf.constant([[3.0] * 8])
    used = tf.constant([5])
    found = graph.combine_limits(row, tf.ones_like(row), used, LimitsRule(TOLD)).numpy()[0]
    assert np.flatnonzero(found > 0).tolist() == [0, 1, 2, 3, 4]


def split_logits(valleys: list[float], shoulders: list[float]) -> tf.Tensor:
    return tf.constant([list(zip(valleys, shoulders, strict=True))])


def test_split_is_one_strict_maximum() -> None:
    row = [0.0, 1.0, 2.0, 1.5, 1.8, 0.0, -3.0, 0.5, 2.5, 2.5, 0.1, -1.0]
    logits = split_logits(row, [-9.0] * 12)
    found = graph.combine_splits(logits, tf.constant([12]), SplitRule(TOLD, apart=3)).numpy()[0]
    assert np.flatnonzero(found > 0).tolist() == [2, 8]  # of two equally sure ones the first
    assert found[2] == 2.0
    assert np.all(found[[1, 3, 7, 9]] <= -4.0)


def test_valley_and_shoulder_have_thresholds_of_their_own() -> None:
    logits = split_logits([1.0, -9.0, -9.0, 0.2, -9.0, -9.0], [-9.0, -9.0, 1.0, -9.0, -9.0, 3.0])
    rule = SplitRule(TOLD, valley=0.5, shoulder=2.0, apart=2)
    found = graph.combine_splits(logits, tf.constant([6]), rule).numpy()[0]
    assert found[np.flatnonzero(found > 0)].tolist() == [0.5, 1.0]
    assert np.flatnonzero(found > 0).tolist() == [0, 5]


def test_no_split_lies_behind_the_used_points() -> None:
    logits = split_logits([-1.0, 2.0, -1.0, 3.0], [-9.0] * 4)
    found = graph.combine_splits(logits, tf.constant([3]), SplitRule(TOLD, apart=1)).numpy()[0]
    assert np.flatnonzero(found > 0).tolist() == [1]


def test_splitter_starts_from_the_valleys(weights: dict[str, np.ndarray]) -> None:
    x = tf.constant(limits_input(some_trace(96), LimitsOptions(maxPointCount=96))[None])
    used, told = network.used_points(x), tf.constant([TOLD])
    both = network.logits(weights, x, used, told, network.DETECTOR)
    start = network.splitter_start(weights)
    split = network.logits(start, x, used, told, network.SPLITTER).numpy()[0]
    for head in range(network.SPLITTER.heads):
        assert split[:, head] == pytest.approx(both.numpy()[0, :, 1], abs=FLOAT_TOLERANCE)
