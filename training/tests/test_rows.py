# SPDX-License-Identifier: Apache-2.0
import numpy as np

from zav_training import rows

#: Letters are numbered from 1 in the order DESTILVFYWACGMPNQHKR.
LETTER = {"M": 14, "A": 11, "K": 19, "D": 1, "R": 20}
OXYGEN, ACETYL, METHYL = (0, 0, 0, 1, 0, 0), (2, 2, 0, 1, 0, 0), (1, 2, 0, 0, 0, 0)


def test_residues_and_their_modifications_stand_in_their_rows() -> None:
    encoded = rows.encode("MAK", [(1, "Oxidation"), (3, "Methyl")])
    assert encoded[:, 0].tolist() == [LETTER["M"], LETTER["A"], LETTER["K"]]
    assert encoded[:, 1:7].tolist() == [list(OXYGEN), [0] * 6, list(METHYL)]
    assert not encoded[:, 7:].any()


def test_terminal_modifications_have_columns_of_their_own() -> None:
    encoded = rows.encode("MAK", [(0, "Acetyl"), (1, "Oxidation"), (4, "Methyl")])
    assert tuple(encoded[0, 1:7]) == OXYGEN
    assert tuple(encoded[0, 7:]) == ACETYL
    assert tuple(encoded[2, 7:]) == METHYL


def test_padding_is_zero() -> None:
    batch = rows.pad([rows.encode("DR", []), rows.encode("DRK", [])])
    assert batch.shape == (2, 52, 13)
    assert batch[0, :2, 0].tolist() == [LETTER["D"], LETTER["R"]]
    assert not batch[0, 2:].any()
    assert np.count_nonzero(batch[1]) == 3
