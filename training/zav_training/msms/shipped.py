# SPDX-License-Identifier: Apache-2.0
"""Predictions of the shipped graph files."""

from collections.abc import Iterable, Sequence
from pathlib import Path

import numpy as np

from zav_training.graphs import Runner
from zav_training.msms import ladder, vocabulary
from zav_training.msms.export import INPUT, OUTPUT
from zav_training.msms.metrics import LIMIT

BATCH = 128


def graph_path(models: Path, charge: int) -> Path:
    """Where the network of a charge lies."""
    return models / f"msms_charge{charge}.pb"


class Shipped:
    """The five networks of a folder; each is loaded when first asked for."""

    def __init__(self, models: Path) -> None:
        self._models = models
        self._runners: dict[int, Runner] = {}

    def _runner(self, charge: int) -> Runner:
        if charge not in self._runners:
            self._runners[charge] = Runner(graph_path(self._models, charge), INPUT, OUTPUT)
        return self._runners[charge]

    def slots(self, peptides: list[str], charge: int) -> np.ndarray:
        """Flat ladders, float32 [peptides, slots]."""
        return self._runner(charge)(vocabulary.one_hot(peptides, charge))

    def sites(self, precursors: Sequence[tuple[str, int]]) -> list[np.ndarray]:
        """Intensities in sites of each (peptide, charge), in their order."""
        out: list[np.ndarray] = [np.empty(0)] * len(precursors)
        order = sorted(
            range(len(precursors)), key=lambda i: (precursors[i][1], len(precursors[i][0]))
        )
        for part in _runs(order, [charge for _, charge in precursors]):
            charge = precursors[part[0]][1]
            ladders = self.slots([precursors[i][0] for i in part], charge)
            for i, slots in zip(part, ladders, strict=True):
                out[i] = ladder.slots_to_sites(slots, len(precursors[i][0]), charge)
        return out


def _runs(order: list[int], charges: list[int]) -> Iterable[list[int]]:
    """Cuts a list of indices, sorted by charge, into batches of one charge."""
    part: list[int] = []
    for index in order:
        if part and (len(part) == BATCH or charges[part[0]] != charges[index]):
            yield part
            part = []
        part.append(index)
    if part:
        yield part


def to_text(sites: np.ndarray, limit: float = LIMIT) -> str:
    """Fragments at or above the limit as annotated spectra write them, b3+1:0.40000 ..."""
    length = len(sites) + 1
    parts = []
    for column, series in enumerate(ladder.SERIES):
        for row in np.flatnonzero(sites[:, column] >= limit):
            number = length - 1 - row if series.from_c_terminus else row + 1
            name = f"{series.letter}{number}+{series.charge}{series.loss}"
            parts.append(f"{name}:{sites[row, column]:.5f}")
    return " ".join(parts)
