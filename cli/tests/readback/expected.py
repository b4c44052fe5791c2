# SPDX-License-Identifier: Apache-2.0
"""What the entries of entries.json are in the words of the formats."""

import decimal

# Half of the last digit written, and what is lost on the way there and back; readers hold intensities as 32-bit
# numbers, of which those near 10000 are 0.001 apart.
MZ = 5.01e-6
INTENSITY_OF_10000 = 0.0506
INTENSITY_OF_1 = 5.01e-7

# Relative, of a number that becomes a 32-bit one.
FLOAT32 = 2.0**-24

# Half of the last digit that text gives a retention time.
TIME = 5.01e-4

# Of Unimod, with its digits.
UNIMOD_MASSES = {
    1: 42.010565,
    2: -0.984016,
    4: 57.021464,
    21: 79.966331,
    28: -17.026549,
    35: 15.994915,
    39: 45.987721,
    121: 114.042927,
}
UNIMOD_NAMES = {
    1: "Acetyl",
    2: "Amidated",
    4: "Carbamidomethyl",
    21: "Phospho",
    28: "Gln->pyro-Glu",
    35: "Oxidation",
    39: "Methylthio",
    121: "GG",
}


def exact_mass(modification):
    return UNIMOD_MASSES.get(modification.get("unimod"), modification["mass"])


def residue_of(entry, modification):
    """Position from 0 of the residue that stands for a modification where a format has no termini."""
    return min(max(modification["position"] - 1, 0), len(entry["peptide"]) - 1)


def tagged(entry, tag, first, last):
    """The peptide with `tag(modification)` behind the residues; `first` and `last` part those of the termini off."""
    tags = {modification["position"]: tag(modification) for modification in entry["modifications"]}
    peptide = entry["peptide"]
    residues = "".join(residue + tags.get(i, "") for i, residue in enumerate(peptide, start=1))
    end = last + tags[len(peptide) + 1] if len(peptide) + 1 in tags else ""
    return (tags[0] + first if 0 in tags else "") + residues + end


def residue_masses(entry):
    """The masses of the modified residues by position from 0, those of the N-terminus with the first residue."""
    masses = {}
    for modification in entry["modifications"]:
        place = residue_of(entry, modification)
        masses[place] = masses.get(place, 0.0) + exact_mass(modification)
    return masses


def mass_tagged(entry, digits):
    exact = {i: decimal.Decimal(f"{mass:.6f}") for i, mass in residue_masses(entry).items()}
    last = decimal.Decimal(1).scaleb(-digits)
    written = {i: mass.quantize(last, rounding=decimal.ROUND_HALF_UP) for i, mass in exact.items()}
    return "".join(
        residue + (f"[{written[i]:+}]" if i in written else "") for i, residue in enumerate(entry["peptide"])
    )


def openswath(entry):
    """As OpenMS and DIA-NN read a peptidoform."""
    return tagged(
        entry,
        lambda one: f"(UniMod:{one['unimod']})" if "unimod" in one else f"[{one['mass']:+.6f}]",
        "",
        ".",
    )


def proforma(entry):
    return tagged(
        entry,
        lambda one: f"[UNIMOD:{one['unimod']}]" if "unimod" in one else f"[{one['mass']:+.6f}]",
        "-",
        "-",
    )


def precursor_name(entry):
    peptide = openswath(entry) if entry["variant"] else entry["peptide"]
    return f"{'DECOY_' if entry['decoy'] else ''}{peptide}_{entry['charge']}"


def spectrum_name(entry):
    peptide = proforma(entry) if entry["variant"] else entry["peptide"]
    return f"{'DECOY_' if entry['decoy'] else ''}{peptide}/{entry['charge']}"


def accessions(entry):
    return [accession for accession, _, _ in entry["proteins"]]


def listed(entries):
    """The entries that a transition list holds."""
    return [entry for entry in entries if transitions(entry)]


def transitions(entry):
    """The peaks that a transition list holds."""
    return [peak for peak in entry["peaks"] if peak["isotope"] == 0 and peak["type"] in ("b", "y")]


def genes(entry):
    """Each once, in order."""
    return list(dict.fromkeys(gene for _, gene, _ in entry["proteins"] if gene))


def ion(peak):
    """As mzPAF has it, https://www.psidev.info/mzPAF."""
    if peak["type"] is None:
        return "?"
    isotope = {0: "", 1: "+i"}.get(peak["isotope"], f"+{peak['isotope']}i")
    charge = f"^{peak['charge']}" if peak["charge"] > 1 else ""
    return f"{peak['type']}{peak['number']}{peak['loss']}{isotope}{charge}"


def ion_with_error(peak):
    return "?" if peak["type"] is None else ion(peak) + "/0.0ppm"
