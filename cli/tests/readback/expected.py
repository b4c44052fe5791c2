# SPDX-License-Identifier: Apache-2.0
"""What the entries of entries.json are in the words of the formats."""

# Half of the last digit written, and what is lost on the way there and back; readers hold intensities as 32-bit
# numbers, of which those near 10000 are 0.001 apart.
MZ = 5.01e-6
INTENSITY_OF_10000 = 0.0506
INTENSITY_OF_1 = 5.01e-7

# Relative, of a number that becomes a 32-bit one.
FLOAT32 = 2.0**-24

UNIMOD_RECORDS = {57.02146: 4, 45.98772: 39}
UNIMOD_NAMES = {57.02146: "Carbamidomethyl", 45.98772: "Methylthio"}
UNIMOD_MASSES = {57.02146: 57.021464, 45.98772: 45.987721}


def cysteines(entry):
    """Positions from 0 of the modified ones."""
    if entry["cysteine_mass"] == 0:
        return []
    return [i for i, residue in enumerate(entry["peptide"]) if residue == "C"]


def exact_cysteine_mass(entry):
    return UNIMOD_MASSES.get(entry["cysteine_mass"], entry["cysteine_mass"])


def tagged(entry, tag):
    return entry["peptide"].replace("C", "C" + tag) if cysteines(entry) else entry["peptide"]


def genes(entry):
    """Each once, in order."""
    return list(dict.fromkeys(gene for gene in entry["genes"] if gene))


def ion(peak):
    """As mzPAF has it, https://www.psidev.info/mzPAF."""
    if peak["type"] is None:
        return "?"
    isotope = {0: "", 1: "+i"}.get(peak["isotope"], f"+{peak['isotope']}i")
    charge = f"^{peak['charge']}" if peak["charge"] > 1 else ""
    return f"{peak['type']}{peak['number']}{peak['loss']}{isotope}{charge}"


def ion_with_error(peak):
    return "?" if peak["type"] is None else ion(peak) + "/0.0ppm"
