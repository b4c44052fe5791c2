# SPDX-License-Identifier: Apache-2.0
"""From a trained network to the files that ship: graph, figures, contract."""

from dataclasses import asdict
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training import rows
from zav_training.contract import Value, write_contract
from zav_training.convolution import INPUT
from zav_training.graphs import INIT, Runner, write_graph
from zav_training.msms.vocabulary import LETTERS
from zav_training.rt.data import HEADS, Observation
from zav_training.rt.directions import find_directions
from zav_training.rt.evaluation import Figures, compare
from zav_training.rt.export import OUTPUT, build_graph
from zav_training.rt.training import load

NAME = "retention_time"
#: Where the training data come from, and under which licence.
TRAINING_DATA = [
    "proteometools_irt: wilhelm-lab/dlomix, MIT (PXD004732)",
    "proteometools_small: ProteomicsML, CC BY 4.0",
    "swath_human: compomics/DeepLC, Apache-2.0, and horsepurve/DeepRTplus, MIT "
    "(Rosenberger et al., Sci. Data 1:140031, 2014)",
    "proteometools_ptm, crotonylome: compomics/DeepLC, Apache-2.0",
    "hela_phospho: horsepurve/DeepRTplus, MIT",
    "rpe1_dda, rpe1_dia, u2os_dia, dilution_dia: weizhenFrank/DeepPhospho, MIT",
]
#: What the training peptides carry often enough to be learnt, as name@site.
TRAINED = [
    "Carbamidomethyl@C", "Oxidation@M", "Acetyl@N-term", "Phospho@S", "Phospho@T", "Phospho@Y",
    "Crotonyl@K", "GG@K", "Oxidation@P", "Oxidation@K", "Methyl@K", "Methyl@R", "Formyl@K",
    "Butyryl@K", "Dimethyl@K", "Dimethyl@R", "Succinyl@K", "Propionyl@K", "Trimethyl@K",
    "Malonyl@K", "Biotin@K", "Acetyl@K", "Deamidated@R", "Nitro@Y",
]  # fmt: skip


class Shipped:
    """The graph file of a folder."""

    def __init__(self, models: Path) -> None:
        self._run = Runner(models / f"{NAME}.pb", INPUT, OUTPUT)

    def outputs(self, peptidoforms: list[tuple[str, list[tuple[int, str]]]]) -> np.ndarray:
        """All outputs, the heads first, float32 [peptidoforms, outputs]."""
        order = np.argsort([len(peptide) for peptide, _ in peptidoforms], kind="stable")
        blocks = []
        for first in range(0, len(order), 256):
            encoded = [rows.encode(*peptidoforms[i]) for i in order[first : first + 256]]
            blocks.append(self._run(rows.pad(encoded)))
        return np.concatenate(blocks)[np.argsort(order)]


def ship(run: Path, observations: list[Observation], models: Path) -> None:
    """Writes the graph of a run and its contract, with figures on the held-out observations."""
    network, about = load(run)
    learnt = [one for one in observations if not one.held_out]
    first = about["scales"][0]
    models.mkdir(parents=True, exist_ok=True)
    graph = models / f"{NAME}.pb"
    further = find_directions(network, learnt)
    write_graph(build_graph(network, further, first["centre"], first["width"]), graph)
    own = [one for one in observations if one.held_out and one.head == 0]
    predicted = Shipped(models).outputs([(one.peptide, one.modified) for one in own])[:, 0]
    figures = compare(np.array([one.time for one in own]), predicted)
    write_contract(graph, contract_fields(about, further.offset.size, figures))
    print({name: round(value, 3) for name, value in asdict(figures).items()})


def contract_fields(about: dict, directions: int, figures: Figures) -> dict[str, Value]:
    """What the contract says beyond its file."""
    return {
        "kind": "retention_time",
        "maximumPeptideLength": rows.LONGEST,
        "inputOperation": INPUT,
        "inputShape": [-1, rows.LONGEST, rows.WIDTH],
        "outputOperation": OUTPUT,
        "outputShape": [-1, len(HEADS) + directions],
        "initOperation": INIT,
        "vocabulary": LETTERS,
        "firstVocabularyColumn": 1,
        "heads": list(HEADS),
        "directions": directions,
        "modificationsTrained": TRAINED,
        "trainingData": TRAINING_DATA,
        "trainingSeed": about["seed"],
        "trainingSteps": about["steps"],
        "madeWith": f"TensorFlow {tf.__version__}",
        "heldOutPeptides": "md5 of the sequence, I as L, modulo 10 is 0",
        "heldOutObservations": figures.count,
        "heldOutMedianError": round(figures.median, 4),
        "heldOutMedianErrorPercent": round(figures.percent, 4),
        "heldOutWidthPercent": round(figures.width, 4),
        "heldOutPearson": round(figures.pearson, 4),
    }
