# SPDX-License-Identifier: Apache-2.0
"""The ion series, and where each of their ions stands.

Two layouts are used. In *sites* an array has the shape [n - 1, 11]: row j is the bond between the
residues j and j + 1 (0-based), so that b(j + 1) and y(n - 1 - j), the fragments of one cleavage,
share a row. In *slots* it is the flat ladder of the network's output: series after series, L slots
each (15 for the a series), slot i of a series being ion number i + 1.
"""

from dataclasses import dataclass

import numpy as np

from zav_training.msms import vocabulary as v

A_SLOTS = 15
MZ_LIMIT = 2000.0


@dataclass(frozen=True)
class Series:
    """One ion series: its letter, the charge of its fragments and its neutral loss."""

    letter: str
    charge: int
    loss: str

    @property
    def from_c_terminus(self) -> bool:
        """Whether its ions hold the C-terminus, and are counted from there."""
        return self.letter == "y"

    @property
    def start_mass(self) -> float:
        """What an ion weighs beyond its residues, in Da, protons included."""
        ends = {"y": v.WATER, "b": 0.0, "a": -v.CARBON_MONOXIDE}[self.letter]
        lost = {"": 0.0, "-H2O": v.WATER, "-NH3": v.AMMONIA}[self.loss]
        return ends - lost + self.charge * v.PROTON

    @property
    def name(self) -> str:
        """As in the annotated spectra without the ion number, for example y+1-H2O."""
        return f"{self.letter}+{self.charge}{self.loss}"


#: In ladder order.
SERIES = (
    Series("y", 1, ""),
    Series("b", 1, ""),
    Series("y", 2, ""),
    Series("b", 2, ""),
    Series("a", 1, ""),
    Series("y", 1, "-H2O"),
    Series("y", 1, "-NH3"),
    Series("b", 1, "-H2O"),
    Series("b", 1, "-NH3"),
    Series("y", 3, ""),
    Series("b", 3, ""),
)
COLUMN_OF = {(s.letter, s.charge, s.loss): index for index, s in enumerate(SERIES)}
FROM_C_TERMINUS = np.array([s.from_c_terminus for s in SERIES])


def columns_of_charge(charge: int) -> list[int]:
    """Indices into SERIES of those that a precursor of this charge has, in ladder order."""
    return [i for i, s in enumerate(SERIES) if s.charge <= min(charge, 3)]


def slots_of_series(column: int, charge: int) -> int:
    """How many ladder slots the series takes."""
    return A_SLOTS if SERIES[column].letter == "a" else v.MAX_LENGTH[charge]


def ladder_length(charge: int) -> int:
    """Number of slots of the whole ladder: 177, 359, 515, 535, 515 for charges 1 to 5."""
    return sum(slots_of_series(column, charge) for column in columns_of_charge(charge))


def site_mz(peptide: str) -> np.ndarray:
    """m/z of every ion in sites, float64 of shape [n - 1, 11]."""
    masses = v.COLUMN_MASS[v.encode(peptide)]
    left = np.cumsum(masses)[:-1, None]
    right = masses.sum() - left
    start = np.array([s.start_mass for s in SERIES])
    charge = np.array([s.charge for s in SERIES])
    return (np.where(FROM_C_TERMINUS, right, left) + start) / charge


def site_exists(length: int, charge: int) -> np.ndarray:
    """Which ions of the sites layout have a slot, bool of shape [n - 1, 11].

    An a ion beyond number 15 and a series that the precursor's charge does not have are absent.
    """
    exists = np.zeros((length - 1, len(SERIES)), dtype=bool)
    exists[:, columns_of_charge(charge)] = True
    exists[A_SLOTS:, COLUMN_OF["a", 1, ""]] = False
    return exists


def site_number(length: int) -> np.ndarray:
    """Ion number in sites, int of shape [n - 1, 11]."""
    left = np.arange(1, length)[:, None]
    return np.where(FROM_C_TERMINUS, length - left, left)


def site_of(column: int, number: int, length: int) -> int:
    """Row in sites of an ion."""
    return length - 1 - number if SERIES[column].from_c_terminus else number - 1


def slots_to_sites(slots: np.ndarray, length: int, charge: int) -> np.ndarray:
    """A flat ladder of one peptide rearranged, shape [n - 1, 11]; what has no slot is 0."""
    sites = np.zeros((length - 1, len(SERIES)), dtype=slots.dtype)
    first = 0
    for column in columns_of_charge(charge):
        size = slots_of_series(column, charge)
        ions = slots[first : first + min(size, length - 1)]
        rows = [site_of(column, number, length) for number in range(1, len(ions) + 1)]
        sites[rows, column] = ions
        first += size
    return sites
