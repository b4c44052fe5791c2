# SPDX-License-Identifier: Apache-2.0
"""What modifications add to a residue or a terminus, by Unimod's names."""

import numpy as np

#: Elements in the order of the networks' input.
ELEMENTS = ("C", "H", "N", "O", "P", "S")
#: Names under which data files give a modification that Unimod calls otherwise.
SYNONYMS = {"GlyGly": "GG"}

#: Change of the numbers of atoms, in the order of ELEMENTS (Unimod).
COMPOSITION = {
    "Acetyl": (2, 2, 0, 1, 0, 0),
    "Ammonia-loss": (0, -3, -1, 0, 0, 0),
    "Biotin": (10, 14, 2, 2, 0, 1),
    "Butyryl": (4, 6, 0, 1, 0, 0),
    "Carbamidomethyl": (2, 3, 1, 1, 0, 0),
    "Crotonyl": (4, 4, 0, 1, 0, 0),
    "Deamidated": (0, -1, -1, 1, 0, 0),
    "Dimethyl": (2, 4, 0, 0, 0, 0),
    "Formyl": (1, 0, 0, 1, 0, 0),
    "GG": (4, 6, 2, 2, 0, 0),
    "Gln->pyro-Glu": (0, -3, -1, 0, 0, 0),
    "Glu->pyro-Glu": (0, -2, 0, -1, 0, 0),
    "Malonyl": (3, 2, 0, 3, 0, 0),
    "Methyl": (1, 2, 0, 0, 0, 0),
    "Nitro": (0, -1, 1, 2, 0, 0),
    "Oxidation": (0, 0, 0, 1, 0, 0),
    "Phospho": (0, 1, 0, 3, 1, 0),
    "Propionyl": (3, 4, 0, 1, 0, 0),
    "Succinyl": (4, 4, 0, 3, 0, 0),
    "Trimethyl": (3, 6, 0, 0, 0, 0),
}
#: Monoisotopic masses of the elements in Da (AME2020).
ELEMENT_MASS = np.array([12.0, 1.007825031898, 14.003074004251, 15.994914619257,
                         30.973761997768, 31.972071173500])  # fmt: skip


def composition(name: str) -> tuple[int, ...]:
    """Change of C, H, N, O, P and S; raises KeyError for a name that the table lacks."""
    return COMPOSITION[SYNONYMS.get(name, name)]


def mass(name: str) -> float:
    """Change of the monoisotopic mass in Da."""
    return float(np.dot(composition(name), ELEMENT_MASS))


def parse(text: str) -> list[tuple[int, str]]:
    """Position and Unimod's name of each modification of `3:Oxidation;0:Acetyl`."""
    pairs = (item.split(":", 1) for item in text.split(";") if item)
    return [(int(place), SYNONYMS.get(name.strip(), name.strip())) for place, name in pairs]
