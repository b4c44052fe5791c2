# SPDX-License-Identifier: Apache-2.0
import pytest

from zav_training import modifications

#: Monoisotopic masses as Unimod gives them.
UNIMOD_MASS = {
    "Acetyl": 42.010565,
    "Ammonia-loss": -17.026549,
    "Biotin": 226.077598,
    "Butyryl": 70.041865,
    "Carbamidomethyl": 57.021464,
    "Crotonyl": 68.026215,
    "Deamidated": 0.984016,
    "Dimethyl": 28.031300,
    "Formyl": 27.994915,
    "GG": 114.042927,
    "Gln->pyro-Glu": -17.026549,
    "Glu->pyro-Glu": -18.010565,
    "Malonyl": 86.000394,
    "Methyl": 14.015650,
    "Nitro": 44.985078,
    "Oxidation": 15.994915,
    "Phospho": 79.966331,
    "Propionyl": 56.026215,
    "Succinyl": 100.016044,
    "Trimethyl": 42.046950,
}


def test_every_modification_weighs_what_unimod_says() -> None:
    assert set(UNIMOD_MASS) == set(modifications.COMPOSITION)
    for name, mass in UNIMOD_MASS.items():
        assert modifications.mass(name) == pytest.approx(mass, abs=2e-6), name


def test_text_is_read_with_synonyms_and_stray_blanks() -> None:
    assert modifications.parse("0:Acetyl;3:GlyGly;7:Phospho ") == [
        (0, "Acetyl"),
        (3, "GG"),
        (7, "Phospho"),
    ]
    assert modifications.parse("") == []


def test_unknown_name_is_refused() -> None:
    with pytest.raises(KeyError):
        modifications.composition("Foo")
