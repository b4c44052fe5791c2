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
    """OpenMS knows modifications by their names only, and looks for that of a last residue on the C-terminus and for
    that of a first one on the N-terminus."""
    return all(
        "unimod" in one and one["position"] != len(entry["peptide"]) and (one["position"], one["unimod"]) != (1, 35)
        for entry in entries
        for one in entry["modifications"]
    )


def openms_sequence(entry):
    # The modifications of the first and the last residue are taken for those of the termini.
    names = {
        expected.residue_of(entry, one): f"({expected.UNIMOD_NAMES[one['unimod']]})" for one in entry["modifications"]
    }
    first = "." + names.pop(0) if 0 in names else ""
    last = "." + names.pop(len(entry["peptide"]) - 1) if len(entry["peptide"]) - 1 in names else ""
    return first + "".join(residue + names.get(i, "") for i, residue in enumerate(entry["peptide"])) + last


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


def written_name(modification):
    return expected.UNIMOD_NAMES.get(modification.get("unimod"), f"{modification['mass']:+.5f}")


def expected_comment(entry):
    modifications = []
    for one in entry["modifications"]:
        place = expected.residue_of(entry, one)
        modifications.append(f"{place},{entry['peptide'][place]},{written_name(one)}")
    fields = {
        "Parent": f"{entry['precursor_mz']:.5f}",
        "Mods": "/".join([str(len(modifications)), *modifications]),
    }
    if entry["proteins"]:
        fields["Protein"] = ";".join(expected.accessions(entry))
    if expected.genes(entry):
        fields["Gene"] = ";".join(expected.genes(entry))
    if entry["decoy"]:
        fields["Remark"] = "DECOY"
    return fields


def check_time(entry, fields):
    """Takes the retention time out of the comment's fields: an iRT, or seconds."""
    if entry["retention_time"] is None:
        return
    if entry["time_scale"] == "irt":
        assert float(fields.pop("iRT")) == pytest.approx(entry["retention_time"], abs=expected.TIME)
    else:
        assert float(fields.pop("RetentionTime")) == pytest.approx(60 * entry["retention_time"], abs=expected.TIME)


def test_matchms_reads_every_value(library, entries):
    spectra = list(matchms.importing.load_from_msp(library("msp")))
    assert len(spectra) == len(entries)
    for entry, spectrum in zip(entries, spectra, strict=True):
        assert spectrum.get("compound_name") == f"{entry['peptide']}/{entry['charge']}"
        assert int(spectrum.get("charge")) == entry["charge"]
        assert float(spectrum.get("precursor_mz")) == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        fields = comment_fields(spectrum.get("comment"))
        check_time(entry, fields)
        assert fields == expected_comment(entry)
        assert int(spectrum.get("num_peaks")) == len(entry["peaks"]) == len(spectrum.peaks)
        comments = {round(mz, 5): comment for mz, comment in spectrum.get("peak_comments").items()}
        for peak, mz, intensity in zip(entry["peaks"], spectrum.peaks.mz, spectrum.peaks.intensities, strict=True):
            assert mz == pytest.approx(peak["mz"], abs=expected.MZ)
            assert intensity == pytest.approx(10000 * peak["intensity"], abs=expected.INTENSITY_OF_10000)
            assert comments[round(mz, 5)] == expected.ion_with_error(peak)
