# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.msms import metrics
from zav_training.msms.spectra import Spectrum


def test_spectral_angle_of_known_vectors() -> None:
    a, b = np.array([1.0, 0.0]), np.array([1.0, 1.0])
    assert metrics.spectral_angle(a, a) == pytest.approx(1.0)
    assert metrics.spectral_angle(a, np.array([0.0, 3.0])) == pytest.approx(0.0)
    assert metrics.spectral_angle(a, b) == pytest.approx(0.5)  # 45 degrees of 90
    assert metrics.spectral_angle(a, np.zeros(2)) == 0.0


def test_correlation_is_scipys() -> None:
    # scipy.stats.pearsonr([1, 2, 3, 5], [2, 2, 4, 5]) = 0.93541...: 7.0 / sqrt(8.75 * 6.75)
    value = metrics.pearson(np.array([1.0, 2.0, 3.0, 5.0]), np.array([2.0, 2.0, 4.0, 5.0]))
    assert value == pytest.approx(7.25 / np.sqrt(8.75 * 6.75))


def test_cut_brings_doubtful_intensities_under_the_limit() -> None:
    cut = metrics.apply_cut(np.array([0.0, 0.0399, 0.04, 1.0]))
    assert cut[1] < metrics.LIMIT
    assert cut[[0, 2, 3]].tolist() == [0.0, 0.04, 1.0]


def test_missed_and_false_peaks_are_counted_over_what_is_observable() -> None:
    intensity, seen = np.zeros((3, 11), np.float32), np.zeros((3, 11), bool)
    seen[:, 0], intensity[:, 0] = True, [1.0, 0.5, 0.0]
    spectrum = Spectrum("GAKR", 2, 4, intensity, seen, 0.01)
    prediction = np.zeros((3, 11))
    prediction[:, 0], prediction[:, 1] = [1.0, 0.01, 0.3], 0.9
    score = metrics.score(spectrum, prediction)
    assert score.missed == pytest.approx(0.5)
    assert score.false == pytest.approx(0.5)
