# SPDX-License-Identifier: Apache-2.0
"""The transition list as text and as PQP, read by OpenMS, and the columns that DIA-NN's README names."""

import csv

import pyopenms
import pytest

import expected

OPENMS_TYPES = {"b": pyopenms.Residue.ResidueType.BIon, "y": pyopenms.Residue.ResidueType.YIon}


def read_tsv(path):
    experiment = pyopenms.TargetedExperiment()
    pyopenms.TransitionTSVFile().convertTSVToTargetedExperiment(path, experiment)
    return experiment


def read_pqp(path):
    experiment = pyopenms.TargetedExperiment()
    pyopenms.TransitionPQPFile().convertPQPToTargetedExperiment(path, experiment, True)
    return experiment


@pytest.fixture(params=[("tsv", read_tsv), ("pqp", read_pqp)], ids=["tsv", "pqp"])
def experiment(library, request):
    ending, read = request.param
    return read(library(ending))


@pytest.fixture
def rows(library):
    with open(library("tsv"), encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, delimiter="\t"))


def test_openms_reads_the_value_of_every_transition(experiment, entries):
    transitions = {transition.getNativeID(): transition for transition in experiment.getTransitions()}
    assert len(transitions) == sum(len(expected.transitions(entry)) for entry in entries)
    for entry in entries:
        for peak in expected.transitions(entry):
            read = transitions[f"{expected.precursor_name(entry)}_{expected.ion(peak)}"]
            assert read.getPeptideRef() == expected.precursor_name(entry)
            assert read.getPrecursorMZ() == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
            assert read.getProductMZ() == pytest.approx(peak["mz"], abs=expected.MZ)
            assert read.getLibraryIntensity() == pytest.approx(peak["intensity"], abs=expected.INTENSITY_OF_1)
            assert read.getProductChargeState() == peak["charge"]
            assert read.getMetaValue("annotation") == expected.ion(peak)
            assert (read.getDecoyTransitionType() == read.DECOY) == entry["decoy"]
            (interpretation,) = read.getProduct().getInterpretationList()
            assert interpretation.iontype == OPENMS_TYPES[peak["type"]]
            assert interpretation.ordinal == peak["number"]


def openms_location(entry, modification):
    """OpenMS counts residues from 0; the N-terminus is -1."""
    return modification["position"] - 1


def test_openms_reads_every_peptide(experiment, entries):
    peptides = {peptide.id: peptide for peptide in experiment.getPeptides()}
    assert len(peptides) == len(expected.listed(entries))
    for entry in expected.listed(entries):
        peptide = peptides[expected.precursor_name(entry)]
        assert peptide.sequence == entry["peptide"]
        assert peptide.getChargeState() == entry["charge"]
        assert sorted(peptide.protein_refs) == sorted(expected.accessions(entry))
        read = {mod.location: mod.mono_mass_delta for mod in peptide.mods}
        assert read == {
            openms_location(entry, one): pytest.approx(expected.exact_mass(one), abs=1e-6)
            for one in entry["modifications"]
        }
        check_genes(entry, peptide)
        assert peptide.getRetentionTime() == pytest.approx(entry["retention_time"] or 0.0, abs=expected.TIME)


def check_genes(entry, peptide):
    read = peptide.getMetaValue("GeneName") if peptide.metaValueExists("GeneName") else ""
    assert sorted(read.split(";")) == sorted(expected.genes(entry) or [""])


def test_openms_reads_every_protein_once(experiment, entries):
    accessions = [protein.id for protein in experiment.getProteins()]
    assert len(accessions) == len(set(accessions))
    assert set(accessions) == {
        accession for entry in expected.listed(entries) for accession in expected.accessions(entry)
    }


def check_time(entry, written):
    if entry["retention_time"] is None:
        assert written == "0"
    else:
        assert float(written) == pytest.approx(entry["retention_time"], abs=expected.TIME)


def test_columns_of_dia_nn_hold_the_values(rows, entries):
    """DIA-NN itself is not run; its README says which columns it reads."""
    wanted = [(entry, peak) for entry in entries for peak in expected.transitions(entry)]
    assert len(rows) == len(wanted)
    for row, (entry, peak) in zip(rows, wanted, strict=True):
        assert row["ModifiedPeptideSequence"] == expected.openswath(entry)
        assert row["PeptideSequence"] == entry["peptide"]
        assert int(row["PrecursorCharge"]) == entry["charge"]
        assert float(row["PrecursorMz"]) == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert float(row["ProductMz"]) == pytest.approx(peak["mz"], abs=expected.MZ)
        assert float(row["LibraryIntensity"]) == pytest.approx(peak["intensity"], abs=expected.INTENSITY_OF_1)
        check_time(entry, row["NormalizedRetentionTime"])
        assert row["ProteinId"].split(";") == (expected.accessions(entry) or [""])
        assert row["Genes"].split(";") == (expected.genes(entry) or [""])
        assert row["Decoy"] == ("1" if entry["decoy"] else "0")
        assert int(row["FragmentCharge"]) == peak["charge"]
        assert row["FragmentType"] == peak["type"]
        assert int(row["FragmentSeriesNumber"]) == peak["number"]
        assert row["FragmentLossType"] == (peak["loss"][1:] or "noloss")
