# SPDX-License-Identifier: Apache-2.0
"""What the five networks predict for plain peptides, as spectra of the shipped kind to learn."""

import csv
import gzip
from pathlib import Path

import numpy as np

from zav_training.msms import spectra as plain
from zav_training.msms.shipped import Shipped
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.sources import SHIPPED
from zav_training.peptidoforms.spectra import Spectrum, blocked

#: Share of the peptides that get each precursor charge.
CHARGES = {1: 0.08, 2: 0.5, 3: 0.32, 4: 0.08, 5: 0.02}
#: The five networks lower what they predict under 0.04; what they give below it says little.
NOISE = 0.02
WEIGHT = 1.0


def plain_peptides(times: Path) -> list[str]:
    """Unmodified peptides of the table of retention times that training may see, sorted."""
    with gzip.open(times, "rt", newline="") as file:
        found = {row["peptide"] for row in csv.DictReader(file, delimiter="\t")}
    return sorted(p for p in found if not plain.is_held_out(p))


def make_lessons(
    models: Path,
    peptides: list[str],
    count: int,
    seed: int,
    shares: dict[int, float] = CHARGES,
) -> list[Spectrum]:
    """Predictions for so many of the peptides, at charges drawn by their shares."""
    random = np.random.default_rng(seed)
    chosen = random.permutation(len(peptides))[:count]
    charges = random.choice(list(shares), len(chosen), p=list(shares.values()))
    precursors = [(peptides[i], int(z)) for i, z in zip(chosen, charges, strict=True)]
    precursors = [p for p in precursors if plain.is_usable(*p)]
    found = []
    for (peptide, charge), sites in zip(precursors, Shipped(models).sites(precursors), strict=True):
        modified = blocked(peptide)
        wide = np.pad(sites, ((0, 0), (0, ladder.COUNT - ladder.PLAIN))).astype(np.float32)
        exists = ladder.site_exists(peptide, charge, modified)
        if wide.max() > 0.0:
            found.append(
                Spectrum(
                    peptide,
                    modified,
                    charge,
                    SHIPPED,
                    "lesson",
                    float("nan"),
                    np.where(wide >= NOISE, wide, 0.0).astype(np.float32),
                    exists,
                    NOISE,
                    WEIGHT,
                )
            )
    return found
