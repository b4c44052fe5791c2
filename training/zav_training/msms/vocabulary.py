# SPDX-License-Identifier: Apache-2.0
"""What the networks read: residue letters and their columns, lengths, masses.

Masses are monoisotopic, in Da, from the IUPAC atomic masses. A C weighs as carbamidomethylated
cysteine: that is how every sample in the training data was prepared.
"""

import numpy as np

#: Letters in column order; column 0 is a filler row or an unknown letter.
LETTERS = "DESTILVFYWACGMPNQHKR"
WIDTH = len(LETTERS) + 1
COLUMN = {letter: index + 1 for index, letter in enumerate(LETTERS)}

#: Longest peptide, and so the number of input rows, by precursor charge.
MAX_LENGTH = {1: 27, 2: 43, 3: 50, 4: 52, 5: 50}
CHARGES = tuple(MAX_LENGTH)
LONGEST = max(MAX_LENGTH.values())

PROTON = 1.00727646677
WATER = 18.010565
AMMONIA = 17.026549
CARBON_MONOXIDE = 27.994915
CARBAMIDOMETHYL = 57.02146

RESIDUE_MASS = {
    "G": 57.02146372,
    "A": 71.03711379,
    "S": 87.03202841,
    "P": 97.05276385,
    "V": 99.06841391,
    "T": 101.04767847,
    "C": 103.00918448 + CARBAMIDOMETHYL,
    "L": 113.08406398,
    "I": 113.08406398,
    "N": 114.04292744,
    "D": 115.02694303,
    "Q": 128.05857751,
    "K": 128.09496302,
    "E": 129.04259309,
    "M": 131.04048461,
    "H": 137.05891186,
    "F": 147.06841391,
    "R": 156.10111103,
    "Y": 163.06332853,
    "W": 186.07931295,
}

#: Mass of each input column, shape [21]; column 0 weighs nothing.
COLUMN_MASS = np.array([0.0] + [RESIDUE_MASS[letter] for letter in LETTERS])


def encode(peptide: str) -> np.ndarray:
    """Column of each residue, int32 of shape [n]; an unknown letter is 0."""
    return np.array([COLUMN.get(letter, 0) for letter in peptide], dtype=np.int32)


def one_hot(peptides: list[str], charge: int) -> np.ndarray:
    """The network's input, float32 of shape [peptides, L, 21]; rows beyond a peptide are filler."""
    rows = np.zeros((len(peptides), MAX_LENGTH[charge]), dtype=np.int32)
    for row, peptide in zip(rows, peptides, strict=True):
        row[: len(peptide)] = encode(peptide)
    return np.eye(WIDTH, dtype=np.float32)[rows]
