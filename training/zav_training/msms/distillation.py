# SPDX-License-Identifier: Apache-2.0
"""Teaches one network what several agree on.

The mean of several networks is better than each, but costs as much as all. A student is shown the
mean for the peptides of the training data and for new ones made of their halves; of these there is
no end, so that it need not learn any by heart.
"""

from collections.abc import Iterable

import numpy as np

from zav_training.msms import ladder
from zav_training.msms.network import Network
from zav_training.msms.predict_trained import predict
from zav_training.msms.sources import SHIPPED
from zav_training.msms.spectra import Spectrum, is_held_out, is_usable

Precursor = tuple[str, int]

#: How many new peptides are made of each one in the data, by precursor charge: more where few are.
CHILDREN = {1: 6, 2: 1, 3: 1, 4: 4, 5: 10}


def recombine(precursors: list[Precursor], random: np.random.Generator) -> list[Precursor]:
    """New precursors of the same charges: the first half of one peptide, the second of another.

    None of them belongs to the peptides that are evaluated on.
    """
    children: dict[Precursor, None] = {}
    for charge, count in CHILDREN.items():
        peptides = [p for p, z in precursors if z == charge]
        for _ in range(count):
            partners = random.permutation(len(peptides))
            for first, index in zip(peptides, partners, strict=True):
                second = peptides[index]
                child = first[: len(first) // 2] + second[len(second) // 2 :]
                if is_usable(child, charge) and not is_held_out(child):
                    children[child, charge] = None
    return list(children)


def blank(precursor: Precursor) -> Spectrum:
    """A spectrum without intensities; every ion that has a slot under 2000 m/z is observable."""
    peptide, charge = precursor
    observable = ladder.site_exists(len(peptide), charge)
    observable &= ladder.site_mz(peptide) <= ladder.MZ_LIMIT
    return Spectrum(
        peptide, charge, SHIPPED, np.zeros(observable.shape, np.float32), observable, 0.0
    )


def agreed_spectra(teachers: Iterable[Network], precursors: list[Precursor]) -> list[Spectrum]:
    """The mean of the teachers' predictions, each scaled to the same sum, as spectra."""
    spectra = [blank(precursor) for precursor in precursors]
    for teacher in teachers:
        for spectrum, one in zip(spectra, predict(teacher, spectra, False), strict=True):
            spectrum.intensity = spectrum.intensity + one / max(float(one.sum()), 1e-9)
    spectra = [s for s in spectra if s.intensity.any()]
    for spectrum in spectra:
        spectrum.intensity = (spectrum.intensity / spectrum.intensity.max()).astype(np.float32)
    return spectra


def lessons(
    teachers: list[Network], spectra: list[Spectrum], random: np.random.Generator
) -> list[Spectrum]:
    """What the student learns from: old and new precursors, as the teachers predict them."""
    known = list(dict.fromkeys((s.peptide, s.charge) for s in spectra if not s.held_out))
    return agreed_spectra(teachers, known + recombine(known, random))
