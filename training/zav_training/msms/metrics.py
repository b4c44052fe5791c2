# SPDX-License-Identifier: Apache-2.0
"""How alike predicted and observed spectra are."""

from collections.abc import Callable, Iterable
from dataclasses import dataclass

import numpy as np

from zav_training.msms import ladder
from zav_training.msms.sources import SOURCES
from zav_training.msms.spectra import Spectrum

#: Predicted intensities below it are no peaks.
LIMIT = 0.025
#: What a host that takes intensities at 0.025 must not see although the network hints at it.
CUT = 0.04
#: An intensity below the cut is multiplied by this, which brings it under the limit.
CUT_FACTOR = 0.6
CORE = [ladder.COLUMN_OF[key] for key in (("y", 1, ""), ("b", 1, ""))]
CORE_DOUBLY = CORE + [ladder.COLUMN_OF[key] for key in (("y", 2, ""), ("b", 2, ""))]

Predictor = Callable[[list[Spectrum]], list[np.ndarray]]


@dataclass
class Score:
    """Figures of one spectrum.

    angle    spectral angle 1 - 2 acos(cosine) / pi over all observable ions
    pearson  correlation of the intensities of b and y ions, 1+ and, if the precursor has more
             than one charge, 2+
    missed   share of the observed peaks that are not predicted
    false    share of the predicted peaks that are not observed
    """

    angle: float
    pearson: float
    missed: float
    false: float


def spectral_angle(a: np.ndarray, b: np.ndarray) -> float:
    """1 for spectra alike but for their scale, 0 for disjoint ones."""
    norm = float(np.linalg.norm(a) * np.linalg.norm(b))
    if norm == 0.0:
        return 0.0
    return 1.0 - 2.0 / np.pi * float(np.arccos(min(1.0, float((a * b).sum()) / norm)))


def pearson(a: np.ndarray, b: np.ndarray) -> float:
    """Correlation; 0 where the prediction b is constant, NaN where the observation a is."""
    if a.size < 3 or np.ptp(a) == 0:
        return float("nan")
    return float(np.corrcoef(a, b)[0, 1]) if np.ptp(b) > 0 else 0.0


def apply_cut(prediction: np.ndarray) -> np.ndarray:
    """What the exported network makes of intensities relative to the largest."""
    return np.where(prediction < CUT, prediction * CUT_FACTOR, prediction)


def score(spectrum: Spectrum, prediction: np.ndarray) -> Score:
    """Figures of a prediction in sites, [n - 1, 11], intensities relative to the largest."""
    seen = spectrum.observed
    limited = np.where(prediction >= LIMIT, prediction, 0.0)
    core = np.zeros_like(seen)
    core[:, CORE_DOUBLY if spectrum.charge > 1 else CORE] = True
    core &= seen
    observed, predicted = spectrum.intensity[seen], limited[seen]
    peaks, called = observed >= LIMIT, predicted > 0
    return Score(
        spectral_angle(observed, predicted),
        pearson(spectrum.intensity[core], limited[core]),
        float((peaks & ~called).sum() / max(peaks.sum(), 1)),
        float((called & ~peaks).sum() / max(called.sum(), 1)),
    )


def medians(scores: Iterable[Score]) -> Score:
    """Medians of angle and correlation, means of the two shares."""
    table = np.array([[s.angle, s.pearson, s.missed, s.false] for s in scores])
    if not len(table):
        return Score(*[float("nan")] * 4)
    middle, mean = np.nanmedian(table, axis=0), np.mean(table, axis=0)
    return Score(float(middle[0]), float(middle[1]), float(mean[2]), float(mean[3]))


def groups_of(spectrum: Spectrum) -> list[str]:
    """Names of the groups under which a spectrum's figures are given."""
    source = SOURCES[spectrum.source]
    names = [source.name, f"charge {spectrum.charge}"]
    if source.orbitrap:
        names += ["orbitrap", f"orbitrap charge {spectrum.charge}"]
    if source.file == "library_human":
        names += ["library", f"library charge {spectrum.charge}"]
    return names


def summarise(spectra: list[Spectrum], scores: list[Score]) -> dict[str, tuple[int, Score]]:
    """Number of spectra and figures of every group."""
    groups: dict[str, list[Score]] = {}
    for spectrum, one in zip(spectra, scores, strict=True):
        for name in groups_of(spectrum):
            groups.setdefault(name, []).append(one)
    return {name: (len(group), medians(group)) for name, group in sorted(groups.items())}
