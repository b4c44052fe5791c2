# SPDX-License-Identifier: Apache-2.0
"""The transition list, read by alphabase's library reader, which the tools of the AlphaX family use."""

import warnings

import numpy
import pytest
from alphabase.spectral_library.reader import LibraryReaderBase

import expected

FRAGMENTS = [
    f"{series}{loss}_z{charge}" for series in "by" for loss in ("", "_modloss", "_H2O", "_NH3") for charge in (1, 2)
]
LOSSES = {"": "", "-H3PO4": "_modloss", "-H2O": "_H2O", "-NH3": "_NH3"}

# As alphabase names what stands at a residue or at the N-terminus.
NAMES = {
    1: "Acetyl@Any_N-term",
    4: "Carbamidomethyl@C",
    21: "Phospho@{residue}",
    28: "Gln->pyro-Glu@Q^Any_N-term",
    35: "Oxidation@M",
    39: "Methylthio@C",
    121: "GG@K",
}


def name_of(entry, modification):
    return NAMES[modification["unimod"]].format(residue=entry["peptide"][modification["position"] - 1])


def is_read(entry):
    """The reader leaves out peptides with a modification that has no number or stands at the C-terminus."""
    known = all("unimod" in one and one["position"] <= len(entry["peptide"]) for one in entry["modifications"])
    return known and bool(expected.transitions(entry))


@pytest.fixture
def reader(library):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        reader = LibraryReaderBase(charged_frag_types=FRAGMENTS, precursor_mz_min=0, precursor_mz_max=5000)
        reader.import_file(library("tsv"))
    return reader


@pytest.fixture
def precursors(reader):
    """By peptide, charge and sites of modifications."""
    table = reader.precursor_df
    return {(row.sequence, row.charge, row.mod_sites): row for row in table.itertuples()}


def key_of(entry):
    sites = ";".join(str(one["position"]) for one in entry["modifications"])
    return entry["peptide"], entry["charge"], sites


def test_precursors_have_their_values(precursors, entries):
    wanted = [entry for entry in entries if is_read(entry)]
    assert precursors.keys() == {key_of(entry) for entry in wanted}
    for entry in wanted:
        row = precursors[key_of(entry)]
        assert row.mods == ";".join(name_of(entry, one) for one in entry["modifications"])
        assert row.precursor_mz == pytest.approx(entry["precursor_mz"], abs=2 * expected.MZ)
        assert row.proteins == ";".join(expected.accessions(entry))
        assert row.genes == ";".join(expected.genes(entry))
        assert row.rt == pytest.approx(entry["retention_time"] or 0.0, abs=expected.TIME)


def test_retention_times_are_numbers_on_its_scale(precursors, entries):
    """It brings them to 0 to 1; a library without any, in which all are 0, has none there."""
    for entry in filter(is_read, entries):
        is_known = entry["retention_time"] is not None
        assert numpy.isfinite(precursors[key_of(entry)].rt_norm) == is_known


def test_fragments_have_their_values(reader, precursors, entries):
    for entry in filter(is_read, entries):
        row = precursors[key_of(entry)]
        read = reader.fragment_intensity_df.iloc[row.frag_start_idx : row.frag_stop_idx].reset_index(drop=True)
        wanted = numpy.zeros(read.shape)
        for peak in expected.transitions(entry):
            name = f"{peak['type']}{LOSSES.get(peak['loss'], '?')}_z{peak['charge']}"
            if name in FRAGMENTS:
                bond = peak["number"] if peak["type"] == "b" else len(entry["peptide"]) - peak["number"]
                wanted[bond - 1, FRAGMENTS.index(name)] = peak["intensity"]
        assert read[FRAGMENTS].to_numpy() == pytest.approx(wanted / wanted.max(), abs=2 * expected.INTENSITY_OF_1)


def test_fragment_masses_are_those_of_the_reader(reader, precursors, entries):
    """It computes them itself, from the modifications that it read."""
    for entry in filter(is_read, entries):
        row = precursors[key_of(entry)]
        computed = reader.fragment_mz_df.iloc[row.frag_start_idx : row.frag_stop_idx].reset_index(drop=True)
        for peak in expected.transitions(entry):
            name = f"{peak['type']}{LOSSES.get(peak['loss'], '?')}_z{peak['charge']}"
            if name in FRAGMENTS and "_modloss" not in name:
                bond = peak["number"] if peak["type"] == "b" else len(entry["peptide"]) - peak["number"]
                assert computed[name][bond - 1] == pytest.approx(peak["mz"], abs=1e-4)
