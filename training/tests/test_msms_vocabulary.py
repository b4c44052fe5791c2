# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.msms import vocabulary

# Standard atomic masses of the lightest isotopes in Da (IUPAC, AME 2016), for an independent sum.
ATOMS = {
    "C": 12.0,
    "H": 1.00782503223,
    "N": 14.00307400443,
    "O": 15.99491461957,
    "S": 31.9720711744,
}
RESIDUE_ATOMS = {
    "G": (2, 3, 1, 1, 0), "A": (3, 5, 1, 1, 0), "S": (3, 5, 1, 2, 0), "P": (5, 7, 1, 1, 0),
    "V": (5, 9, 1, 1, 0), "T": (4, 7, 1, 2, 0), "C": (5, 8, 2, 2, 1), "L": (6, 11, 1, 1, 0),
    "I": (6, 11, 1, 1, 0), "N": (4, 6, 2, 2, 0), "D": (4, 5, 1, 3, 0), "Q": (5, 8, 2, 2, 0),
    "K": (6, 12, 2, 1, 0), "E": (5, 7, 1, 3, 0), "M": (5, 9, 1, 1, 1), "H": (6, 7, 3, 1, 0),
    "F": (9, 9, 1, 1, 0), "R": (6, 12, 4, 1, 0), "Y": (9, 9, 1, 2, 0), "W": (11, 10, 2, 1, 0),
}  # fmt: skip
#: The tables are rounded to 1e-5 Da.
MASS_TOLERANCE = 1e-5


@pytest.mark.parametrize("letter", vocabulary.LETTERS)
def test_residue_mass_is_the_sum_of_its_atoms(letter: str) -> None:
    weight = sum(n * ATOMS[e] for n, e in zip(RESIDUE_ATOMS[letter], "CHNOS", strict=True))
    assert abs(vocabulary.RESIDUE_MASS[letter] - weight) < MASS_TOLERANCE


def test_columns_are_those_of_the_library() -> None:
    assert vocabulary.encode("PEPTIDE").tolist() == [15, 2, 15, 4, 5, 1, 2]
    assert vocabulary.WIDTH == 21


def test_unknown_letters_are_encoded_as_filler() -> None:
    assert vocabulary.encode("pXZ").tolist() == [0, 0, 0]


def test_one_hot_fills_up_to_the_longest_length() -> None:
    rows = vocabulary.one_hot(["PEPTIDE", ""], 2)
    assert rows.shape == (2, 43, 21)
    assert np.all(rows.sum(2) == 1.0)
    assert np.all(rows[0, 7:, 0] == 1.0) and np.all(rows[1, :, 0] == 1.0)
    assert rows[0, 0, 15] == 1.0
