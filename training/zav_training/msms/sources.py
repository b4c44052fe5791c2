# SPDX-License-Identifier: Apache-2.0
"""The kinds of spectra in the data, and what each can and cannot observe.

A slot that a source cannot observe says nothing and is masked. An absent slot of an observed kind
is only known to lie below the source's noise level.
"""

import re
from dataclasses import dataclass

import numpy as np

from zav_training.msms import ladder
from zav_training.msms.vocabulary import MAX_LENGTH


@dataclass(frozen=True)
class Source:
    """One kind of spectra.

    name       of the source; figures are given under it
    file       data file, without .tsv.gz
    pattern    regular expression that the row's source column must match
    weight     of its spectra in the loss
    noise      level of an absent slot relative to the base peak; None: the weakest peak
    hidden     series names that it cannot observe, see Series.name
    lowest     smallest ion number that it lists
    mz_range   m/z limits of what it lists
    tolerance  of the annotation of raw peaks: a value and its unit, ppm or Da
    orbitrap   absolute Orbitrap spectra, the kind that the networks predict
    """

    name: str
    file: str
    pattern: str = ""
    weight: float = 1.0
    noise: float | None = 0.01
    hidden: tuple[str, ...] = ()
    lowest: int = 1
    mz_range: tuple[float, float] = (0.0, ladder.MZ_LIMIT)
    tolerance: tuple[float, str] = (20.0, "ppm")
    orbitrap: bool = False

    def observes(self, peptide: str, charge: int) -> np.ndarray:
        """Which ions it can observe, bool of shape [n - 1, 11]."""
        length = len(peptide)
        mz = ladder.site_mz(peptide)
        low, high = self.mz_range
        seen = ladder.site_exists(length, charge) & (mz >= low) & (mz <= high)
        seen &= ladder.site_number(length) >= self.lowest
        seen[:, [i for i, s in enumerate(ladder.SERIES) if s.name in self.hidden]] = False
        return seen


A_IONS = ("a+1",)
TRIPLY = ("y+3", "b+3")
DOUBLY = ("y+2", "b+2")
LOSSES = ("y+1-H2O", "y+1-NH3", "b+1-H2O", "b+1-NH3")


def _library(name: str) -> Source:
    return Source(
        f"library_{name}",
        "library_human",
        f"/{name}$",
        noise=0.05,
        hidden=A_IONS,
        lowest=3,
        mz_range=(200.0, 1800.0),
    )


def _peaks(name: str, tolerance: tuple[float, str] = (20.0, "ppm")) -> Source:
    file = f"peaks_{name}"
    return Source(file, file, noise=None, tolerance=tolerance, orbitrap=True)


#: The order is that of the network's source embedding. The first that fits a row is its source.
SOURCES = (
    _library("RPE1_DIA"),
    _library("RPE1_DDA"),
    _library("U2OS_DIA"),
    _library("Dilution_DIA"),
    Source("annotated_velos", "annotated_velos", hidden=A_IONS + TRIPLY, orbitrap=True),
    Source("search_timstof", "annotated_by_search", "timsTOF", weight=0.4, hidden=A_IONS + LOSSES),
    Source("search_orbitrap", "annotated_by_search", hidden=A_IONS + LOSSES),
    Source("a_b_y_timstof", "annotated_a_b_y", "diapysef", weight=0.4, hidden=DOUBLY + TRIPLY),
    Source("a_b_y_orbitrap", "annotated_a_b_y", weight=0.5, hidden=DOUBLY + TRIPLY),
    Source(
        "library_qtof",
        "library_qtof",
        weight=0.4,
        noise=None,
        hidden=A_IONS + LOSSES + TRIPLY,
        mz_range=(350.0, 1420.0),
    ),
    _peaks("synthetic", (0.012, "Da")),
    _peaks("searched"),
    _peaks("hela"),
    _peaks("msp"),
    _peaks("sample"),
)
FILES = tuple(dict.fromkeys(source.file for source in SOURCES))
#: Stands for an unknown source; it replaces the true one now and then in training.
GENERIC = len(SOURCES)
#: Stands for the mean of the typical sources.
TYPICAL_MEAN = GENERIC + 1
#: Stands for what the shipped network of the precursor's charge imitates, see shipped_sources.
SHIPPED = GENERIC + 2
#: Absolute Orbitrap spectra.
ORBITRAP = tuple(index for index, source in enumerate(SOURCES) if source.orbitrap)


def _indices(*names: str) -> tuple[int, ...]:
    return tuple(index for index, s in enumerate(SOURCES) if s.name in names)


#: The sources whose mean the shipped networks imitate.
TYPICAL = _indices("annotated_velos", "peaks_synthetic", "peaks_searched")
#: At the charges of which those have next to no spectra, an Orbitrap library stands in as well.
SUPPORT = _indices("library_RPE1_DDA")
THIN_CHARGES = (1, 4, 5)


def shipped_sources() -> np.ndarray:
    """Share of each source in what the network of a charge imitates, float32 [6, sources]."""
    shares = np.zeros((max(MAX_LENGTH) + 1, len(SOURCES)), dtype=np.float32)
    for charge in MAX_LENGTH:
        chosen = list(TYPICAL + SUPPORT if charge in THIN_CHARGES else TYPICAL)
        shares[charge, chosen] = 1.0 / len(chosen)
    return shares


def weight_of(index: int) -> float:
    """Weight of a source's spectra in the loss; 1 for what is no source of measured spectra."""
    return SOURCES[index].weight if index < len(SOURCES) else 1.0


def source_of(file: str, text: str) -> int:
    """Index into SOURCES of a row of a data file whose source column holds the text."""
    for index, source in enumerate(SOURCES):
        if source.file == file and re.search(source.pattern, text):
            return index
    raise ValueError(f"{file}: no source is declared for rows of '{text}'")
