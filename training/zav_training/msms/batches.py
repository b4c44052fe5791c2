# SPDX-License-Identifier: Apache-2.0
"""Spectra as padded batches."""

from collections.abc import Iterator
from dataclasses import dataclass

import numpy as np

from zav_training.msms import ladder, vocabulary
from zav_training.msms.sources import GENERIC, ORBITRAP, TYPICAL_MEAN, weight_of
from zav_training.msms.spectra import Spectrum

#: Batches are cut from this many spectra at a time, sorted by length: little padding, much chance.
BATCHES_IN_POOL = 24


@dataclass
class Batch:
    """B spectra in rows; n is the length of the longest peptide.

    residues  int32 [B, n];  length, charge, source  int32 [B];  noise, weight  float32 [B]
    observed  float32 [B, n, 11], intensities in sites;  mask  float32 [B, n, 11], 1 observable
    """

    residues: np.ndarray
    length: np.ndarray
    charge: np.ndarray
    source: np.ndarray
    noise: np.ndarray
    weight: np.ndarray
    observed: np.ndarray
    mask: np.ndarray


def make_batch(spectra: list[Spectrum], weights: np.ndarray | None = None) -> Batch:
    """Pads the spectra to the longest of them; weights [B] multiply the sources' own."""
    count, rows = len(spectra), max(len(s.peptide) for s in spectra)
    residues = np.zeros((count, rows), dtype=np.int32)
    observed = np.zeros((count, rows, len(ladder.SERIES)), dtype=np.float32)
    mask = np.zeros_like(observed)
    for i, s in enumerate(spectra):
        residues[i, : len(s.peptide)] = vocabulary.encode(s.peptide)
        observed[i, : len(s.peptide) - 1] = s.intensity
        mask[i, : len(s.peptide) - 1] = s.observed
    own = np.array([weight_of(s.source) for s in spectra], dtype=np.float32)
    return Batch(
        residues,
        np.array([len(s.peptide) for s in spectra], dtype=np.int32),
        np.array([s.charge for s in spectra], dtype=np.int32),
        np.array([s.source for s in spectra], dtype=np.int32),
        np.array([s.noise for s in spectra], dtype=np.float32),
        own if weights is None else own * weights.astype(np.float32),
        observed,
        mask,
    )


def loss_factors(
    spectra: list[Spectrum], by_charge: dict[int, float], orbitrap: float
) -> np.ndarray:
    """Factor of each spectrum's loss, float32: its charge's (1 where none is given), times
    `orbitrap` where its source is an absolute Orbitrap spectrum.
    """
    return np.array(
        [
            by_charge.get(s.charge, 1.0) * (orbitrap if s.source in ORBITRAP else 1.0)
            for s in spectra
        ],
        dtype=np.float32,
    )


def hide_sources(
    source: np.ndarray, generic: float, typical: float, random: np.random.Generator
) -> np.ndarray:
    """Replaces some sources [B]: a share of all by GENERIC, of the Orbitrap ones by TYPICAL_MEAN.

    The second is what an exported network is given, so that it is trained for that as well.
    """
    draw = random.random(source.shape)
    hidden = np.where(draw < generic, GENERIC, source)
    return np.where(
        np.isin(source, ORBITRAP) & (draw >= 1.0 - typical), TYPICAL_MEAN, hidden
    ).astype(np.int32)


def epoch(
    spectra: list[Spectrum], weights: np.ndarray, size: int, random: np.random.Generator
) -> Iterator[Batch]:
    """One pass in a random order, full batches only."""
    order = random.permutation(len(spectra))
    pool = size * BATCHES_IN_POOL
    groups = []
    for start in range(0, len(order), pool):
        part = sorted(order[start : start + pool], key=lambda i: len(spectra[i].peptide))
        groups += [part[i : i + size] for i in range(0, len(part) - size + 1, size)]
    for index in random.permutation(len(groups)):
        chosen = groups[index]
        yield make_batch([spectra[i] for i in chosen], weights[chosen])
