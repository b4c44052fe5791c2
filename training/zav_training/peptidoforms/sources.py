# SPDX-License-Identifier: Apache-2.0
"""The kinds of spectra of modified peptides, and what each can and cannot observe."""

import re
from dataclasses import dataclass

import numpy as np

from zav_training.msms import sources as plain
from zav_training.msms.ladder import MZ_LIMIT
from zav_training.peptidoforms import ladder

ALL_LOSSES = tuple(dict.fromkeys(loss for _, _, loss in ladder.SERIES if loss))
A_IONS = ("a+1",)
TRIPLY = ("y+3", "b+3")


@dataclass(frozen=True)
class Source:
    """One kind of spectra of modified peptides.

    name       under which figures are given
    pattern    regular expression that the row's source column must match
    like       name of the kind in NAMES whose instrument and habits it shares
    weight     of its spectra in the loss
    noise      level of an absent slot relative to the base peak
    hidden     series that it cannot observe: letter + charge, or a neutral loss
    lowest     smallest ion number that it lists
    mz_range   m/z limits of what it lists
    scaled     whether its energies are on the scale of the network's input
    """

    name: str
    pattern: str
    like: str
    weight: float = 1.0
    noise: float = 0.01
    hidden: tuple[str, ...] = ()
    lowest: int = 1
    mz_range: tuple[float, float] = (0.0, MZ_LIMIT)
    scaled: bool = False

    def observes(self, peptide: str, charge: int, modified: list[tuple[int, str]]) -> np.ndarray:
        """Which ions it can observe, bool of shape [n - 1, 27]."""
        mz = ladder.site_mz(peptide, modified)
        seen = ladder.site_exists(peptide, charge, modified)
        seen &= (mz >= self.mz_range[0]) & (mz <= self.mz_range[1])
        seen &= ladder.site_number(len(peptide)) >= self.lowest
        for column, (letter, own, loss) in enumerate(ladder.SERIES):
            if (f"{letter}+{own}" in self.hidden and not loss) or loss in self.hidden:
                seen[:, column] = False
        return seen


def _phospho_library(name: str) -> Source:
    return Source(
        f"phospho_{name}",
        f"^deepphospho/{name}$",
        f"library_{name}",
        noise=0.05,
        hidden=(*A_IONS, "-CH4OS"),
        lowest=3,
        mz_range=(200.0, 1800.0),
    )


#: Kinds of spectra that have an embedding of their own: those of the plain peptides, and more.
NAMES = (*(s.name for s in plain.SOURCES), "proteometools", "malonyl", "search_modified", "shipped")
#: What the exported network imitates; it learns it from the five networks for plain peptides.
SHIPPED = NAMES.index("shipped")
#: Absolute spectra, such at known energies, and the only ones of a modification: some are shown as
#: if they were the shipped kind.
NEAR_SHIPPED = tuple(
    NAMES.index(name)
    for name in (*(plain.SOURCES[i].name for i in plain.TYPICAL), "proteometools", "malonyl")
)
PHOSPHO = tuple(NAMES.index(f"library_{n}") for n in ("RPE1_DIA", "RPE1_DDA", "U2OS_DIA",
                                                      "Dilution_DIA"))  # fmt: skip

SOURCES = (
    *(_phospho_library(n) for n in ("RPE1_DIA", "RPE1_DDA", "U2OS_DIA", "Dilution_DIA")),
    Source("pdeep_velos", "^pdeep_velos", "annotated_velos", 2.0, hidden=A_IONS + TRIPLY),
    Source("pdeep_malonyl", "^pdeep_malonyl", "malonyl", 2.0, hidden=A_IONS + TRIPLY),
    Source(
        "elfragmentador",
        "^elfragmentador",
        "proteometools",
        1.5,
        hidden=A_IONS + ALL_LOSSES,
        scaled=True,
    ),
    Source("dlomix", "^dlomix", "proteometools", 1.5, hidden=A_IONS + ALL_LOSSES, scaled=True),
    Source(
        "proteometools_msp", "^proteometools_msp", "proteometools", 1.5, noise=0.02, scaled=True
    ),
    Source("maxquant", "^maxquant", "search_modified", hidden=(*A_IONS, "-CH4OS", *TRIPLY)),
    Source("metamorpheus", "^metamorpheus", "search_modified", hidden=A_IONS + ALL_LOSSES),
    Source("hela_blib", "^hela_blib", "peaks_hela", noise=0.02),
)


def source_of(text: str) -> Source:
    """The kind of a row whose source column holds the text."""
    for source in SOURCES:
        if re.search(source.pattern, text):
            return source
    raise ValueError(f"no source is declared for rows of '{text}'")
