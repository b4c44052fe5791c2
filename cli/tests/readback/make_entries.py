# SPDX-License-Identifier: Apache-2.0
"""make_entries.py: prints entries.json, the library entries that the tests write and read back.

The masses are those of pyteomics, the intensities drawn with a fixed seed.
"""

import json
import random

from pyteomics import mass

WATER = mass.calculate_mass(formula="H2O")
AMMONIA = mass.calculate_mass(formula="NH3")
ISOTOPE_STEP = 1.0033548  # 13C - 12C, Da
LOSSES = {"": 0.0, "-H2O": WATER, "-NH3": AMMONIA}


def ion_mz(peptide, cysteine_mass, ion_type, number, charge, loss, isotope):
    part = peptide[-number:] if ion_type == "y" else peptide[:number]
    shift = part.count("C") * cysteine_mass - LOSSES[loss] + isotope * ISOTOPE_STEP
    return mass.fast_mass(part, ion_type=ion_type, charge=charge) + shift / charge


def all_ions(length, largest_charge):
    for ion_type in "yba":
        for number in range(1, length):
            for charge in range(1, largest_charge + 1):
                for loss in LOSSES:
                    for isotope in range(3):
                        yield ion_type, number, charge, loss, isotope


def distinct(peaks):
    """The peaks by m/z, of those that some reader would take for one only the first."""
    chosen = []
    for peak in sorted(peaks, key=lambda peak: peak["mz"]):
        if not chosen or peak["mz"] - chosen[-1]["mz"] > 1e-3:
            chosen.append(peak)
    return chosen


def make_peaks(rng, peptide, cysteine_mass, count):
    """Peaks whose names are different ions; the highest is 1."""
    ions = list(all_ions(len(peptide), 2))
    peaks = []
    for ion_type, number, charge, loss, isotope in rng.sample(ions, min(len(ions), 3 * count)):
        mz = ion_mz(peptide, cysteine_mass, ion_type, number, charge, loss, isotope)
        if mz < 80:
            continue
        peaks.append(
            {
                "mz": round(mz, 7),
                "intensity": round(rng.random() ** 2 + 1e-3, 7),
                "type": ion_type,
                "number": number,
                "charge": charge,
                "loss": loss,
                "isotope": isotope,
            }
        )
    peaks = distinct(peaks)
    peaks = sorted(rng.sample(peaks, min(count, len(peaks))), key=lambda peak: peak["mz"])
    rng.choice(peaks)["intensity"] = 1.0
    return peaks


def entry(rng, peptide, charge, cysteine_mass, proteins, peak_count, decoy=False):
    """`proteins`: (accession, gene, entry name) each."""
    mz = mass.fast_mass(peptide, charge=charge) + peptide.count("C") * cysteine_mass / charge
    return {
        "peptide": peptide,
        "charge": charge,
        "precursor_mz": round(mz, 7),
        "cysteine_mass": cysteine_mass,
        "proteins": [accession for accession, _, _ in proteins],
        "genes": [gene for _, gene, _ in proteins],
        "protein_names": [name for _, _, name in proteins],
        "decoy": decoy,
        "peaks": make_peaks(rng, peptide, cysteine_mass, peak_count),
    }


def one_peak(rng, peptide, charge, cysteine_mass, proteins):
    single = entry(rng, peptide, charge, cysteine_mass, proteins, 1)
    mz = ion_mz(peptide, cysteine_mass, "y", 3, 1, "", 0)
    single["peaks"] = [
        {"mz": round(mz, 7), "intensity": 1.0, "type": "y", "number": 3, "charge": 1, "loss": "", "isotope": 0}
    ]
    return single


def with_unknown_peak(changed):
    changed["peaks"].append(
        {"mz": 3999.5, "intensity": 0.25, "type": None, "number": 0, "charge": 0, "loss": "", "isotope": 0}
    )
    return changed


ALBUMIN = ("P02768", "ALB", "ALBU_HUMAN")
UNNAMED = ("contig_17.orf3", "", "")
SEVERAL = [ALBUMIN, ("Q9Y6K9-2", "IKBKG", "NEMO_HUMAN"), ("A0A024R161", "", "A0A024R161_HUMAN"), ("H0YJW9", "ALB", "")]


def common_set(rng, cysteine_mass):
    return [
        entry(rng, "ACDEFGHK", 2, cysteine_mass, [ALBUMIN], 40),
        entry(rng, "ACDEFGHK", 3, cysteine_mass, [ALBUMIN], 12),
        entry(rng, "CCTESLVCNRRPK", 2, cysteine_mass, SEVERAL, 35),
        entry(rng, "LVNELTEFAK", 2, cysteine_mass, [UNNAMED], 40),
        one_peak(rng, "YLYEIAR", 2, cysteine_mass, [UNNAMED, ALBUMIN]),
    ]


def main():
    rng = random.Random(20)
    decoys = [("DECOY_" + ALBUMIN[0], ALBUMIN[1], ALBUMIN[2]), ("DECOY_H0YJW9", "", "")]
    sets = {"carbamidomethyl": common_set(rng, 57.02146)}
    sets["carbamidomethyl"] += [
        entry(rng, "HGFEDCAK", 2, 57.02146, decoys, 30, decoy=True),
        entry(rng, "LQSRPAAPPAPGPGQLTLR", 3, 57.02146, [], 60),
        with_unknown_peak(entry(rng, "MCPEPTIDELLVNQWSTYHGFCRKMAAWLK", 4, 57.02146, [ALBUMIN], 299)),
    ]
    sets["unmodified"] = common_set(rng, 0.0)
    sets["methylthio"] = common_set(rng, 45.98772)
    sets["unusual"] = common_set(rng, 12.345678)
    sets["last_cysteine"] = [entry(rng, "LVNRRPC", 2, 57.02146, [ALBUMIN], 10)]
    print("{")
    for i, (name, entries) in enumerate(sets.items()):
        print(f' "{name}": [')
        print(",\n".join("  " + json.dumps(one) for one in entries))
        print(" ]" + ("," if i + 1 < len(sets) else ""))
    print("}")


main()
