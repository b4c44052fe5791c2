# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.xic import evaluate_splits, measures
from zav_training.xic.evaluate_splits import SplitCase
from zav_training.xic.visible import noise_level

RT = np.arange(0.0, 101.0)
#: Sums of a few doubles.
ROUNDING = 1e-12


def summary(labels: list, found: list, y: np.ndarray | None = None) -> dict[str, float]:
    figures = measures.Figures()
    figures.add(RT, np.ones(101) if y is None else y, labels, found)
    return figures.summary()


def test_overlap_over_union_of_shifted_intervals() -> None:
    assert measures.overlap_over_union((0, 10), (5, 15)) == pytest.approx(1 / 3)
    assert measures.overlap_over_union((0, 10), (20, 30)) == 0.0


def test_each_label_has_one_found_peak_at_most() -> None:
    assert measures.match([(0, 10)], [(0, 9), (0, 10)]) == [(0, 1)]


def test_pick_that_touches_no_label_counts_only_against_f1_all() -> None:
    result = summary([(10, 20)], [(10, 20), (60, 70)])
    assert result["f1"] == 1.0
    assert result["f1_all"] == pytest.approx(2 / 3)
    assert result["precision"] == 0.5


def test_piece_of_a_label_counts_against_both() -> None:
    result = summary([(10, 30)], [(10, 21), (23, 29)])
    assert result["recall"] == 1.0
    assert result["f1"] == pytest.approx(2 / 3)


def test_label_without_a_pick_has_no_overlap() -> None:
    result = summary([(10, 30), (50, 60)], [(50, 60)])
    assert result["touched"] == 0.5
    assert result["overlap"] == 0.5


def test_edge_error_is_in_points() -> None:
    figures = measures.Figures()
    rt = np.arange(0.0, 50.0, 0.5)
    figures.add(rt, np.ones(len(rt)), [(10.0, 20.0)], [(9.0, 22.0)])
    assert figures.summary()["edge_points"] == pytest.approx(3.0)


def test_area_above_the_chord_of_a_triangle_on_a_slope() -> None:
    y = np.maximum(0.0, 10.0 - np.abs(RT - 50.0)) + 0.1 * RT
    assert measures.area(RT, y, (40.0, 60.0), True) == pytest.approx(100.0, abs=ROUNDING * 1e3)
    assert measures.area(RT, y, (40.0, 60.0), False) == pytest.approx(200.0)


def test_area_error_is_relative_to_the_label() -> None:
    result = summary([(10, 20)], [(10, 18)])
    assert result["error_raw"] == pytest.approx(0.2)


def test_split_within_two_points_is_right() -> None:
    case = SplitCase(np.zeros(50), [10.0, 30.0], [40.0], [30.0])
    result = evaluate_splits.score([case], lambda _: [12, 27, 41])
    assert result["recall"] == 0.5
    assert result["precision"] == 0.5
    assert result["shoulder_recall"] == 0.0
    assert result["valley_recall"] == 1.0


def test_two_splits_beside_one_place_are_one_right_and_one_wrong() -> None:
    case = SplitCase(np.zeros(50), [10.0], [], [])
    assert evaluate_splits.score([case], lambda _: [9, 11])["precision"] == 0.5


def test_minima_between_two_clean_peaks_are_found() -> None:
    t = np.arange(100.0)
    y = np.exp(-0.5 * ((t - 40) / 5) ** 2) + np.exp(-0.5 * ((t - 60) / 5) ** 2)
    assert evaluate_splits.minima_splitter(y) == [50]
    assert evaluate_splits.minima_of(99)(y) == []  # a curve of so many points has one top


def test_split_of_a_wide_valley_may_lie_as_far_away_as_the_case_says() -> None:
    case = SplitCase(np.zeros(400), [100.0, 300.0], [], [], [100.0], {100.0: 12.0})
    result = evaluate_splits.score([case], lambda _: [111, 309])
    assert result["recall"] == 0.5
    assert result["deep_recall"] == 1.0
    assert result["precision"] == 0.5


def test_scaled_clusters_have_peaks_of_the_width_asked_for() -> None:
    for points in evaluate_splits.SCALES:
        cases = evaluate_splits.scaled_clusters(7, points, 20)
        due = sum(len(c.due) + len(c.doubtful) for c in cases)
        length = sum(len(c.intensity) for c in cases) / due
        assert 0.5 * points[0] < length < 4.0 * points[1]
        assert sum(len(c.deep) for c in cases) > 20


def test_calm_clusters_have_splits_and_little_noise() -> None:
    cases = evaluate_splits.calm_clusters(7, (20.0, 160.0), 20)
    assert len(cases) == 20
    assert all(c.due for c in cases)
    assert np.median([noise_level(c.intensity) / np.ptp(c.intensity) for c in cases]) < 0.01
