# SPDX-License-Identifier: Apache-2.0
"""From a trained network to the files that ship: graph, figures, contract."""

from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.contract import Value, write_contract
from zav_training.convolution import INPUT
from zav_training.graphs import INIT, write_graph
from zav_training.msms.ladder import MZ_LIMIT
from zav_training.msms.vocabulary import LETTERS
from zav_training.peptidoforms import ladder
from zav_training.peptidoforms.evaluation import angles, medians
from zav_training.peptidoforms.export import OUTPUT, PRECURSORS, build_graph
from zav_training.peptidoforms.spectra import CHARGES, ENERGY_CENTRE, ENERGY_SCALE, Spectrum
from zav_training.peptidoforms.training import energy_input, load

NAME = "peptidoform_spectrum"
#: Where the training spectra come from beyond those of the five networks, and under which licence.
TRAINING_DATA = [
    "all of msms_charge1 to msms_charge5",
    "phospho libraries: weizhenFrank/DeepPhospho, MIT",
    "pdeep_velos, pdeep_malonyl: pFindStudio/pDeep and pDeep3, BSD-3-Clause and Apache-2.0",
    "elfragmentador: jspaezp/elfragmentador, Apache-2.0 (ProteomeTools)",
    "dlomix: wilhelm-lab/dlomix, MIT (ProteomeTools)",
    "proteometools_msp: ProteomeTools",
    "maxquant: bigbio/quantms.io; metamorpheus: smith-chem-wisc, LGPL and MIT",
    "lessons: what the five networks predict for 90,000 plain precursors",
]
#: What the training spectra carry often enough to be learnt, as name@site.
TRAINED = [
    "Carbamidomethyl@C", "Oxidation@M", "Acetyl@N-term", "Acetyl@K", "Phospho@S", "Phospho@T",
    "Phospho@Y", "Deamidated@N", "Gln->pyro-Glu@N-term", "Ammonia-loss@N-term", "Malonyl@K",
]  # fmt: skip
BATCH = 128


class Shipped:
    """The graph file of a folder, run as a host runs it."""

    def __init__(self, models: Path) -> None:
        definition = tf.compat.v1.GraphDef.FromString((models / f"{NAME}.pb").read_bytes())
        graph = tf.Graph()
        with graph.as_default():
            tf.import_graph_def(definition, name="")
        config = tf.compat.v1.ConfigProto(
            intra_op_parallelism_threads=1, inter_op_parallelism_threads=1
        )
        session = tf.compat.v1.Session(graph=graph, config=config)
        names = [f"{INPUT}:0", f"{PRECURSORS}:0"]
        self._run = session.make_callable(f"{OUTPUT}:0", names)

    def sites(self, spectra: list[Spectrum]) -> list[np.ndarray]:
        """Intensities in sites of each spectrum's precursor, neither masked nor scaled."""
        out: list[np.ndarray] = [np.empty(0)] * len(spectra)
        order = sorted(range(len(spectra)), key=lambda i: len(spectra[i].peptide))
        for first in range(0, len(order), BATCH):
            part = order[first : first + BATCH]
            own = [spectra[i] for i in part]
            encoded = rows.pad([rows.encode(s.peptide, s.modified) for s in own])
            precursors = np.stack(
                [
                    np.arange(len(own), dtype=np.float32),
                    np.array([s.charge for s in own], dtype=np.float32),
                    energy_input(np.array([s.energy for s in own])),
                ],
                1,
            )
            for i, s, values in zip(part, own, self._run(encoded, precursors), strict=True):
                out[i] = values[: len(s.peptide) - 1]
        return out


def ship(run: Path, held_out: list[Spectrum], models: Path) -> None:
    """Writes the graph of a run and its contract; prints the figures of the shipped file."""
    models.mkdir(parents=True, exist_ok=True)
    graph = models / f"{NAME}.pb"
    write_graph(build_graph(load(run)), graph)
    figures = evaluate(models, held_out)
    write_contract(graph, contract_fields(held_out, figures))


def evaluate(models: Path, held_out: list[Spectrum]) -> np.ndarray:
    """Angles of the shipped file on the spectra; prints their medians by group."""
    values = angles(held_out, Shipped(models).sites(held_out))
    print("| held-out spectra | number | angle |")
    print("| --- | ---: | ---: |")
    for name, (count, value) in medians(held_out, values).items():
        print(f"| {name} | {count} | {value:.3f} |")
    return values


def contract_fields(held_out: list[Spectrum], values: np.ndarray) -> dict[str, Value]:
    """What the contract says beyond its file."""
    modified = np.array([bool(s.names) for s in held_out])
    return {
        "kind": "peptidoform_spectrum",
        "maximumPeptideLength": rows.LONGEST,
        "charges": list(CHARGES),
        "inputOperation": INPUT,
        "inputShape": [-1, rows.LONGEST, rows.WIDTH],
        "precursorOperation": PRECURSORS,
        "precursorShape": [-1, 3],
        "outputOperation": OUTPUT,
        "outputShape": [-1, -1, ladder.COUNT],
        "initOperation": INIT,
        "vocabulary": LETTERS,
        "firstVocabularyColumn": 1,
        "series": [f"{letter}+{charge}{loss}" for letter, charge, loss in ladder.SERIES],
        "defaultEnergy": ENERGY_CENTRE,
        "energyScale": ENERGY_SCALE,
        "modificationsTrained": TRAINED,
        "intensityScale": "any; the host scales what a precursor can have",
        "maximumMz": MZ_LIMIT,
        "trainingData": TRAINING_DATA,
        "madeWith": f"TensorFlow {tf.__version__}",
        "heldOutPeptides": "md5 of the sequence, I as L, modulo 10 is 0",
        "heldOutSpectra": int((~modified).sum()),
        "heldOutMedianSpectralAngle": round(float(np.median(values[~modified])), 4),
        "heldOutModifiedSpectra": int(modified.sum()),
        "heldOutModifiedMedianSpectralAngle": round(float(np.median(values[modified])), 4),
    }
