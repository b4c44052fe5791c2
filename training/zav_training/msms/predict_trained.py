# SPDX-License-Identifier: Apache-2.0
"""Predictions of a network in training, before it is exported."""

from collections.abc import Iterator

import numpy as np
import tensorflow as tf

from zav_training.msms import ladder
from zav_training.msms.batches import make_batch
from zav_training.msms.metrics import Score, apply_cut, score, summarise
from zav_training.msms.network import Network
from zav_training.msms.spectra import Spectrum
from zav_training.msms.vocabulary import CHARGES

BATCH = 128


def to_spectrum(logits: np.ndarray, peptide: str, charge: int) -> np.ndarray:
    """Logits of one peptide as intensities in sites, [n - 1, 11], 1 for the largest."""
    keep = ladder.site_exists(len(peptide), charge) & (ladder.site_mz(peptide) <= ladder.MZ_LIMIT)
    if not keep.any():
        return np.zeros(keep.shape, dtype=np.float32)
    logits = logits[: len(peptide) - 1]
    return np.where(keep, np.exp(logits - logits[keep].max()), 0.0).astype(np.float32)


def _batches(spectra: list[Spectrum]) -> Iterator[list[int]]:
    order = sorted(range(len(spectra)), key=lambda i: len(spectra[i].peptide))
    for start in range(0, len(order), BATCH):
        yield order[start : start + BATCH]


def predict(network: Network, spectra: list[Spectrum], true_source: bool) -> list[np.ndarray]:
    """Intensities in sites of every spectrum's precursor, before the cut.

    With its true source, or as the exported networks do, with the shipped one.
    """
    out: list[np.ndarray] = [np.empty(0)] * len(spectra)
    for indices in _batches(spectra):
        batch = make_batch([spectra[i] for i in indices])
        charge = tf.constant(batch.charge)
        condition = (
            network.condition(charge, tf.constant(batch.source))
            if true_source
            else network.shipped_condition(charge)
        )
        logits = network(
            tf.constant(batch.residues), tf.constant(batch.length), charge, condition
        ).numpy()
        for row, i in enumerate(indices):
            out[i] = to_spectrum(logits[row], spectra[i].peptide, spectra[i].charge)
    return out


def report_line(network: Network, spectra: list[Spectrum]) -> str:
    """Angle/correlation on held-out spectra with the shipped and the true source, for the log."""
    parts = []
    for label, true_source in (("shipped", False), ("true", True)):
        predictions = [apply_cut(p) for p in predict(network, spectra, true_source)]
        scores = [score(s, p) for s, p in zip(spectra, predictions, strict=True)]
        parts.append(f"{label}: {_figures(summarise(spectra, scores))}")
    return " | ".join(parts)


def _figures(table: dict[str, tuple[int, Score]]) -> str:
    names = ["orbitrap", "library", *(f"charge {charge}" for charge in CHARGES)]
    names += ["orbitrap charge 2", "orbitrap charge 3"]
    found = [(name, table[name][1]) for name in names if name in table]
    parts = [f"{name.replace('charge ', 'z')} {s.angle:.4f}/{s.pearson:.3f}" for name, s in found]
    if "orbitrap" in table:
        one = table["orbitrap"][1]
        parts.append(f"missed {one.missed:.3f} false {one.false:.3f}")
    return " ".join(parts)
