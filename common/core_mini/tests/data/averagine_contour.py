# SPDX-License-Identifier: Apache-2.0
"""Prints averagine-contour.tsv. Needs mpmath and IsoSpecPy (for its element table)."""
import IsoSpecPy.PeriodicTbl as table
import mpmath as mp

# Atoms of one averagine unit (Senko 1995) and AME2020 masses of the lightest isotopes.
AVERAGINE = {
    "C": ("4.9384", "12"),
    "H": ("7.7583", "1.007825031898"),
    "N": ("1.3577", "14.003074004251"),
    "O": ("1.4773", "15.994914619257"),
    "S": ("0.0417", "31.9720711735"),
}

# Neutral mass in Da, nodes on the circle, decimal digits, peaks.
ENVELOPES = [
    ("57.0214637", 128, 40, range(5)),
    ("200", 128, 40, range(6)),
    ("1000", 128, 40, range(10)),
    ("2000", 128, 40, range(12)),
    ("5000", 256, 40, range(20)),
    ("20000", 256, 40, range(45)),
    ("100000", 512, 60, (0, 1, 10, 40, 55, 70, 90)),
    ("1000000", 2048, 300, (0, 1, 100, 400, 550, 600, 700)),
]


def element(symbol):
    """(mass units above the lightest isotope, abundance relative to it) of each isotope."""
    masses, shares = table.symbol_to_masses[symbol], table.symbol_to_probs[symbol]
    return [(round(mass - masses[0]), mp.mpf(share) / mp.mpf(shares[0])) for mass, share in zip(masses, shares)]


def envelope(mass, nodes, peaks):
    """Coefficients of prod_e A_e(x)^n_e by Cauchy's integral over the unit circle."""
    unit = sum(mp.mpf(atoms) * mp.mpf(atom_mass) for atoms, atom_mass in AVERAGINE.values())
    elements = [(mp.mpf(atoms), element(symbol)) for symbol, (atoms, _) in AVERAGINE.items()]
    values = []
    for node in range(nodes):
        x = mp.expjpi(mp.mpf(2 * node) / nodes)
        logarithm = sum(atoms * mp.log(sum(a * x**k for k, a in isotopes)) for atoms, isotopes in elements)
        values.append(mp.exp(mp.mpf(mass) / unit * logarithm))
    for peak in peaks:
        terms = (value * mp.expjpi(-mp.mpf(2 * node * peak) / nodes) for node, value in enumerate(values))
        yield peak, mp.re(mp.fsum(terms)) / nodes


print("# Averagine with fractional atom counts: abundances relative to the monoisotopic peak (peak 0).")
print("# Cauchy's integral over the unit circle, printed by averagine_contour.py with mpmath", mp.__version__)
print("neutral_mass_da\tpeak\tabundance")
for neutral_mass, node_count, digits, wanted in ENVELOPES:
    mp.mp.dps = digits
    for index, abundance in envelope(neutral_mass, node_count, wanted):
        print(neutral_mass, index, mp.nstr(abundance, 12), sep="\t")
