# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.xic import classical, pipeline
from zav_training.xic.pipeline import LimitsOptions, SplitOptions

#: Sums of a few doubles in another order.
ROUNDING = 1e-12


def limits(probability: list[float], **options: float) -> list[tuple[int, int]]:
    chosen = LimitsOptions(**{"probabilityTolerance": 0.5, **options})
    return pipeline.limits_of(np.array(probability, np.float32), chosen)


def test_filter_is_a_gaussian_of_sigma_4_that_sums_to_1() -> None:
    taps = pipeline.gaussian_filter(5)
    assert taps.sum() == pytest.approx(1.0, abs=ROUNDING)
    assert taps[0] / taps[2] == pytest.approx(np.exp(-4.0 / 32.0), abs=ROUNDING)


def test_even_filter_has_one_tap_more() -> None:
    assert len(pipeline.gaussian_filter(4)) == 5


def test_convolution_leaves_a_flat_row_flat() -> None:
    row = np.full((1, 9), 3.0)
    assert pipeline.convolve(row, pipeline.gaussian_filter(5)) == pytest.approx(row)


def test_padding_is_smoothed_into_the_last_points() -> None:
    x = pipeline.limits_input(np.full(300, 8.0), LimitsOptions(maxPointCount=512))
    taps = pipeline.gaussian_filter(5)
    before_the_end = (8.0 * taps[:4].sum() - taps[4]) / 8.0
    assert x[298] == pytest.approx(before_the_end, rel=1e-6)
    assert x[0] == 1.0
    assert x[400] == pytest.approx(-1.0 / 8.0)


def test_trace_of_zeros_is_divided_by_the_smallest_normal_double() -> None:
    x = pipeline.limits_input(np.zeros(512), LimitsOptions(maxPointCount=512))
    assert np.all(x == 0.0)


def test_thinning_removes_the_lowest_then_the_latest_and_keeps_the_ends() -> None:
    kept = pipeline.thin(np.array([0.0, 5.0, 1.0, 1.0, 7.0, 0.0]), 4)
    assert kept.tolist() == [0, 1, 4, 5]
    assert pipeline.thin(np.array([0.0, 2.0, 2.0, 0.0]), 3).tolist() == [0, 1, 3]


def test_cluster_starts_one_point_early() -> None:
    assert limits([0, 0, 0, 1, 1, 1, 0]) == [(2, 5)]


def test_cluster_that_begins_at_index_zero_starts_at_one() -> None:
    assert limits([1, 1, 1, 1, 0, 0]) == [(1, 3)]


def test_two_clusters_come_in_order() -> None:
    assert limits([0, 1, 1, 0, 0, 1, 1, 1]) == [(0, 2), (4, 7)]


def test_final_cluster_is_lost_when_the_last_point_is_noise() -> None:
    assert limits([0, 1, 1, 1, 0, 0, 1, 1, 0, 0, 1]) == [(0, 3)]


def test_final_point_that_opens_a_cluster_of_its_own_is_lost() -> None:
    assert limits([0, 1, 1, 0, 0, 1], dbscanMinPoints=1) == [(0, 2)]


def test_clusters_join_within_epsilon() -> None:
    assert limits([0, 1, 1, 0, 1, 1], dbscanEpsilon=2.0) == [(0, 5)]


def test_nothing_above_the_threshold_gives_nothing() -> None:
    assert limits([0.1, 0.4, 0.4, 0.1]) == []


def test_short_trace_has_no_limits() -> None:
    five = np.arange(5.0)
    assert pipeline.detect(five, five, lambda x: np.ones_like(x), LimitsOptions()) == []


def test_hint_outside_every_interval_is_looked_for_three_times_more() -> None:
    seen = []

    def network(x: np.ndarray) -> np.ndarray:
        seen.append(x[0, 10])
        return np.zeros_like(x)

    y = np.full(50, 1.0)
    y[20:30] = 1e6
    options = LimitsOptions(smoothingPassCount=0)
    assert pipeline.detect(np.arange(50.0), y, network, options, hint=10.0) == []
    assert seen == pytest.approx([1e-6, 1e-5, 1e-4, 1e-3], rel=1e-6)


def test_hint_inside_an_interval_needs_no_second_look() -> None:
    calls = []

    def network(x: np.ndarray) -> np.ndarray:
        calls.append(1)
        return np.where(np.arange(x.shape[1]) < 20, 1.0, 0.0)[None]

    found = pipeline.detect(np.arange(50.0), np.ones(50), network, LimitsOptions(), hint=4.0)
    assert found == [(1.0, 19.0)]
    assert len(calls) == 1


def test_walk_stops_at_the_threshold_or_two_short_of_the_end() -> None:
    x = np.array([0.0, 0.01, 0.5, 1.0, 0.5, 0.04, 0.3, 0.4, 0.4, 0.4], np.float32)
    assert classical.walk_limits(x, 3, 0.05) == (1, 5)
    assert classical.walk_limits(x, 7, 0.05) == (4, 7)


def test_walk_takes_the_highest_apex_first() -> None:
    x = np.array([0, 0.2, 0.5, 0.2, 0, 0, 0.3, 1.0, 0.3, 0, 0, 0, 0], np.float32)
    assert classical.walk(x, 0.05) == [(5, 9), (0, 4)]


def test_plateau_has_one_maximum_at_its_first_point() -> None:
    x = np.array([0.0, 0.5, 0.5, 0.5, 0.1], np.float32)
    assert classical.local_maxima(x).tolist() == [1]


def test_splits_are_strict_maxima_surest_first_and_four_at_most() -> None:
    p = np.zeros(64, np.float32)
    p[[3, 9, 15, 21, 27, 33]] = [0.6, 0.9, 0.7, 0.8, 0.95, 0.4]
    p[40:42] = 0.99
    assert pipeline.split_indices(p, SplitOptions()) == [27, 9, 21, 15]


def test_split_times_come_from_the_thinned_trace() -> None:
    y = np.r_[np.full(700, 1.0), np.full(600, 5.0)]
    options = SplitOptions()

    def network(x: np.ndarray) -> np.ndarray:
        p = np.zeros_like(x)
        p[0, 1000] = 0.9
        return p

    kept = pipeline.thin(y, 1024)
    assert pipeline.split(np.arange(1300.0), y, network, options) == [
        (float(kept[1000]), pytest.approx(0.9))
    ]


class LowestPoints:
    """A splitter without a network: points below half of the tops within some points of them."""

    def __init__(self, room: int) -> None:
        self.room, self.asked = room, []

    def __call__(self, x: np.ndarray) -> np.ndarray:
        y = x[0]
        self.asked.append(int(np.flatnonzero(y)[-1]) + 1)
        p = np.zeros_like(x)
        for i in range(self.room, len(y) - self.room):
            left, right = y[i - self.room : i].max(), y[i + 1 : i + self.room + 1].max()
            if y[i - 1] > y[i] <= y[i + 1] and 0.0 < y[i] < 0.5 * min(left, right):
                p[0, i] = 0.9
        return p


def crowd(peaks: int, spacing: int) -> np.ndarray:
    """Valleys lie at the multiples of `spacing`."""
    i = np.arange(peaks * spacing)
    return np.sin(np.pi * (i + 0.01) / spacing) ** 2 + 0.01


def test_all_splits_of_a_crowd_are_found_though_a_look_gives_four() -> None:
    found = pipeline.search_splits(crowd(12, 40), LowestPoints(12), SplitOptions())
    assert [place for place, _ in found] == [40 * i for i in range(1, 12)]


def test_long_trace_is_read_averaged_first_and_its_pieces_at_all_scales() -> None:
    network = LowestPoints(20)
    found = pipeline.search_splits(crowd(2, 1000), network, SplitOptions())
    assert [place for place, _ in found] == [pytest.approx(1000, abs=4)]
    assert network.asked == [500, 500, 1000, 501, 1001]  # the later piece comes first


def test_trace_longer_than_the_network_is_read_in_windows_that_overlap() -> None:
    network = LowestPoints(10)
    found = pipeline.search_splits(crowd(400, 30), network, SplitOptions())
    assert [place for place, _ in found] == [30 * i for i in range(1, 400)]
    assert max(network.asked) <= 4096


def test_split_settles_in_the_lowest_place_and_stays_on_a_slope() -> None:
    y = np.abs(np.arange(100.0) - 53.0)
    assert pipeline.settled(y, 50, 6) == 53
    assert pipeline.settled(y, 30, 6) == 30
    assert pipeline.averaged(np.arange(7.0), 3).tolist() == [1.0, 4.0, 6.0]
