# SPDX-License-Identifier: Apache-2.0
"""Writes cleavage.tsv: the peptides of random proteins, cut by pyteomics 4.7.5 (Levitsky et al., J. Proteome Res. 18,
709, 2019), whose `psims_rules` are the regular expressions of the PSI-MS ontology.

    python cleavage.py > cleavage.tsv
"""

import random

from pyteomics import parser

# Its name here, and its rule there; the ontology's Lys-N, "no cleavage" and "unspecific cleavage" are not among them.
ENZYMES = {
    "Trypsin": parser.psims_rules["Trypsin"],
    "Trypsin/P": parser.psims_rules["Trypsin/P"],
    "Lys-C": parser.psims_rules["Lys-C"],
    "Lys-C/P": parser.psims_rules["Lys-C/P"],
    "Lys-N": "(?=K)",
    "Arg-C": parser.psims_rules["Arg-C"],
    "Glu-C": parser.psims_rules["glutamyl endopeptidase"],
    "V8-E": parser.psims_rules["V8-E"],
    "V8-DE": parser.psims_rules["V8-DE"],
    "Asp-N": parser.psims_rules["Asp-N"],
    "Asp-N_ambic": parser.psims_rules["Asp-N ambic"],
    "Chymotrypsin": parser.psims_rules["Chymotrypsin"],
    "PepsinA": parser.psims_rules["PepsinA"],
    "none": "(?!)",
    "unspecific": "(?=.)",
}
STANDARD = "ACDEFGHIKLMNPQRSTVWY"
# Where enzymes cut and do not, more often than in nature.
RESIDUES = STANDARD + "KKRRPPEEDDFLWYM" + "BZX"


def protein(generator, length):
    return "".join(generator.choice(RESIDUES) for _ in range(length))


def peptides(sequence, rule, missed, shortest, longest, semi):
    # Its own limit of the length drops the semi-specific parts of long peptides, so the limits are set here.
    found = parser.cleave(sequence, rule, missed_cleavages=missed, semi=semi, regex=True)
    return sorted(p for p in found if shortest <= len(p) <= longest and set(p) <= set(STANDARD))


def main():
    generator = random.Random(20261121)
    print("enzyme", "missed", "shortest", "longest", "semi", "protein", "peptides", sep="\t")
    for enzyme, rule in ENZYMES.items():
        cases = [(60, 0, 1, 1000, 0), (60, 1, 1, 1000, 0), (90, 2, 5, 20, 0), (40, 1, 6, 12, 1), (30, 0, 1, 30, 1)]
        if enzyme == "none":
            cases = [(40, 1, 1, 1000, 0), (25, 0, 5, 10, 1)]
        if enzyme == "unspecific":
            cases = [(30, 1000, 1, 1000, 0), (40, 1000, 7, 9, 0)]
        for length, missed, shortest, longest, semi in cases:
            sequence = protein(generator, length)
            if enzyme == "none":
                sequence = "".join(c for c in sequence if c in STANDARD)
            found = peptides(sequence, rule, missed, shortest, longest, semi)
            print(enzyme, missed, shortest, longest, semi, sequence, ",".join(found), sep="\t")


main()
