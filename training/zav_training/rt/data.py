# SPDX-License-Identifier: Apache-2.0
"""Observed retention times by source, on scales that one network can learn together."""

import csv
import gzip
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from zav_training import modifications, rows
from zav_training.msms.spectra import is_held_out
from zav_training.msms.vocabulary import COLUMN

#: Sources in the order of the network's heads. The first is on the iRT scale of Escher et al.
#: (Proteomics 12, 1111, 2012) and ships as iRT.
HEADS = (
    "swath_human",
    "proteometools",
    "proteometools_ptm",
    "crotonylome",
    "hela_phospho",
    "rpe1_dda",
    "rpe1_dia",
    "u2os_dia",
    "dilution_dia",
)
#: Two files of one project, on one scale.
SAME_HEAD = {"proteometools_irt": "proteometools", "proteometools_small": "proteometools"}
#: Width of the middle 80 % of a normal distribution in standard deviations.
NORMAL_WIDTH = 2.563


@dataclass
class Observation:
    """A peptidoform's retention time in one source.

    source  name in the file;  head  index into HEADS;  time  in the unit of the source
    """

    source: str
    head: int
    peptide: str
    modified: list[tuple[int, str]]
    time: float

    @property
    def held_out(self) -> bool:
        """Whether its peptide belongs to the tenth that is only evaluated on."""
        return is_held_out(self.peptide)


@dataclass
class Scale:
    """A source's scale: the median of its times, and about their standard deviation."""

    centre: float
    width: float


def read_all(path: Path) -> list[Observation]:
    """Every row of the gzipped table that the network can read."""
    with gzip.open(path, "rt", newline="") as file:
        found = [_observation(row) for row in csv.DictReader(file, delimiter="\t")]
    return [one for one in found if _is_usable(one)]


def _observation(row: dict[str, str]) -> Observation:
    source = row["source"]
    head = HEADS.index(SAME_HEAD.get(source, source))
    modified = modifications.parse(row["modifications"])
    return Observation(source, head, row["peptide"], modified, float(row["rt"]))


def _is_usable(one: Observation) -> bool:
    return 1 < len(one.peptide) <= rows.LONGEST and all(c in COLUMN for c in one.peptide)


def scales(observations: list[Observation]) -> list[Scale]:
    """The scale of each head; of one without observations, the first one's."""
    times: list[list[float]] = [[] for _ in HEADS]
    for one in observations:
        times[one.head].append(one.time)
    found = []
    for own in times:
        low, middle, high = np.quantile(own or times[0], [0.1, 0.5, 0.9])
        found.append(Scale(float(middle), float(high - low) / NORMAL_WIDTH))
    return found


def weights(observations: list[Observation]) -> np.ndarray:
    """Weight of each observation in the loss: small sources count for more than their size."""
    names = [one.source for one in observations]
    counts = dict(zip(*np.unique(names, return_counts=True), strict=True))
    largest = max(counts.values())
    own = {name: min((largest / count) ** 0.5, 3.0) for name, count in counts.items()}
    return np.array([own[name] for name in names], dtype=np.float32)
