# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.xic import evaluate_offsets as offsets


def by_half_height(rt: np.ndarray, intensity: np.ndarray) -> list[tuple[float, float]]:
    """Points of half the largest value, which a base widens at first and makes all in the end."""
    high = np.flatnonzero(intensity >= 0.5 * intensity.max())
    return [(float(rt[high[0]]), float(rt[high[-1]]))]


def above_the_lowest(rt: np.ndarray, intensity: np.ndarray) -> list[tuple[float, float]]:
    return by_half_height(rt, intensity - intensity.min())


def hump() -> offsets.OffsetCase:
    y = offsets.HEIGHT * np.exp(-0.5 * ((np.arange(201.0) - 100.0) / 10.0) ** 2)
    return offsets.OffsetCase(y, 100.0)


def test_ratio_of_widths_is_that_of_a_gaussian() -> None:
    # without a base 0.5 of the height: 1.1774 sigma, 23 points wide, limits 88.2 and 111.8;
    # with 0.5 of it half of 1.5 is met at 0.25 of the height: 1.6651 sigma, from 83.3 to 116.7
    found = offsets.width_ratios([hump()], by_half_height, 0.5)
    assert found == pytest.approx([(116 - 84) / (111 - 89)])


def test_picker_that_subtracts_the_base_finds_the_same_width_unless_it_is_broken() -> None:
    assert offsets.width_ratios([hump()], above_the_lowest, 10.0) == pytest.approx([1.0])
    broken = offsets.width_ratios([hump()], above_the_lowest, 10.0, broken=True)
    # all but the first two points: 2 to 200
    assert broken == pytest.approx([198 / 22])


def test_peak_that_is_not_found_on_the_base_is_lost() -> None:
    def blind(rt: np.ndarray, intensity: np.ndarray) -> list[tuple[float, float]]:
        return [] if intensity.min() > 1.0 else by_half_height(rt, intensity)

    ratios = offsets.width_ratios([hump()], blind, 2.0)
    assert offsets.summary(ratios)["lost"] == 1.0
    assert offsets.width_ratios([hump()], lambda rt, y: [], 2.0).size == 0


def test_summary_counts_lost_peaks_as_not_the_same() -> None:
    found = offsets.summary(np.array([1.0, 0.9, 1.5, 0.0]))
    assert (found["same"], found["lost"], found["median"]) == (0.5, 0.25, 1.0)


def test_seed_fixes_the_cases() -> None:
    first, second = offsets.offset_cases(301, 5), offsets.offset_cases(301, 5)
    assert len(first) > 2
    for a, b in zip(first, second, strict=True):
        assert np.array_equal(a.intensity, b.intensity) and a.apex == b.apex
