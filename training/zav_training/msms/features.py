# SPDX-License-Identifier: Apache-2.0
"""Positional features, the same table in training and inside the exported graphs."""

import numpy as np

#: Distances to a terminus that have a feature of their own: 0 to 7 residues.
NEAR = 8
RAMP = 30.0
MASK = 0
#: Column that is 1 in the row of the last residue.
LAST = 1 + NEAR
#: Column of the distance from the N-terminus in units of RAMP residues.
FROM_N = 1 + 2 * NEAR
WIDTH = 2 * NEAR + 5


def position_table(longest: int) -> np.ndarray:
    """Features by peptide length and row, float32 of shape [longest + 1, longest, 21].

    0      1 in a row of the peptide, 0 beyond it; all others are 0 there as well
    1-8    one-hot distance to the N-terminus, 0 to 7
    9-16   one-hot distance to the C-terminus
    17-20  distance / 30 from the N- and the C-terminus, relative position, length / 30
    """
    table = np.zeros((longest + 1, longest, WIDTH), dtype=np.float32)
    for length in range(1, longest + 1):
        table[length, :length] = _features_of(length)
    return table


def _features_of(length: int) -> np.ndarray:
    from_n = np.arange(length)
    from_c = length - 1 - from_n
    columns = [np.ones(length)]
    columns += [from_n == distance for distance in range(NEAR)]
    columns += [from_c == distance for distance in range(NEAR)]
    columns += [from_n / RAMP, from_c / RAMP, from_n / max(length - 1, 1)]
    columns += [np.full(length, length / RAMP)]
    return np.stack(columns, axis=1)
