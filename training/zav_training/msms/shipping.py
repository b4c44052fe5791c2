# SPDX-License-Identifier: Apache-2.0
"""From a trained network to the files that ship: graphs, figures, contracts."""

from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.contract import Value, write_contract
from zav_training.graphs import INIT, write_graph
from zav_training.msms import ladder, vocabulary
from zav_training.msms.evaluation import Figures, evaluate
from zav_training.msms.export import INPUT, OUTPUT, build_graph
from zav_training.msms.folded import fold
from zav_training.msms.network import Network
from zav_training.msms.shipped import graph_path
from zav_training.msms.sources import SOURCES, shipped_sources
from zav_training.msms.spectra import Spectrum

#: Where the training spectra come from, and under which licence.
TRAINING_DATA = [
    "library_human: weizhenFrank/DeepPhospho, MIT",
    "annotated_velos: pFindStudio/pDeep and pDeep3, BSD-3-Clause and Apache-2.0",
    "annotated_by_search: smith-chem-wisc/mzLib, MetaMorpheus and FlashLFQ, LGPL and MIT",
    "annotated_a_b_y: bigbio/quantms.io, compomics/ms2rescore and others",
    "library_qtof: jspaezp/ms2ml, Apache-2.0",
    "peaks_synthetic: lkytal/PepNet, LGPL",
    "peaks_searched: GLEAMS, MetaMorpheus, tools-galaxyp",
    "peaks_hela: jspaezp/ms2ml, Apache-2.0",
    "peaks_msp: HUPO-PSI/mzSpecLib",
    "peaks_sample: Noble-Lab/casanovo",
]


def ship(network: Network, held_out: list[Spectrum], models: Path) -> Figures:
    """Writes the five graphs and their contracts; returns the figures on the held-out spectra."""
    models.mkdir(parents=True, exist_ok=True)
    for charge in vocabulary.CHARGES:
        write_graph(build_graph(fold(network, charge), charge), graph_path(models, charge))
    figures = evaluate(models, held_out)
    for charge in vocabulary.CHARGES:
        write_contract(graph_path(models, charge), contract_fields(charge, figures))
    return figures


def contract_fields(charge: int, figures: Figures) -> dict[str, Value]:
    """What the contract of a charge says beyond its file."""
    columns = ladder.columns_of_charge(charge)
    longest = vocabulary.MAX_LENGTH[charge]
    return {
        "kind": "msms_fragmentation",
        "charge": charge,
        "maximumPeptideLength": longest,
        "inputOperation": INPUT,
        "inputShape": [-1, longest, vocabulary.WIDTH],
        "outputOperation": OUTPUT,
        "outputShape": [-1, ladder.ladder_length(charge)],
        "initOperation": INIT,
        "vocabulary": vocabulary.LETTERS,
        "firstVocabularyColumn": 1,
        "cysteineMassShift": vocabulary.CARBAMIDOMETHYL,
        "series": [ladder.SERIES[c].name for c in columns],
        "seriesSlots": [ladder.slots_of_series(c, charge) for c in columns],
        "intensityScale": "base peak 1",
        "placeholderIntensity": 0.0,
        "maximumMz": ladder.MZ_LIMIT,
        "trainingData": TRAINING_DATA,
        "imitatedSources": [SOURCES[i].name for i in np.flatnonzero(shipped_sources()[charge])],
        "madeWith": f"TensorFlow {tf.__version__}",
    } | _figure_fields(charge, figures)


def _figure_fields(charge: int, figures: Figures) -> dict[str, Value]:
    fields: dict[str, Value] = {"heldOutPeptides": "md5 of the sequence, I as L, modulo 10 is 0"}
    groups = {
        "heldOut": f"charge {charge}",
        "heldOutOrbitrap": f"orbitrap charge {charge}",
        "heldOutLibrary": f"library charge {charge}",
    }
    for prefix, name in groups.items():
        if name in figures:
            count, one = figures[name]
            fields |= {
                f"{prefix}Spectra": count,
                f"{prefix}MedianSpectralAngle": round(one.angle, 4),
                f"{prefix}MedianPearson": round(one.pearson, 4),
            }
            if prefix != "heldOutLibrary":  # libraries leave out small peaks
                fields[f"{prefix}MissedPeaks"] = round(one.missed, 4)
                fields[f"{prefix}FalsePeaks"] = round(one.false, 4)
    return fields
