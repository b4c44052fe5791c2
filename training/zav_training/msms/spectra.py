# SPDX-License-Identifier: Apache-2.0
"""Reads the data files into spectra in the sites layout."""

import csv
import gzip
import hashlib
import re
from collections import defaultdict
from collections.abc import Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from zav_training.msms import ladder, vocabulary
from zav_training.msms.sources import FILES, SOURCES, source_of

FRAGMENT = re.compile(r"([aby])(\d+)\+(\d)(-H2O|-NH3)?$")
#: Share of the peptides that is never trained on: one in so many.
HELD_OUT_ONE_IN = 10
#: The largest level taken for "below the noise" where the weakest peak sets it.
MAX_NOISE = 0.2


@dataclass
class Spectrum:
    """One precursor as one source saw it, in the sites layout.

    intensity  float32 [n - 1, 11], 1 for the largest; 0 where absent or not observable
    observed   bool [n - 1, 11], whether the source can say anything about the ion
    noise      relative intensity under which a peak would not have been listed
    """

    peptide: str
    charge: int
    source: int
    intensity: np.ndarray
    observed: np.ndarray
    noise: float

    @property
    def held_out(self) -> bool:
        """Whether its peptide belongs to the tenth that is only evaluated on."""
        return is_held_out(self.peptide)


def is_held_out(peptide: str) -> bool:
    """Decides by the sequence alone; I and L, which weigh the same, are one letter."""
    digest = hashlib.md5(peptide.replace("I", "L").encode(), usedforsecurity=False)
    return int(digest.hexdigest(), 16) % HELD_OUT_ONE_IN == 0


def read_rows(path: Path) -> Iterator[dict[str, str]]:
    """The rows of a gzipped TSV with a header line."""
    csv.field_size_limit(1 << 30)
    with gzip.open(path, "rt", newline="") as file:
        yield from csv.DictReader(file, delimiter="\t")


def is_usable(peptide: str, charge: int) -> bool:
    """Whether a network of this charge can read the peptide, and a bond is there to break."""
    known = all(letter in vocabulary.COLUMN for letter in peptide)
    return known and 1 < len(peptide) <= vocabulary.MAX_LENGTH.get(charge, 0)


def from_fragments(text: str, length: int) -> np.ndarray:
    """Annotated fragments in sites, float32 [n - 1, 11]; others than the ladder's are dropped."""
    sites = np.zeros((length - 1, len(ladder.SERIES)), dtype=np.float32)
    for item in text.split():
        name, value = item.rsplit(":", 1)
        hit = FRAGMENT.match(name)
        column = hit and ladder.COLUMN_OF.get((hit[1], int(hit[3]), hit[4] or ""))
        if column is not None and int(hit[2]) < length:
            sites[ladder.site_of(column, int(hit[2]), length), column] = float(value)
    return sites


def parse_peaks(text: str) -> tuple[np.ndarray, np.ndarray]:
    """m/z, ascending, and intensities of raw peaks."""
    peaks = np.array([item.split(":") for item in text.split()], dtype=np.float64)
    peaks = peaks[np.argsort(peaks[:, 0])]
    return peaks[:, 0], peaks[:, 1]


def strongest_peaks(
    mz: np.ndarray, height: np.ndarray, peptide: str, tolerance: tuple[float, str]
) -> np.ndarray:
    """Index of the most intense peak within the tolerance of each ion, -1 without, [n - 1, 11]."""
    theory = ladder.site_mz(peptide)
    width = theory * tolerance[0] * 1e-6 if tolerance[1] == "ppm" else tolerance[0]
    first = np.searchsorted(mz, theory - width)
    last = np.searchsorted(mz, theory + width, side="right")
    found = np.full(theory.shape, -1)
    for site in zip(*np.nonzero(last > first), strict=True):
        found[site] = first[site] + np.argmax(height[first[site] : last[site]])
    return found


def annotate(
    mz: np.ndarray, height: np.ndarray, peptide: str, tolerance: tuple[float, str]
) -> tuple[np.ndarray, np.ndarray]:
    """Intensities in sites, and which of them are unambiguous, both [n - 1, 11].

    An ion takes the most intense peak within the tolerance. Where a peak fits several ions, the
    first series keeps it, and of the others it is not known how much of the peak is theirs.
    """
    found = strongest_peaks(mz, height, peptide, tolerance)
    sites = np.zeros(found.shape, dtype=np.float32)
    clear = np.ones(found.shape, dtype=bool)
    taken: set[int] = set()
    for column, row in zip(*np.nonzero(found.T >= 0), strict=True):
        peak = int(found[row, column])
        clear[row, column] = peak not in taken
        sites[row, column] = 0.0 if peak in taken else height[peak]
        taken.add(peak)
    return sites, clear


def read_spectrum(row: dict[str, str], file: str) -> Spectrum | None:
    """A row as a spectrum, or None where no network reads it or nothing of it is observable."""
    peptide, charge = row["peptide"], int(row["charge"])
    if not is_usable(peptide, charge):
        return None
    index = source_of(file, row["source"])
    source = SOURCES[index]
    observed = source.observes(peptide, charge)
    if "fragments" in row:
        sites = from_fragments(row["fragments"], len(peptide))
        weakest = 0.0
    else:
        mz, height = parse_peaks(row["peaks"])
        sites, clear = annotate(mz, height, peptide, source.tolerance)
        observed &= clear
        weakest = float(height.min())
    sites = sites * observed
    top = float(sites.max())
    if top <= 0.0:
        return None
    noise = min(weakest / top, MAX_NOISE) if source.noise is None else source.noise
    return Spectrum(peptide, charge, index, sites / top, observed, noise)


def average(replicates: list[Spectrum]) -> Spectrum:
    """The mean of several spectra of one precursor from one source."""
    if len(replicates) == 1:
        return replicates[0]
    seen = np.sum([s.observed for s in replicates], axis=0)
    mean = np.sum([s.intensity for s in replicates], axis=0) / np.maximum(seen, 1)
    mean = (mean / mean.max()).astype(np.float32)
    noise = float(np.mean([s.noise for s in replicates]))
    first = replicates[0]
    return Spectrum(first.peptide, first.charge, first.source, mean, seen > 0, noise)


def average_replicates(spectra: Iterable[Spectrum]) -> list[Spectrum]:
    """One spectrum for each precursor and source."""
    groups: dict[tuple[str, int, int], list[Spectrum]] = defaultdict(list)
    for spectrum in spectra:
        groups[spectrum.peptide, spectrum.charge, spectrum.source].append(spectrum)
    return [average(group) for group in groups.values()]


def read_all(folder: Path) -> list[Spectrum]:
    """Every usable spectrum of the data files in the folder, replicates averaged."""
    spectra = []
    for file in FILES:
        for row in read_rows(folder / f"{file}.tsv.gz"):
            spectrum = read_spectrum(row, file)
            if spectrum is not None:
                spectra.append(spectrum)
    return average_replicates(spectra)
