# SPDX-License-Identifier: Apache-2.0
"""How alike predicted and observed spectra of modified peptides are."""

from collections.abc import Callable

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.msms.metrics import LIMIT, apply_cut, spectral_angle
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.network import Network
from zav_training.peptidoforms.sources import SHIPPED
from zav_training.peptidoforms.spectra import Spectrum
from zav_training.peptidoforms.training import energy_input

Predictor = Callable[[list[Spectrum]], list[np.ndarray]]


def predict(
    network: Network, spectra: list[Spectrum], kind: int | None = SHIPPED, batch: int = 256
) -> list[np.ndarray]:
    """Intensities in sites, [n - 1, 27]; as a kind of spectra, or each as its own."""
    found: list[np.ndarray] = [np.empty(0)] * len(spectra)
    order = sorted(range(len(spectra)), key=lambda i: len(spectra[i].peptide))
    for first in range(0, len(order), batch):
        own = [spectra[i] for i in order[first : first + batch]]
        encoded = rows.pad([rows.encode(s.peptide, s.modified) for s in own], len(own[-1].peptide))
        logits = network(
            encoded,
            np.array([s.charge for s in own], np.int32),
            np.array([s.kind if kind is None else kind for s in own], np.int32),
            energy_input(np.array([s.energy for s in own])),
        ).numpy()
        for i, s, values in zip(order[first : first + batch], own, logits, strict=True):
            found[i] = np.exp(values[: len(s.peptide) - 1])
    return found


def angle(spectrum: Spectrum, prediction: np.ndarray, exists: np.ndarray) -> float:
    """Spectral angle over all ions that the source can observe, after the limits of spectra."""
    allowed = prediction * exists
    top = float(allowed.max())
    scaled = apply_cut(allowed / top) if top > 0.0 else allowed
    scaled = np.where(scaled >= LIMIT, scaled, 0.0)
    seen = spectrum.observed
    return spectral_angle(spectrum.intensity[seen], scaled[seen])


def angles(spectra: list[Spectrum], predictions: list[np.ndarray]) -> np.ndarray:
    """The angle of each spectrum."""
    return np.array(
        [
            angle(s, p, ladder.site_exists(s.peptide, s.charge, s.modified))
            for s, p in zip(spectra, predictions, strict=True)
        ]
    )


def groups_of(spectrum: Spectrum) -> list[str]:
    """Names of the groups under which a spectrum's figures are given."""
    names = spectrum.names
    if not names:
        kinds = ["unmodified"]
    elif sum(n.startswith("Phospho") for n in names) > 1:
        kinds = ["two and more Phospho"]
    else:
        kinds = list(dict.fromkeys(names)) if len(set(names)) == 1 else [" + ".join(sorted(names))]
    energy = "" if np.isnan(spectrum.energy) else f" at {spectrum.energy:.0f}"
    return [f"{spectrum.group} {kind}{energy}" for kind in kinds]


def medians(spectra: list[Spectrum], values: np.ndarray) -> dict[str, tuple[int, float]]:
    """Number and median angle of every group."""
    groups: dict[str, list[float]] = {}
    for s, value in zip(spectra, values, strict=True):
        for name in groups_of(s):
            groups.setdefault(name, []).append(float(value))
    return {name: (len(v), float(np.median(v))) for name, v in sorted(groups.items())}


def use_threads(count: int) -> None:
    """Limits TensorFlow to so many threads, unless 0."""
    if count:
        tf.config.threading.set_intra_op_parallelism_threads(count)
        tf.config.threading.set_inter_op_parallelism_threads(1)
