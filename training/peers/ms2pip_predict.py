#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Predicts fragments with MS2PIP, for comparison.

Reads a TSV with the columns peptide and charge from standard input and writes peptide, charge and
fragments, intensities as fractions of the total, to standard output. Needs the package ms2pip 4.1.2
in an environment of its own; its model HCDch2, which knows b and y ions of 1+ and 2+, is compiled
into it. A C is given as carbamidomethylated.
"""

import csv
import sys

from ms2pip.core import predict_batch
from psm_utils import PSM, PSMList

#: MS2PIP predicts log2 of the intensity plus this.
OFFSET = 0.001
LENGTHS = range(2, 101)
NAMES = {"b": ("b", 1), "y": ("y", 1), "b2": ("b", 2), "y2": ("y", 2)}


def proforma(peptide: str, charge: int) -> str:
    """The precursor as MS2PIP reads it."""
    return f"{peptide.replace('C', 'C[Carbamidomethyl]')}/{charge}"


def fragments(predicted: dict) -> str:
    """Fragments as annotated spectra write them; MS2PIP counts ions from their terminus."""
    parts = []
    for key, values in predicted.items():
        letter, charge = NAMES[key.lower()]
        for number, value in enumerate(values, 1):
            intensity = 2.0 ** float(value) - OFFSET
            if intensity > 0.0:
                parts.append(f"{letter}{number}+{charge}:{intensity:.6f}")
    return " ".join(parts)


def main() -> None:
    """Predicts all precursors in one batch."""
    rows = csv.DictReader(sys.stdin, delimiter="\t")
    precursors = list(dict.fromkeys((row["peptide"], int(row["charge"])) for row in rows))
    precursors = [p for p in precursors if len(p[0]) in LENGTHS]
    psms = PSMList(
        psm_list=[
            PSM(peptidoform=proforma(*precursor), spectrum_id=str(i))
            for i, precursor in enumerate(precursors)
        ]
    )
    print("peptide", "charge", "fragments", sep="\t")
    for result in predict_batch(psms, model="HCDch2", processes=1):
        peptide, charge = precursors[int(result.psm.spectrum_id)]
        print(peptide, charge, fragments(result.predicted_intensity), sep="\t")


if __name__ == "__main__":
    main()
