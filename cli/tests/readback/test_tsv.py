# SPDX-License-Identifier: Apache-2.0
"""The transition list, read by OpenMS, and its columns as DIA-NN's README has them."""

import csv

import pyopenms
import pytest

import expected

OPENMS_TYPES = {"b": pyopenms.Residue.ResidueType.BIon, "y": pyopenms.Residue.ResidueType.YIon}


def written_peaks(entry):
    return [peak for peak in entry["peaks"] if peak["isotope"] == 0 and peak["type"] in ("b", "y")]


def group_id(entry):
    return f"{'DECOY_' if entry['decoy'] else ''}{entry['peptide']}_{entry['charge']}"


def modified_sequence(entry):
    record = expected.UNIMOD_RECORDS.get(entry["cysteine_mass"])
    return expected.tagged(entry, f"(UniMod:{record})" if record else f"[{entry['cysteine_mass']:+.6f}]")


@pytest.fixture
def experiment(library):
    read = pyopenms.TargetedExperiment()
    pyopenms.TransitionTSVFile().convertTSVToTargetedExperiment(library("tsv"), read)
    return read


@pytest.fixture
def rows(library):
    with open(library("tsv"), encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def test_openms_reads_the_value_of_every_transition(experiment, entries):
    transitions = {transition.getNativeID(): transition for transition in experiment.getTransitions()}
    assert len(transitions) == sum(len(written_peaks(entry)) for entry in entries)
    for entry in entries:
        for peak in written_peaks(entry):
            read = transitions[f"{group_id(entry)}_{expected.ion(peak)}"]
            assert read.getPeptideRef() == group_id(entry)
            assert read.getPrecursorMZ() == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
            assert read.getProductMZ() == pytest.approx(peak["mz"], abs=expected.MZ)
            assert read.getLibraryIntensity() == pytest.approx(peak["intensity"], abs=expected.INTENSITY_OF_1)
            assert read.getProductChargeState() == peak["charge"]
            assert read.getMetaValue("annotation") == expected.ion(peak)
            assert (read.getDecoyTransitionType() == read.DECOY) == entry["decoy"]
            (interpretation,) = read.getProduct().getInterpretationList()
            assert interpretation.iontype == OPENMS_TYPES[peak["type"]]
            assert interpretation.ordinal == peak["number"]


def test_openms_reads_every_peptide(experiment, entries):
    peptides = {peptide.id: peptide for peptide in experiment.getPeptides()}
    assert len(peptides) == len(entries)
    for entry in entries:
        peptide = peptides[group_id(entry)]
        assert peptide.sequence == entry["peptide"]
        assert peptide.getChargeState() == entry["charge"]
        assert list(peptide.protein_refs) == entry["proteins"]
        assert [mod.location for mod in peptide.mods] == expected.cysteines(entry)
        for mod in peptide.mods:
            assert mod.mono_mass_delta == pytest.approx(expected.exact_cysteine_mass(entry), abs=1e-6)
        read_genes = peptide.getMetaValue("GeneName") if peptide.metaValueExists("GeneName") else ""
        assert read_genes == ";".join(expected.genes(entry))
        assert peptide.getRetentionTime() == 0.0


def test_openms_reads_every_protein_once(experiment, entries):
    accessions = [protein.id for protein in experiment.getProteins()]
    assert len(accessions) == len(set(accessions))
    assert set(accessions) == {accession for entry in entries for accession in entry["proteins"]}


def test_columns_of_dia_nn_hold_the_values(rows, entries):
    """DIA-NN itself is not run; its README says which columns it reads."""
    wanted = [(entry, peak) for entry in entries for peak in written_peaks(entry)]
    assert len(rows) == len(wanted)
    for row, (entry, peak) in zip(rows, wanted, strict=True):
        assert row["ModifiedPeptideSequence"] == modified_sequence(entry)
        assert row["PeptideSequence"] == entry["peptide"]
        assert int(row["PrecursorCharge"]) == entry["charge"]
        assert float(row["PrecursorMz"]) == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert float(row["ProductMz"]) == pytest.approx(peak["mz"], abs=expected.MZ)
        assert float(row["LibraryIntensity"]) == pytest.approx(peak["intensity"], abs=expected.INTENSITY_OF_1)
        assert row["NormalizedRetentionTime"] == "0"
        assert row["ProteinId"].split(";") == (entry["proteins"] or [""])
        assert row["Genes"].split(";") == (expected.genes(entry) or [""])
        assert row["Decoy"] == ("1" if entry["decoy"] else "0")
        assert int(row["FragmentCharge"]) == peak["charge"]
        assert row["FragmentType"] == peak["type"]
        assert int(row["FragmentSeriesNumber"]) == peak["number"]
        assert row["FragmentLossType"] == (peak["loss"][1:] or "noloss")
