# SPDX-License-Identifier: Apache-2.0
"""Figures of the shipped networks on the peptides that training never saw."""

from pathlib import Path

from zav_training.msms.metrics import Score, score, summarise
from zav_training.msms.shipped import Shipped
from zav_training.msms.spectra import Spectrum

Figures = dict[str, tuple[int, Score]]


def evaluate(models: Path, spectra: list[Spectrum]) -> Figures:
    """Number of spectra and figures by group of the graph files in a folder."""
    predictions = Shipped(models).sites([(s.peptide, s.charge) for s in spectra])
    scores = [score(s, p) for s, p in zip(spectra, predictions, strict=True)]
    return summarise(spectra, scores)


def to_markdown(figures: Figures) -> str:
    """The figures as a table."""
    lines = [
        "| held-out spectra | number | angle | correlation | missed | false |",
        "| --- | ---: | ---: | ---: | ---: | ---: |",
    ]
    for name, (count, s) in figures.items():
        cells = [name, str(count), f"{s.angle:.3f}", f"{s.pearson:.3f}"]
        cells += [f"{s.missed:.2f}", f"{s.false:.2f}"]
        lines.append(f"| {' | '.join(cells)} |")
    return "\n".join(lines)
