# SPDX-License-Identifier: Apache-2.0
"""Writes fragment_masses.tsv, the m/z of fragment ions by another program:

    pip install pyteomics==4.7.5
    python make_fragment_masses.py > fragment_masses.tsv
"""

from importlib.metadata import version

from pyteomics import mass

CARBAMIDOMETHYL = 57.02146
PEPTIDES = ("ACDEFGHIKLMNPQRSTVWY", "LQSRPAAPPAPGPGQLTLR", "CCK", "G")
SERIES = (("y", ""), ("b", ""), ("a", ""), ("y", "-H2O"), ("y", "-NH3"), ("b", "-H2O"), ("b", "-NH3"))


def fragment_mz(residues: str, ion: str, loss: str, charge: int) -> float:
    """m/z of a fragment whose cysteines are carbamidomethylated."""
    unmodified = mass.fast_mass(residues, ion_type=ion + loss, charge=charge)
    return unmodified + residues.count("C") * CARBAMIDOMETHYL / charge


def main() -> None:
    print(f"# pyteomics {version('pyteomics')}, written by make_fragment_masses.py; cysteine +{CARBAMIDOMETHYL}")
    print("peptide\tion\tloss\tnumber\tcharge\tmz")
    for peptide in PEPTIDES:
        for ion, loss in SERIES:
            for charge in (1,) if loss or ion == "a" else (1, 2, 3):
                for number in range(1, len(peptide) + 1):
                    residues = peptide[-number:] if ion == "y" else peptide[:number]
                    mz = fragment_mz(residues, ion, loss, charge)
                    print(peptide, ion, loss, number, charge, f"{mz:.6f}", sep="\t")


main()
