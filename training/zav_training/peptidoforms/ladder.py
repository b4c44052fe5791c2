# SPDX-License-Identifier: Apache-2.0
"""The ion series of modified peptides, in sites: shape [n - 1, 27], row j is the bond j, j + 1.

The first eleven are those of `zav_training.msms.ladder`; then, for each neutral loss of a
modification, y and b of 1+ and 2+.
"""

from collections.abc import Sequence

import numpy as np

from zav_training import modifications
from zav_training.msms import ladder as plain
from zav_training.msms import vocabulary as v

#: What a modification loses, by its name; and at which residues. -2H3PO4 needs two of them.
LOSSES = ("-H3PO4", "-2H3PO4", "-CH4OS", "-CO2")
LOSING = {"Phospho": ("-H3PO4", "ST"), "Oxidation": ("-CH4OS", "M"), "Malonyl": ("-CO2", "K")}
_H3PO4, _CH4OS, _CO2 = (
    float(np.dot(atoms, modifications.ELEMENT_MASS))
    for atoms in ((0, 3, 0, 4, 1, 0), (1, 4, 0, 1, 0, 1), (1, 0, 0, 2, 0, 0))
)
LOSS_MASS = {"-H3PO4": _H3PO4, "-2H3PO4": 2 * _H3PO4, "-CH4OS": _CH4OS, "-CO2": _CO2}

#: Letter, charge and neutral loss of each series.
SERIES = tuple((s.letter, s.charge, s.loss) for s in plain.SERIES) + tuple(
    (letter, charge, loss) for loss in LOSSES for charge in (1, 2) for letter in "yb"
)
COLUMN_OF = {series: index for index, series in enumerate(SERIES)}
COUNT = len(SERIES)
PLAIN = len(plain.SERIES)
FROM_C_TERMINUS = np.array([letter == "y" for letter, _, _ in SERIES])
CHARGE = np.array([charge for _, charge, _ in SERIES])
_START = [s.start_mass for s in plain.SERIES] + [
    (v.WATER if letter == "y" else 0.0) - LOSS_MASS[loss] + charge * v.PROTON
    for letter, charge, loss in SERIES[PLAIN:]
]

#: Masses of the residues without the blocked cysteine, which is a modification here.
RESIDUE_MASS = {**v.RESIDUE_MASS, "C": v.RESIDUE_MASS["C"] - v.CARBAMIDOMETHYL}
Modified = Sequence[tuple[int, str]]


def row_masses(peptide: str, modified: Modified) -> np.ndarray:
    """Mass of each residue with what modifies it or its terminus, in Da."""
    masses = np.array([RESIDUE_MASS[letter] for letter in peptide])
    for position, name in modified:
        masses[min(max(position - 1, 0), len(peptide) - 1)] += modifications.mass(name)
    return masses


def site_mz(peptide: str, modified: Modified) -> np.ndarray:
    """m/z of every ion, float64 of shape [n - 1, 27]."""
    masses = row_masses(peptide, modified)
    left = np.cumsum(masses)[:-1, None]
    right = masses.sum() - left
    return (np.where(FROM_C_TERMINUS, right, left) + np.array(_START)) / CHARGE


def site_exists(peptide: str, charge: int, modified: Modified) -> np.ndarray:
    """Which ions a precursor can have, bool of shape [n - 1, 27]."""
    exists = np.zeros((len(peptide) - 1, COUNT), dtype=bool)
    exists[:, min(charge, 3) >= CHARGE] = True
    exists[plain.A_SLOTS :, COLUMN_OF["a", 1, ""]] = False
    for loss in LOSSES:
        enough = _losing(peptide, modified, loss) >= (2 if loss == "-2H3PO4" else 1)
        for letter, charge_, own in SERIES[PLAIN:]:
            if own == loss:
                exists[:, COLUMN_OF[letter, charge_, loss]] &= enough[:, int(letter == "y")]
    return exists & (site_mz(peptide, modified) <= plain.MZ_LIMIT)


def _losing(peptide: str, modified: Modified, loss: str) -> np.ndarray:
    """How many residues that lose it stand left and right of each bond, int [n - 1, 2]."""
    count = np.zeros(len(peptide), dtype=int)
    for position, name in modified:
        lost, sites = LOSING.get(name, ("", ""))
        own = lost == loss or (lost == "-H3PO4" and loss == "-2H3PO4")
        if own and 1 <= position <= len(peptide) and peptide[position - 1] in sites:
            count[position - 1] += 1
    left = np.cumsum(count)[:-1]
    return np.stack([left, count.sum() - left], 1)


def site_number(length: int) -> np.ndarray:
    """Ion number, int of shape [n - 1, 27]."""
    left = np.arange(1, length)[:, None]
    return np.where(FROM_C_TERMINUS, length - left, left)


def site_of(column: int, number: int, length: int) -> int:
    """Row of an ion."""
    return length - 1 - number if FROM_C_TERMINUS[column] else number - 1
