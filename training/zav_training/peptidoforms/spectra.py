# SPDX-License-Identifier: Apache-2.0
"""Reads spectra of plain and modified peptides into one layout."""

import re
from collections import defaultdict
from collections.abc import Iterable
from dataclasses import dataclass, replace
from pathlib import Path

import numpy as np

from zav_training import modifications
from zav_training.msms import spectra as plain
from zav_training.msms.sources import SOURCES as PLAIN_SOURCES
from zav_training.msms.sources import weight_of
from zav_training.msms.vocabulary import COLUMN
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.sources import NAMES, Source, source_of

FRAGMENT = re.compile(r"([aby])(\d+)\+(\d)((?:-\d?[A-Z][A-Z0-9]*)?)$")
CHARGES = range(1, 7)
LONGEST = 52
#: Middle of the energies that the network knows, and what its input is divided by.
ENERGY_CENTRE, ENERGY_SCALE = 30.0, 10.0
#: Energies beyond these would count as the nearest; the measurements reach from 20 to 35.
ENERGIES = (20.0, 40.0)
TOLERANCE_PPM = 20.0


@dataclass
class Spectrum:
    """One precursor as one source saw it.

    modified   position and name of each modification, blocked cysteines included
    kind       index into NAMES;  group  name for figures;  energy  NCE, NaN where it is unknown
    intensity  float32 [n - 1, 27], 1 for the largest;  observed  bool, what the source can see
    noise      relative intensity under which a peak would not have been listed
    """

    peptide: str
    modified: tuple[tuple[int, str], ...]
    charge: int
    kind: int
    group: str
    energy: float
    intensity: np.ndarray
    observed: np.ndarray
    noise: float
    weight: float

    @property
    def held_out(self) -> bool:
        """Whether its peptide belongs to the tenth that is only evaluated on."""
        return plain.is_held_out(self.peptide)

    @property
    def names(self) -> list[str]:
        """Names and sites of its modifications, blocked cysteines apart."""
        return [
            f"{name}@{self.peptide[position - 1] if position else 'N-term'}"
            for position, name in self.modified
            if name != "Carbamidomethyl"
        ]


def blocked(peptide: str, modified: Iterable[tuple[int, str]] = ()) -> tuple[tuple[int, str], ...]:
    """The modifications with carbamidomethyl on every cysteine that has none."""
    own = list(modified)
    taken = {position for position, _ in own}
    own += [
        (i + 1, "Carbamidomethyl")
        for i, letter in enumerate(peptide)
        if letter == "C" and i + 1 not in taken
    ]
    return tuple(sorted(own))


def is_usable(peptide: str, charge: int) -> bool:
    """Whether the network can read the peptide, and a bond is there to break."""
    known = all(letter in COLUMN for letter in peptide)
    return known and 1 < len(peptide) <= LONGEST and charge in CHARGES


def from_plain(spectrum: plain.Spectrum) -> Spectrum:
    """A spectrum of the data for plain peptides in the wider layout."""
    extra = ((0, 0), (0, ladder.COUNT - ladder.PLAIN))
    source = PLAIN_SOURCES[spectrum.source]
    return Spectrum(
        spectrum.peptide,
        blocked(spectrum.peptide),
        spectrum.charge,
        NAMES.index(source.name),
        source.name,
        np.nan,
        np.pad(spectrum.intensity, extra),
        np.pad(spectrum.observed, extra),
        spectrum.noise,
        weight_of(spectrum.source),
    )


def from_fragments(text: str, length: int) -> np.ndarray:
    """Annotated fragments in sites; others than the ladder's are dropped."""
    sites = np.zeros((length - 1, ladder.COUNT), dtype=np.float32)
    for item in text.split():
        name, value = item.rsplit(":", 1)
        hit = FRAGMENT.match(name)
        column = hit and ladder.COLUMN_OF.get((hit[1], int(hit[3]), hit[4]))
        if column is not None and int(hit[2]) < length:
            sites[ladder.site_of(column, int(hit[2]), length), column] = float(value)
    return sites


def from_peaks(
    text: str, peptide: str, modified: tuple[tuple[int, str], ...], exists: np.ndarray
) -> np.ndarray:
    """The most intense raw peak within the tolerance of each ion; a peak counts once."""
    mz, height = plain.parse_peaks(text)
    theory = ladder.site_mz(peptide, modified)
    width = theory * TOLERANCE_PPM * 1e-6
    first, last = np.searchsorted(mz, theory - width), np.searchsorted(mz, theory + width, "right")
    sites = np.zeros(theory.shape, dtype=np.float32)
    taken: set[int] = set()
    for column, row in zip(*np.nonzero((exists & (last > first)).T), strict=True):
        peak = int(first[row, column] + np.argmax(height[first[row, column] : last[row, column]]))
        sites[row, column] = 0.0 if peak in taken else height[peak]
        taken.add(peak)
    return sites


def read_spectrum(row: dict[str, str]) -> Spectrum | None:
    """A row as a spectrum, or None where the network cannot read it or nothing is observable."""
    peptide, charge = row["peptide"], int(row["charge"])
    if not is_usable(peptide, charge):
        return None
    source = source_of(row["source"])
    modified = blocked(peptide, modifications.parse(row["modifications"]))
    observed = source.observes(peptide, charge, list(modified))
    if row["fragments"]:
        sites = from_fragments(row["fragments"], len(peptide))
    else:
        sites = from_peaks(row["peaks"], peptide, modified, observed)
    sites = sites * observed
    top = float(sites.max())
    if top <= 0.0:
        return None
    return Spectrum(
        peptide,
        modified,
        charge,
        NAMES.index(source.like),
        source.name,
        _energy(row["nce"], source),
        sites / top,
        observed,
        source.noise,
        source.weight,
    )


def _energy(text: str, source: Source) -> float:
    known = source.scaled and text
    return float(np.clip(float(text), *ENERGIES)) if known else float("nan")


def average_replicates(spectra: Iterable[Spectrum]) -> list[Spectrum]:
    """One spectrum for each precursor, source and energy."""
    groups: dict[tuple, list[Spectrum]] = defaultdict(list)
    for s in spectra:
        groups[s.peptide, s.modified, s.charge, s.group, str(s.energy)].append(s)
    return [_average(group) for group in groups.values()]


def _average(replicates: list[Spectrum]) -> Spectrum:
    mean = np.mean([s.intensity for s in replicates], axis=0)
    return replace(replicates[0], intensity=(mean / mean.max()).astype(np.float32))


def read_modified(folder: Path) -> list[Spectrum]:
    """Every usable spectrum of the two tables in the folder, replicates averaged."""
    found = []
    rows_seen = set()
    for file in ("energy", "modified"):
        for row in plain.read_rows(folder / f"{file}.tsv.gz"):
            key = tuple(row.values())
            if key in rows_seen:  # rows of known energy stand in both tables
                continue
            rows_seen.add(key)
            spectrum = read_spectrum(row)
            if spectrum is not None:
                found.append(spectrum)
    return average_replicates(found)


def read_plain(folder: Path) -> list[Spectrum]:
    """Every usable spectrum of the data for plain peptides."""
    return [from_plain(one) for one in plain.read_all(folder)]
