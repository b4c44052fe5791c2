# SPDX-License-Identifier: Apache-2.0
"""Peptidoforms as the rows that the networks for modified peptides read.

One row a residue: column 0 is the letter's number, counted from 1, columns 1 to 6 are the atoms
(C, H, N, O, P, S) that the residue's modification adds, columns 7 to 12 those of the terminal
modification, which stands in the first or the last row. Rows behind the peptide are 0.
"""

from collections.abc import Sequence

import numpy as np

from zav_training import modifications
from zav_training.msms.vocabulary import COLUMN

ATOMS = len(modifications.ELEMENTS)
WIDTH = 1 + 2 * ATOMS
LONGEST = 52
#: Typical changes, by which the networks divide.
ATOM_SCALE = np.array([4.0, 6.0, 2.0, 2.0, 1.0, 1.0], dtype=np.float32)


def encode(peptide: str, modified: Sequence[tuple[int, str]]) -> np.ndarray:
    """Rows of one peptidoform, int8 [n, 13]; position 0 is the N-terminus, n + 1 the C-terminus."""
    rows = np.zeros((len(peptide), WIDTH), dtype=np.int8)
    rows[:, 0] = [COLUMN[letter] for letter in peptide]
    for position, name in modified:
        terminal = position in (0, len(peptide) + 1)
        row = min(max(position - 1, 0), len(peptide) - 1)
        first = 1 + ATOMS * terminal
        rows[row, first : first + ATOMS] += np.array(modifications.composition(name), np.int8)
    return rows


def pad(encoded: Sequence[np.ndarray], length: int = LONGEST) -> np.ndarray:
    """Many peptidoforms as float32 [count, length, 13]."""
    batch = np.zeros((len(encoded), length, WIDTH), dtype=np.float32)
    for rows, one in zip(batch, encoded, strict=True):
        rows[: len(one)] = one
    return batch
