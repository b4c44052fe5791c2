# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest

from zav_training.msms import ladder, vocabulary

#: Hand calculations below are written to 4 decimals.
HAND_TOLERANCE = 1e-3


@pytest.mark.parametrize("charge, slots", [(1, 177), (2, 359), (3, 515), (4, 535), (5, 515)])
def test_ladder_length_by_charge(charge: int, slots: int) -> None:
    assert ladder.ladder_length(charge) == slots


def test_fragment_mz_of_peptide_by_hand() -> None:
    # PEPTIDE: b2 227.1026, y1 148.0604, y6 703.3145, a2 199.1077 (published fragment tables)
    mz = ladder.site_mz("PEPTIDE")
    column = ladder.COLUMN_OF
    assert abs(mz[1, column["b", 1, ""]] - 227.1026) < HAND_TOLERANCE
    assert abs(mz[5, column["y", 1, ""]] - 148.0604) < HAND_TOLERANCE
    assert abs(mz[0, column["y", 1, ""]] - 703.3145) < HAND_TOLERANCE
    assert abs(mz[1, column["a", 1, ""]] - 199.1077) < HAND_TOLERANCE
    assert abs(mz[0, column["y", 2, ""]] - (703.3145 + 1.0073) / 2) < HAND_TOLERANCE
    assert abs(mz[1, column["b", 1, "-H2O"]] - (227.1026 - 18.0106)) < HAND_TOLERANCE


def test_both_fragments_of_a_bond_share_a_row() -> None:
    numbers = ladder.site_number(7)
    assert numbers[:, ladder.COLUMN_OF["b", 1, ""]].tolist() == [1, 2, 3, 4, 5, 6]
    assert numbers[:, ladder.COLUMN_OF["y", 1, ""]].tolist() == [6, 5, 4, 3, 2, 1]


def test_sixteenth_a_ion_has_no_slot() -> None:
    exists = ladder.site_exists(20, 2)
    assert exists[14, ladder.COLUMN_OF["a", 1, ""]]
    assert not exists[15, ladder.COLUMN_OF["a", 1, ""]]


@pytest.mark.parametrize("charge", vocabulary.CHARGES)
def test_slots_are_rearranged_to_their_ions(charge: int) -> None:
    slots = np.arange(ladder.ladder_length(charge), dtype=np.float32)
    sites = ladder.slots_to_sites(slots, 10, charge)
    longest = vocabulary.MAX_LENGTH[charge]
    assert sites[8, ladder.COLUMN_OF["y", 1, ""]] == 0  # y1 is the first slot
    assert sites[0, ladder.COLUMN_OF["y", 1, ""]] == 8  # y9
    assert sites[0, ladder.COLUMN_OF["b", 1, ""]] == longest  # b1
    if charge > 1:
        assert sites[8, ladder.COLUMN_OF["y", 2, ""]] == 2 * longest
    if charge > 2:
        assert sites[2, ladder.COLUMN_OF["b", 3, ""]] == 9 * longest + ladder.A_SLOTS + 2
