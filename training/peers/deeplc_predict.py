#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Predicts retention times with DeepLC, for comparison.

Reads a peptide a line from standard input and writes peptide and time, as a TSV, to standard
output. Needs the package deeplc 4.5.0 in an environment of its own; its default model is in it. A C
is given as carbamidomethylated.
"""

import sys

import torch
from deeplc import predict


def main() -> None:
    """Predicts all peptides in one call, with one thread."""
    torch.set_num_threads(1)
    peptides = list(dict.fromkeys(line.strip() for line in sys.stdin if line.strip()))
    times = predict([f"{peptide.replace('C', 'C[Carbamidomethyl]')}/2" for peptide in peptides])
    print("peptide", "time", sep="\t")
    for peptide, time in zip(peptides, times, strict=True):
        print(peptide, f"{time:.4f}", sep="\t")


if __name__ == "__main__":
    main()
