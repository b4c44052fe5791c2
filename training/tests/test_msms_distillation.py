# SPDX-License-Identifier: Apache-2.0
import numpy as np
import pytest
from conftest import SMALL, random_peptide

from zav_training.msms import distillation, ladder
from zav_training.msms.network import Network
from zav_training.msms.predict_trained import predict
from zav_training.msms.spectra import is_held_out, is_usable

#: Two float32 sums in another order.
FLOAT_TOLERANCE = 1e-5


@pytest.fixture
def precursors() -> list[tuple[str, int]]:
    random = np.random.default_rng(2)
    return [(random_peptide(random, 7, 25), int(random.integers(1, 6))) for _ in range(60)]


def test_new_precursors_are_halves_of_old_ones(precursors: list[tuple[str, int]]) -> None:
    children = distillation.recombine(precursors, np.random.default_rng(1))
    assert len(children) > len(precursors)
    heads = {(p[: len(p) // 2], z) for p, z in precursors}
    for peptide, charge in children:
        assert is_usable(peptide, charge)
        assert any(peptide.startswith(head) and z == charge for head, z in heads)


def test_no_new_precursor_is_held_out(precursors: list[tuple[str, int]]) -> None:
    children = distillation.recombine(precursors, np.random.default_rng(1))
    assert not any(is_held_out(peptide) for peptide, _ in children)


def test_teachers_that_agree_are_repeated(network: Network) -> None:
    precursors = [("PEPTIDEK", 2), ("GASPVTCLINDQK", 3)]
    shown = distillation.agreed_spectra([network, network], precursors)
    blanks = [distillation.blank(p) for p in precursors]
    for spectrum, alone in zip(shown, predict(network, blanks, False), strict=True):
        assert np.abs(spectrum.intensity - alone).max() < FLOAT_TOLERANCE


def test_teachers_count_alike_whatever_their_scale() -> None:
    first, second = Network(SMALL, 1), Network(SMALL, 2)
    second.weights["logits/b"].assign_add(np.full(len(ladder.SERIES), 2.0, np.float32))
    precursors = [("PEPTIDEK", 2)]
    (spectrum,) = distillation.agreed_spectra([first, second], precursors)
    each = [predict(n, [distillation.blank(precursors[0])], False)[0] for n in (first, second)]
    mean = sum(one / one.sum() for one in each)
    assert np.abs(spectrum.intensity - mean / mean.max()).max() < FLOAT_TOLERANCE
