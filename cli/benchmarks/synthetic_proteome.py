# SPDX-License-Identifier: Apache-2.0
"""Writes a FASTA file of random proteins with the size and make-up of a human proteome, the same for the same seed.

    python3 synthetic_proteome.py [proteins, 20000] [seed, 1] > proteome.fasta

Lengths are log-normal with a median of 415 residues. Residues are drawn as often as human proteins have them, and so
are peptides that several proteins share: a fifth of the proteins take stretches from earlier ones, as families and
isoforms do. Every protein begins with methionine; one in five thousand has a selenocysteine, one in two hundred an X.
"""

import math
import random
import sys

# Per cent of the residues of the human proteome (Kozlowski, "Proteome-pI: proteome isoelectric point database",
# Nucleic Acids Res. 45, D1112, 2017).
COMPOSITION = {
    "A": 7.01, "C": 2.30, "D": 4.73, "E": 7.09, "F": 3.65, "G": 6.57, "H": 2.63, "I": 4.33, "K": 5.72, "L": 9.97,
    "M": 2.13, "N": 3.58, "P": 6.31, "Q": 4.76, "R": 5.64, "S": 8.32, "T": 5.35, "V": 5.97, "W": 1.22, "Y": 2.66,
}  # fmt: skip
MEDIAN_LENGTH = 415
LENGTH_SPREAD = 0.75  # standard deviation of the logarithm: nine in ten between 120 and 1430 residues
SHARING = 0.2
LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"


def sequence(generator, earlier):
    length = max(30, min(35000, round(math.exp(generator.gauss(math.log(MEDIAN_LENGTH), LENGTH_SPREAD)))))
    residues = generator.choices(list(COMPOSITION), list(COMPOSITION.values()), k=length)
    residues[0] = "M"
    if earlier and generator.random() < SHARING:
        other = generator.choice(earlier)
        size = generator.randint(10, len(other))
        place = generator.randint(0, len(other) - size)
        residues[1 : 1 + size] = other[place : place + size]
    if generator.random() < 1 / 5000:
        residues[generator.randrange(1, len(residues))] = "U"
    if generator.random() < 1 / 200:
        residues[generator.randrange(1, len(residues))] = "X"
    return "".join(residues)


def header(generator, number):
    gene = "".join(generator.choices(LETTERS, k=generator.randint(3, 5))) + str(generator.randint(1, 20))
    accession = generator.choice("OPQ") + format(number, "05X")
    return (
        f">sp|{accession}|{gene}_HUMAN Synthetic protein {number} OS=Homo sapiens OX=9606 GN={gene} PE=1 SV=1"
    )


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 20000
    generator = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
    earlier = []
    for number in range(1, count + 1):
        residues = sequence(generator, earlier)
        earlier.append(residues)
        print(header(generator, number))
        for begin in range(0, len(residues), 60):
            print(residues[begin : begin + 60])


main()
