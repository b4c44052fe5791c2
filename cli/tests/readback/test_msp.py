# SPDX-License-Identifier: Apache-2.0
"""MSP, read by OpenMS and matchms."""

import matchms.importing
import pyopenms
import pytest

import expected


def openms_library(path):
    identifications = pyopenms.PeptideIdentificationList()
    spectra = pyopenms.MSExperiment()
    pyopenms.MSPFile().load(path, identifications, spectra)
    return list(identifications), list(spectra)


def openms_reads(entries):
    """OpenMS knows modifications by their names only, and looks for that of a last residue on the C-terminus."""
    return all(
        not expected.cysteines(entry)
        or (entry["cysteine_mass"] in expected.UNIMOD_NAMES and entry["peptide"][-1] != "C")
        for entry in entries
    )


def openms_sequence(entry):
    name = expected.UNIMOD_NAMES.get(entry["cysteine_mass"], "")
    sequence = expected.tagged(entry, f"({name})")
    # The modification of a first residue is taken for that of the N-terminus.
    first = f"C({name})"
    return f".({name})C" + sequence[len(first) :] if sequence.startswith(first) else sequence


def test_openms_reads_every_value(library, entries):
    if not openms_reads(entries):
        with pytest.raises(RuntimeError, match="odification"):
            openms_library(library("msp"))
        return
    identifications, spectra = openms_library(library("msp"))
    assert len(spectra) == len(identifications) == len(entries)
    for entry, identification, spectrum in zip(entries, identifications, spectra, strict=True):
        (hit,) = identification.getHits()
        assert hit.getSequence().toString() == openms_sequence(entry)
        assert hit.getCharge() == entry["charge"]
        (precursor,) = spectrum.getPrecursors()
        # OpenMS computes it from MW, whose digits count once for each charge.
        assert precursor.getMZ() == pytest.approx(entry["precursor_mz"], abs=2 * expected.MZ)
        assert spectrum.size() == len(entry["peaks"])
        for peak, read in zip(entry["peaks"], spectrum, strict=True):
            # OpenMS reads an MSP file's m/z as 32-bit numbers.
            assert read.getMZ() == pytest.approx(peak["mz"], abs=expected.MZ + expected.FLOAT32 * peak["mz"])
            assert read.getIntensity() == pytest.approx(10000 * peak["intensity"], abs=expected.INTENSITY_OF_10000)


def comment_fields(comment):
    return dict(field.split("=", 1) for field in comment.split(" "))


def expected_comment(entry):
    positions = expected.cysteines(entry)
    name = expected.UNIMOD_NAMES.get(entry["cysteine_mass"], f"{entry['cysteine_mass']:+.5f}")
    fields = {
        "Parent": f"{entry['precursor_mz']:.5f}",
        "Mods": "/".join([str(len(positions))] + [f"{i},C,{name}" for i in positions]),
    }
    if entry["proteins"]:
        fields["Protein"] = ";".join(entry["proteins"])
    if expected.genes(entry):
        fields["Gene"] = ";".join(expected.genes(entry))
    if entry["decoy"]:
        fields["Remark"] = "DECOY"
    return fields


def test_matchms_reads_every_value(library, entries):
    spectra = list(matchms.importing.load_from_msp(library("msp")))
    assert len(spectra) == len(entries)
    for entry, spectrum in zip(entries, spectra, strict=True):
        assert spectrum.get("compound_name") == f"{entry['peptide']}/{entry['charge']}"
        assert int(spectrum.get("charge")) == entry["charge"]
        assert float(spectrum.get("precursor_mz")) == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert comment_fields(spectrum.get("comment")) == expected_comment(entry)
        assert int(spectrum.get("num_peaks")) == len(entry["peaks"]) == len(spectrum.peaks)
        comments = {round(mz, 5): comment for mz, comment in spectrum.get("peak_comments").items()}
        for peak, mz, intensity in zip(entry["peaks"], spectrum.peaks.mz, spectrum.peaks.intensities, strict=True):
            assert mz == pytest.approx(peak["mz"], abs=expected.MZ)
            assert intensity == pytest.approx(10000 * peak["intensity"], abs=expected.INTENSITY_OF_10000)
            assert comments[round(mz, 5)] == expected.ion_with_error(peak)
