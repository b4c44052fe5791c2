# SPDX-License-Identifier: Apache-2.0
from dataclasses import replace
from itertools import pairwise

import numpy as np
import pytest

from zav_training.xic import shapes, simulate, splits
from zav_training.xic.evaluate_splits import clusters

#: Grid of the shapes, in their widths.
STEP = shapes.GRID[1] - shapes.GRID[0]


def gaussian(apex: float, sigma: float, height: float = 1.0) -> shapes.Peak:
    rng = np.random.default_rng(0)
    peak = shapes.draw_peak(rng, apex, sigma, height)
    shape = np.exp(-0.5 * shapes.GRID**2)
    peak.offset, peak.shape = shapes.GRID * sigma, shape
    peak.half_width, peak.foot = 2.3548 * sigma, (3.0349 * sigma, 3.0349 * sigma)
    return peak


def border(distance: float, heights: tuple[float, float] = (1.0, 1.0)) -> simulate.Border:
    peaks = [gaussian(50.0, 5.0, heights[0]), gaussian(50.0 + distance, 5.0, heights[1])]
    t = np.arange(150.0)
    curves = [p.height * p.curve(t) for p in peaks]
    return simulate.find_borders(peaks, np.sum(curves, axis=0), curves)[0]


@pytest.mark.parametrize("ratio", [0.1, 0.5, 1.0, 3.0])
def test_modified_gaussian_is_the_convolution_with_a_decay(ratio: float) -> None:
    decay = np.exp(-np.arange(0.0, 40.0, STEP) / ratio)
    expected = np.convolve(np.exp(-0.5 * shapes.GRID**2), decay)[: len(shapes.GRID)]
    found = shapes.exponentially_modified(ratio)
    # the sum over the grid stands for the integral: exact to a part of the step over the decay
    assert found / found.max() == pytest.approx(expected / expected.max(), abs=STEP / ratio)


def test_gaussian_is_drawn_the_asked_widths_wide() -> None:
    left, right = gaussian(0.0, 5.0).limits(4.0, simulate.GAUSSIAN_FOOT)
    assert right - left == pytest.approx(4.0 * 2.3548 * 5.0, rel=1e-3)
    assert left == pytest.approx(-right)


def test_two_gaussians_fall_between_them_as_far_as_they_should() -> None:
    # midway between equal Gaussians d apart the sum is 2 exp(-d^2 / 8 sigma^2)
    found = border(20.0)
    assert found.place == 60.0
    assert found.fall == pytest.approx(1.0 - 2.0 * np.exp(-2.0) / (1.0 + np.exp(-8.0)), abs=1e-3)
    assert found.resolution == pytest.approx(20.0 / (2.3548 * 5.0), rel=1e-3)


def test_shoulder_lies_where_the_curves_cross() -> None:
    found = border(12.0, (1.0, 0.25))
    assert found.fall < simulate.SHOULDER
    # equal sigma: the curves cross at d / 2 + sigma^2 ln(h1 / h2) / d
    assert found.place == pytest.approx(50.0 + 6.0 + 25.0 * np.log(4.0) / 12.0, abs=0.51)


def test_valley_counts_from_the_asked_depth_on() -> None:
    found = border(20.0)
    trace = simulate.Simulated(np.zeros(150), [], [found], 3.0, found.fall + 0.01, [], 0.0)
    assert trace.valleys() == []
    trace.valley_depth = found.fall - 0.01
    assert trace.valleys() == [found.place]


def test_clean_valley_is_to_be_split_and_drowned_one_is_not() -> None:
    assert splits.grade(border(20.0), 1e-4) == 1.0
    assert splits.grade(border(20.0), 10.0) == 0.0


def test_peaks_too_close_to_tell_are_not_split() -> None:
    assert splits.grade(border(6.0), 1e-6) == 0.0


def test_regions_are_ordered_and_apart() -> None:
    rng = np.random.default_rng(5)
    for _ in range(100):
        regions = simulate.simulate(rng, 300).regions
        for a, b in pairwise(regions):
            assert a.start <= a.end <= b.start + 1e-9


def test_intensities_are_finite_and_not_negative() -> None:
    rng = np.random.default_rng(6)
    for length in (24, 100, 512):
        for _ in range(60):
            y = simulate.simulate(rng, length).intensity
            assert y.shape == (length,)
            assert np.all(np.isfinite(y)) and np.all(y >= 0.0)


def test_neighbour_is_smaller_and_stands_beyond_the_feet_of_both() -> None:
    rng = np.random.default_rng(7)
    large = gaussian(100.0, 5.0, 2.0)
    sides = set()
    for _ in range(50):
        small = simulate.draw_neighbour(rng, large)
        assert 0.06 <= small.height <= 1.0
        assert 30.0 <= abs(small.apex - 100.0) <= 90.0
        sides.add(small.apex > 100.0)
    assert sides == {False, True}


def test_each_trace_with_a_peak_gets_a_neighbour_where_all_are_to_have_one() -> None:
    more = []
    for seed in range(60):
        without, beside = (
            len(simulate.simulate(np.random.default_rng(seed), 200, neighbours=share).peaks)
            for share in (0.0, 1.0)
        )
        more.append(beside - without)
        assert more[-1] == (1 if without else 0)
    assert sum(more) > 50


def test_seed_fixes_the_clusters() -> None:
    first, second = clusters(101, 5), clusters(101, 5)
    for a, b in zip(first, second, strict=True):
        assert np.array_equal(a.intensity, b.intensity)
        assert a.due == b.due


def test_split_examples_are_cut_to_a_region_with_its_targets() -> None:
    rng = np.random.default_rng(9)
    lengths = set()
    for _ in range(60):
        example = splits.simulated_split(rng, 200)
        assert example.targets.shape == example.weights.shape == (2, len(example.intensity))
        assert 12 <= len(example.intensity) <= 200
        lengths.add(len(example.intensity))
    assert min(lengths) < 150 and max(lengths) == 200


def trace_of(each: simulate.Border, length: int = 150) -> simulate.Simulated:
    return simulate.Simulated(np.zeros(length), [], [each], 3.0, 0.05, [], 1e-6)


def test_bump_of_a_shoulder_is_wider_and_counts_more_than_that_of_a_valley() -> None:
    valley, shoulder = border(30.0), border(12.0, (1.0, 0.25))
    width, weight = [], []
    for row, each in enumerate((valley, shoulder)):
        targets, weights = splits.split_targets(trace_of(each), slice(0, 150))
        assert targets[row].argmax() == round(each.place)
        assert not targets[1 - row].any()
        assert weights[1 - row, round(each.place)] == 0.0
        width.append(float((targets[row] > 0.5).sum()) / each.distance)
        weight.append(float(weights[row, round(each.place)]))
    assert width[1] > width[0]
    assert weight[1] > weight[0] > 1.0


def test_no_split_is_due_where_a_trace_is_cut() -> None:
    each = border(30.0)
    at_end = slice(0, round(each.place) + 2)
    targets, weights = splits.split_targets(trace_of(each), at_end)
    assert not targets.any()
    assert np.all(weights == 1.0)
    # the second apex is missing, but the valley has been passed: nobody could tell
    beyond = slice(0, round(each.place) + 8)
    targets, weights = splits.split_targets(trace_of(each), beyond)
    assert not targets.any()
    assert weights[0, round(each.place)] == 0.0


def test_split_of_a_flat_ground_is_due_in_its_middle() -> None:
    rng = np.random.default_rng(1)
    first, second = shapes.draw_peak(rng, 40.0, 4.0, 1.0), shapes.draw_peak(rng, 160.0, 4.0, 0.5)
    t = np.arange(200.0)
    curves = [p.height * p.curve(t) for p in (first, second)]
    (found,) = simulate.find_borders([first, second], sum(curves), curves)
    left = np.flatnonzero(curves[0] > 0.005)[-1]
    right = np.flatnonzero(curves[1] > 0.005)[0]
    assert found.place == pytest.approx(0.5 * (left + right), abs=1.5)
    assert found.fall > 0.99


def test_crowds_have_any_width_and_number_of_peaks() -> None:
    rng = np.random.default_rng(3)
    widths, numbers = [], []
    for _ in range(300):
        peaks = splits.draw_crowd(rng, 4096)
        widths.append(np.median([p.half_width for p in peaks]))
        numbers.append(len(peaks))
        apexes = [p.apex for p in peaks]
        assert apexes == sorted(apexes)
    assert min(widths) < 3.0 and max(widths) > 120.0
    assert set(numbers) == set(range(1, 13))


def test_shoulder_hidden_under_another_peak_is_not_held_against_anyone() -> None:
    hidden = replace(border(12.0, (1.0, 0.25)), share=0.2)
    targets, weights = splits.split_targets(trace_of(hidden), slice(0, 150))
    assert not targets.any()
    assert np.all(weights[:, round(hidden.place)] == 0.0)


def test_calm_detector_leaves_the_peaks_and_may_fall_below_0() -> None:
    lowest = []
    for seed in range(40):
        rng = np.random.default_rng(seed)
        peak = shapes.draw_peak(rng, 100.0, 8.0, 1.0)
        trace = simulate.observe(rng, [peak], 200, None, (3.7, 0.05), calm=1.0)
        assert trace.noise <= 1.0 / 30.0
        assert abs(int(np.argmax(trace.intensity)) - 100) <= 12
        lowest.append(trace.intensity.min())
    assert min(lowest) < 0.0 and max(lowest) > 0.1
