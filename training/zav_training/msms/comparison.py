# SPDX-License-Identifier: Apache-2.0
"""Compares written predictions, ours or another program's, with the rows of a data file.

Every measured row counts once, replicates are not averaged, and an ion that was not observed is 0:
for sources that list only some of the fragments the figures mean little.
"""

import csv
from collections.abc import Iterable, Iterator
from pathlib import Path

import numpy as np

from zav_training.msms.metrics import CORE, CORE_DOUBLY, pearson, spectral_angle
from zav_training.msms.spectra import (
    from_fragments,
    is_held_out,
    is_usable,
    parse_peaks,
    read_rows,
    strongest_peaks,
)

#: Half width in which a raw peak is taken for an ion, wide enough for m/z rounded to 0.01.
TOLERANCE = (0.02, "Da")


def held_out_rows(path: Path) -> Iterator[dict[str, str]]:
    """Rows of a data file whose peptide was not trained on."""
    for row in read_rows(path):
        if is_held_out(row["peptide"]) and is_usable(row["peptide"], int(row["charge"])):
            yield row


def observed_sites(row: dict[str, str]) -> np.ndarray:
    """What a row shows, in sites; a peak may count for several ions."""
    peptide = row["peptide"]
    if "fragments" in row:
        return from_fragments(row["fragments"], len(peptide))
    mz, height = parse_peaks(row["peaks"])
    found = strongest_peaks(mz, height, peptide, TOLERANCE)
    return np.where(found >= 0, height[found], 0.0).astype(np.float32)


def compare(rows: Iterable[dict[str, str]], predictions: Path) -> tuple[int, float, float]:
    """Number of spectra, median angle over b and y of 1+ and 2+, median correlation over 1+.

    `predictions` is a TSV of peptide, charge and fragments; a row without a prediction is left out.
    """
    with predictions.open(newline="") as file:
        table = {
            (r["peptide"], r["charge"]): r["fragments"]
            for r in csv.DictReader(file, delimiter="\t")
        }
    figures = []
    for row in rows:
        text = table.get((row["peptide"], row["charge"]))
        if text is None:
            continue
        seen, predicted = observed_sites(row), from_fragments(text, len(row["peptide"]))
        if not seen[:, CORE_DOUBLY].any():
            continue
        angle = spectral_angle(seen[:, CORE_DOUBLY], predicted[:, CORE_DOUBLY])
        figures.append((angle, pearson(seen[:, CORE].ravel(), predicted[:, CORE].ravel())))
    angle, correlation = np.nanmedian(np.array(figures), axis=0)
    return len(figures), float(angle), float(correlation)
