# SPDX-License-Identifier: Apache-2.0
"""make_entries.py: prints entries.json, the library entries that the tests write and read back.

The masses are those of pyteomics, the intensities drawn with a fixed seed.
"""

import json
import random

from pyteomics import mass

ISOTOPE_STEP = 1.0033548  # 13C - 12C, Da
LOSSES = {"": {}, "-H2O": {"H": 2, "O": 1}, "-NH3": {"N": 1, "H": 3}}

# What they add, by Unimod's accession.
COMPOSITIONS = {
    1: {"H": 2, "C": 2, "O": 1},  # acetyl
    2: {"H": 1, "N": 1, "O": -1},  # amidated
    4: {"H": 3, "C": 2, "N": 1, "O": 1},  # carbamidomethyl
    21: {"H": 1, "O": 3, "P": 1},  # phospho
    28: {"H": -3, "N": -1},  # pyro-glu from Q
    35: {"O": 1},  # oxidation
    39: {"H": 2, "C": 1, "S": 1},  # methylthio
    121: {"H": 6, "C": 4, "N": 2, "O": 2},  # glycyl-glycine
}

# What fragments lose that hold so many residues with the modification.
MODIFICATION_LOSSES = {
    "-H3PO4": (21, 1, {"H": 3, "P": 1, "O": 4}),
    "-2H3PO4": (21, 2, {"H": 6, "P": 2, "O": 8}),
    "-CH4OS": (35, 1, {"C": 1, "H": 4, "O": 1, "S": 1}),
}


def mass_of(composition):
    return mass.calculate_mass(composition=mass.Composition(composition))


def known(position, unimod):
    """At a position as a peptidoform counts them: 0 is the N-terminus, the first residue 1."""
    return {"position": position, "unimod": unimod, "mass": mass_of(COMPOSITIONS[unimod])}


def by_mass(position, shift):
    return {"position": position, "mass": shift}


def cysteines(peptide, modification):
    """`modification`: an accession of Unimod, a mass, or None."""
    positions = [i + 1 for i, residue in enumerate(peptide) if residue == "C"] if modification else []
    make = known if isinstance(modification, int) else by_mass
    return [make(position, modification) for position in positions]


def shift_of(modifications):
    return sum(one["mass"] for one in modifications)


def within(modifications, peptide, ion_type, number):
    """The modifications that a fragment holds."""
    length = len(peptide)
    if ion_type == "y":
        return [one for one in modifications if one["position"] > length - number]
    return [one for one in modifications if one["position"] <= number]


def losses_of(held):
    losses = dict(LOSSES)
    for name, (unimod, count, composition) in MODIFICATION_LOSSES.items():
        if sum(one.get("unimod") == unimod for one in held) >= count:
            losses[name] = composition
    return losses


def all_ions(peptide, modifications, largest_charge):
    """Type, number, charge, loss, isotope and m/z."""
    for ion_type in "yba":
        for number in range(1, len(peptide)):
            held = within(modifications, peptide, ion_type, number)
            part = peptide[-number:] if ion_type == "y" else peptide[:number]
            for charge in range(1, largest_charge + 1):
                plain = mass.fast_mass(part, ion_type=ion_type, charge=charge) + shift_of(held) / charge
                for loss, composition in losses_of(held).items():
                    for isotope in range(3):
                        shift = isotope * ISOTOPE_STEP - mass_of(composition)
                        yield ion_type, number, charge, loss, isotope, plain + shift / charge


def distinct(peaks):
    """The peaks by m/z, of those that some reader would take for one only the first."""
    chosen = []
    for peak in sorted(peaks, key=lambda peak: peak["mz"]):
        if not chosen or peak["mz"] - chosen[-1]["mz"] > 1e-3:
            chosen.append(peak)
    return chosen


def peak(ion, intensity):
    ion_type, number, charge, loss, isotope, mz = ion
    return {
        "mz": round(mz, 7),
        "intensity": intensity,
        "type": ion_type,
        "number": number,
        "charge": charge,
        "loss": loss,
        "isotope": isotope,
    }


def make_peaks(rng, peptide, modifications, count):
    """Peaks whose names are different ions; the highest is 1. A loss of each modification is among them."""
    ions = [ion for ion in all_ions(peptide, modifications, 2) if ion[-1] >= 80]
    rng.shuffle(ions)
    ions.sort(key=lambda ion: ion[3] in MODIFICATION_LOSSES and ion[4] == 0, reverse=True)
    peaks = distinct([peak(ion, round(rng.random() ** 2 + 1e-3, 7)) for ion in ions[: 3 * count]])
    peaks = sorted(rng.sample(peaks, min(count, len(peaks))), key=lambda one: one["mz"])
    rng.choice(peaks)["intensity"] = 1.0
    return peaks


def entry(rng, peptide, charge, modifications, proteins, peak_count, decoy=False):
    """`proteins`: (accession, gene, entry name) each."""
    mz = mass.fast_mass(peptide, charge=charge) + shift_of(modifications) / charge
    return {
        "peptide": peptide,
        "modifications": sorted(modifications, key=lambda one: one["position"]),
        "variant": False,
        "charge": charge,
        "precursor_mz": round(mz, 7),
        "retention_time": None,
        "time_scale": "irt",
        "proteins": proteins,
        "decoy": decoy,
        "peaks": make_peaks(rng, peptide, modifications, peak_count),
    }


def one_peak(rng, peptide, charge, modifications, proteins):
    single = entry(rng, peptide, charge, modifications, proteins, 1)
    (ion,) = [ion for ion in all_ions(peptide, modifications, 1) if ion[:5] == ("y", 3, 1, "", 0)]
    single["peaks"] = [peak(ion, 1.0)]
    return single


def with_unknown_peak(changed):
    changed["peaks"].append(
        {"mz": 3999.5, "intensity": 0.25, "type": None, "number": 0, "charge": 0, "loss": "", "isotope": 0}
    )
    return changed


ALBUMIN = ("P02768", "ALB", "ALBU_HUMAN")
UNNAMED = ("contig_17.orf3", "", "")
SEVERAL = [ALBUMIN, ("Q9Y6K9-2", "IKBKG", "NEMO_HUMAN"), ("A0A024R161", "", "A0A024R161_HUMAN"), ("H0YJW9", "ALB", "")]


# Amidated; and one that every reader can read.
LAST_RESIDUES = [("LVNELTEFAK", [known(11, 2)]), ("YLYEIAR", [])]


def common_set(rng, cysteine):
    def made(make, peptide, charge, *rest):
        return make(rng, peptide, charge, cysteines(peptide, cysteine), *rest)

    return [
        made(entry, "ACDEFGHK", 2, [ALBUMIN], 40),
        made(entry, "ACDEFGHK", 3, [ALBUMIN], 12),
        made(entry, "CCTESLVCNRRPK", 2, SEVERAL, 35),
        made(entry, "LVNELTEFAK", 2, [UNNAMED], 40),
        made(one_peak, "YLYEIAR", 2, [UNNAMED, ALBUMIN]),
    ]


def variants(rng, time_scale, first_time):
    """Peptidoforms, of which several are of one peptide, with retention times."""
    made = [
        entry(rng, "ACDMFGMHK", 2, [known(2, 4)], [ALBUMIN], 30),
        entry(rng, "ACDMFGMHK", 2, [known(2, 4), known(4, 35)], [ALBUMIN], 30),
        entry(rng, "ACDMFGMHK", 2, [known(2, 4), known(7, 35)], [ALBUMIN], 30),
        entry(rng, "ACDMFGMHK", 3, [known(0, 1), known(2, 4), known(4, 35), known(7, 35)], [ALBUMIN], 30),
        entry(rng, "LVNESPTYAK", 2, [known(5, 21)], [UNNAMED], 40),
        entry(rng, "LVNESPTYAK", 2, [known(5, 21), known(7, 21)], [UNNAMED], 60),
        entry(rng, "QLSRPAAPPK", 2, [known(0, 28)], [ALBUMIN], 20),
        entry(rng, "LIFAGKQLEDGR", 2, [known(6, 121)], [ALBUMIN], 25),
    ]
    for i, one in enumerate(made):
        one.update(variant=True, time_scale=time_scale, retention_time=round(first_time + 17.12345 * i, 5))
    return made


def main():
    rng = random.Random(20)
    decoys = [("DECOY_" + ALBUMIN[0], ALBUMIN[1], ALBUMIN[2]), ("DECOY_H0YJW9", "", "")]
    sets = {"carbamidomethyl": common_set(rng, 4)}
    sets["carbamidomethyl"] += [
        entry(rng, "HGFEDCAK", 2, cysteines("HGFEDCAK", 4), decoys, 30, decoy=True),
        entry(rng, "LQSRPAAPPAPGPGQLTLR", 3, [], [], 60),
        with_unknown_peak(
            entry(
                rng,
                "MCPEPTIDELLVNQWSTYHGFCRKMAAWLK",
                4,
                cysteines("MCPEPTIDELLVNQWSTYHGFCRKMAAWLK", 4),
                [ALBUMIN],
                299,
            )
        ),
    ]
    sets["unmodified"] = common_set(rng, None)
    sets["methylthio"] = common_set(rng, 39)
    sets["unusual"] = common_set(rng, 12.345678)
    sets["last_cysteine"] = [entry(rng, "LVNRRPC", 2, [known(7, 4)], [ALBUMIN], 10)]
    sets["variants"] = variants(rng, "irt", -24.5)
    sets["calibrated"] = variants(rng, "minutes", 3.25)
    # Termini, which some formats cannot tell from the residues there.
    sets["first_residue"] = [entry(rng, "MEEPQSDPSVEPK", 2, [known(0, 1), known(1, 35)], [ALBUMIN], 20)]
    sets["last_residue"] = [entry(rng, peptide, 2, change, [ALBUMIN], 15) for peptide, change in LAST_RESIDUES]
    print("{")
    for i, (name, entries) in enumerate(sets.items()):
        print(f' "{name}": [')
        print(",\n".join("  " + json.dumps(one) for one in entries))
        print(" ]" + ("," if i + 1 < len(sets) else ""))
    print("}")


main()
