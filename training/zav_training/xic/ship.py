# SPDX-License-Identifier: Apache-2.0
"""Writes the graph files and their contracts."""

from dataclasses import asdict
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.contract import Value, write_contract
from zav_training.graphs import INIT, write_graph
from zav_training.xic import evaluate, evaluate_splits, graph, network, recipe
from zav_training.xic.sets import evaluation_sets
from zav_training.xic.traces import Trace

LIMITS, SPLIT = "xic_limits", "xic_split"
TRAINING_DATA = [
    "skyline_labkey: LabKey/targetedms, Apache-2.0",
    "skyline_maccosslab: LabKey/MacCossLabModules, Apache-2.0",
    "smartpeak_mrm: AutoFlowResearch/SmartPeak, MIT",
    "openms: OpenMS/OpenMS, BSD-3-Clause",
    "massdash: Roestlab/massdash, BSD-3-Clause (backgrounds)",
    "masic: PNNL/MASIC, BSD-2-Clause (backgrounds)",
    "simulation",
]
HELD_OUT = "documents with limits drawn by people, two in twelve of the others, and their molecules"
#: Sets whose figures stand in the contract, and the figures.
LIMITS_FIGURES = {
    "heldOutManualWindow": "skyline_manual_window",
    "heldOutManualWhole": "smartpeak_manual_whole",
    "heldOutSoftwareVisible": "software_visible",
    "heldOutSoftware": "software_all",
}
KEPT = {"labels": "Labels", "f1": "F1", "f1_all": "F1All", "overlap": "MedianOverlap"}


def ship_limits(
    weights: dict[str, np.ndarray],
    folder: Path,
    traces: dict[str, list[Trace]],
    made: dict[str, Value],
) -> None:
    """Writes the limits network; `traces` by role are for the figures, `made` says how."""
    path = folder / f"{LIMITS}.pb"
    write_graph(graph.limits_graph(weights, recipe.LIMITS_RULE), path)
    picker = evaluate.network_picker(path, recipe.LIMITS_OPTIONS)
    sets = evaluation_sets(traces)
    fields = _common(LIMITS, -1.0) | made | dict(asdict(recipe.LIMITS_OPTIONS))
    for prefix, name in LIMITS_FIGURES.items():
        result = evaluate.figures(sets[name], picker)
        fields |= {f"{prefix}{KEPT[k]}": _rounded(result[k]) for k in KEPT}
    write_contract(path, fields)


def ship_split(
    weights: dict[str, np.ndarray],
    folder: Path,
    traces: dict[str, list[Trace]],
    made: dict[str, Value],
) -> None:
    """Writes the splitter; `traces` by role are for the figures, `made` says how."""
    path = folder / f"{SPLIT}.pb"
    write_graph(graph.split_graph(weights, recipe.SPLIT_RULE), path)
    splitter = evaluate_splits.network_splitter(path, recipe.SPLIT_OPTIONS)
    fields = _common(SPLIT, 0.0) | made | dict(asdict(recipe.SPLIT_OPTIONS))
    for prefix, cases in split_sets(traces).items():
        result = evaluate_splits.score(cases, splitter)
        keys = (
            ("cases", "split_share")
            if prefix.endswith("Whole")
            else ("cases", "precision", "recall")
        )
        fields |= {prefix + _camel(k): _rounded(result[k]) for k in keys}
    write_contract(path, fields)


def split_sets(traces: dict[str, list[Trace]]) -> dict[str, list[evaluate_splits.SplitCase]]:
    """Cases of the splitter's figures: simulated, real neighbours, real single peaks."""
    held_out = traces["test"] + traces["validation"]
    scales = {
        f"simulated{low:g}To{high:g}": evaluate_splits.scaled_clusters(
            evaluate_splits.SCALE_SEED, (low, high)
        )
        for low, high in evaluate_splits.SCALES
    }
    return {
        "simulated": [c for s in evaluate_splits.SEEDS for c in evaluate_splits.clusters(s)],
        "heldOutNeighbours": evaluate_splits.real_neighbours(held_out),
        "heldOutWhole": evaluate_splits.whole_peaks(held_out),
        **scales,
        "simulatedCalm": evaluate_splits.calm_clusters(
            evaluate_splits.CALM_SEED, evaluate_splits.CALM_POINTS
        ),
    }


def _common(kind: str, padding: float) -> dict[str, Value]:
    return {
        "kind": kind,
        "inputOperation": graph.INPUT,
        "inputShape": [-1, network.STRIDE, 1, 1],
        "outputOperation": graph.OUTPUT,
        "outputShape": [1, -1],
        "initOperation": INIT,
        "pointCountMultiple": network.STRIDE,
        "intensityScale": "largest smoothed point 1",
        "padding": padding,
        "trainingData": TRAINING_DATA,
        "madeWith": f"TensorFlow {tf.__version__}",
        "heldOutTraces": HELD_OUT,
    }


def _rounded(value: float) -> float | int:
    return value if isinstance(value, int) else round(float(value), 4)


def _camel(key: str) -> str:
    return "".join(part.capitalize() for part in key.split("_"))
