# SPDX-License-Identifier: Apache-2.0
"""Tiny data in the format of the real files, and a small untrained network."""

import gzip
from pathlib import Path

import numpy as np
import pytest

from zav_training.msms import ladder, shipped, sources, vocabulary
from zav_training.msms.network import Network, Shape

SMALL = Shape(width=16, head=32, condition=4)
HEADER = "peptide\tcharge\tcollision_energy\tsource\t"


def random_peptide(random: np.random.Generator, low: int, high: int) -> str:
    letters = random.choice(list(vocabulary.LETTERS), size=random.integers(low, high + 1))
    return "".join(letters)


def simulated_sites(peptide: str, charge: int) -> np.ndarray:
    """Intensities that follow a simple rule, so that there is something to learn."""
    mz = ladder.site_mz(peptide)
    rule = np.exp(-(((mz - 500.0) / 300.0) ** 2)) * ladder.site_exists(len(peptide), charge)
    rule[:, 1] *= 0.3
    return np.where(rule > 0.02, rule, 0.0)


def write_tsv(path: Path, header: str, rows: list[str]) -> None:
    with gzip.open(path, "wt") as file:
        file.write("\n".join([header, *rows]) + "\n")


@pytest.fixture(scope="session")
def data(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """A folder with every data file, a few rows each, charges 1 to 5."""
    folder = tmp_path_factory.mktemp("data")
    random = np.random.default_rng(7)
    labels = {"library_human": "x/RPE1_DIA", "annotated_by_search": "m/timsTOF_snippet"}
    for file in sources.FILES:
        raw = file.startswith("peaks") or file == "library_qtof"
        rows = []
        for index in range(60):
            charge = index % 5 + 1
            peptide = random_peptide(random, 7, 14)
            sites = simulated_sites(peptide, charge)
            if raw:
                seen = sites > 0
                pairs = zip(ladder.site_mz(peptide)[seen], sites[seen], strict=True)
                text = "500.0\t" + " ".join(f"{mz:.5f}:{height:.5f}" for mz, height in pairs)
            else:
                text = shipped.to_text(sites)
            rows.append(f"{peptide}\t{charge}\tNA\t{labels.get(file, 'any')}\t{text}")
        write_tsv(
            folder / f"{file}.tsv.gz",
            HEADER + ("precursor_mz\tpeaks" if raw else "fragments"),
            rows,
        )
    return folder


@pytest.fixture(scope="session")
def network() -> Network:
    """Untrained, but with every weight away from its start of 0, so that each one counts."""
    made = Network(SMALL, seed=3)
    random = np.random.default_rng(5)
    for variable in made.weights.values():
        variable.assign_add(random.normal(0.0, 0.05, variable.shape).astype(np.float32))
    return made
