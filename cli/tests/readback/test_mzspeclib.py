# SPDX-License-Identifier: Apache-2.0
"""mzSpecLib, read and checked by the reader and the validator of mzspeclib."""

import warnings

import mzspeclib
import mzspeclib.utils
import mzspeclib.validate.validator as validator
import pyteomics.proforma
import pytest
from mzspeclib.validate.level import RequirementLevel

import expected

PROTEIN_TERMS = ["MS:1000885|protein accession", "MS:1000934|gene name", "MS:1000886|protein name"]


@pytest.fixture
def read(library):
    with warnings.catch_warnings():
        warnings.simplefilter("error", mzspeclib.utils.ValidationWarning)
        yield mzspeclib.SpectrumLibrary(filename=library("mzSpecLib.txt"))


def notation(entry):
    return f"{expected.proforma(entry)}/{entry['charge']}"


def protein_groups(analyte):
    """A dictionary of terms for each group of attributes, by the number of the group."""
    groups = {}
    for attribute in analyte.attributes:
        if attribute.group_id is not None:
            groups.setdefault(int(attribute.group_id), {})[attribute.key] = str(attribute.value)
    return [groups[number] for number in sorted(groups)]


def expected_groups(entry):
    """Each protein has its accession, gene and entry name where they are known."""
    return [
        {term: value for term, value in zip(PROTEIN_TERMS, protein, strict=True) if value}
        for protein in entry["proteins"]
    ]


TIME_TERMS = {"irt": "MS:1000896|normalized retention time", "minutes": "MS:1000897|predicted retention time"}


def check_time(entry, spectrum):
    groups = {one.key: one.group_id for one in spectrum.attributes if one.key in TIME_TERMS.values()}
    if entry["retention_time"] is None:
        assert groups == {}
        return
    ((term, group),) = groups.items()
    assert term == TIME_TERMS[entry["time_scale"]]
    values = {one.key: one.value for one in spectrum.attributes if one.group_id == group}
    assert values[term] == pytest.approx(entry["retention_time"], abs=expected.TIME)
    assert values["UO:0000000|unit"] == "UO:0000031|minute"


def test_library_says_what_it_is(read, set_name, entries):
    assert str(read.get_attribute("MS:1003186|library format version")) == "1.0"
    assert read.get_attribute("MS:1003188|library name") == set_name
    assert len(list(read.read())) == len(entries)


def test_every_spectrum_and_analyte(read, entries):
    for number, (entry, spectrum) in enumerate(zip(entries, read.read(), strict=True), start=1):
        origin = (
            "MS:1003195|unnatural peptidoform decoy spectrum" if entry["decoy"] else "MS:1003074|predicted spectrum"
        )
        assert (spectrum.key, spectrum.name) == (number, expected.spectrum_name(entry))
        assert spectrum.precursor_mz == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert spectrum.precursor_charge == entry["charge"]
        assert spectrum.get_attribute("MS:1003072|spectrum origin type") == origin
        assert spectrum.get_attribute("MS:1003059|number of peaks") == len(entry["peaks"])
        check_time(entry, spectrum)
        (analyte,) = spectrum.analytes.values()
        assert analyte.get_attribute("MS:1003270|proforma peptidoform ion notation") == notation(entry)
        assert analyte.get_attribute("MS:1000888|stripped peptide sequence") == entry["peptide"]
        peptide = pyteomics.proforma.ProForma.parse(notation(entry))
        mass = analyte.get_attribute("MS:1001117|theoretical neutral mass")
        # Unimod's masses have six digits.
        assert mass == pytest.approx(peptide.mass, abs=expected.MZ + 1e-6 * len(entry["modifications"]))
        theoretical = analyte.get_attribute("MS:1003053|theoretical monoisotopic m/z")
        assert theoretical == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert protein_groups(analyte) == expected_groups(entry)


def test_every_peak(read, entries):
    for entry, spectrum in zip(entries, read.read(), strict=True):
        assert len(spectrum.peak_list) == len(entry["peaks"])
        for peak, (mz, intensity, annotations, _) in zip(entry["peaks"], spectrum.peak_list, strict=True):
            assert mz == pytest.approx(peak["mz"], abs=expected.MZ)
            assert intensity == pytest.approx(peak["intensity"], abs=expected.INTENSITY_OF_1)
            (annotation,) = annotations
            assert str(annotation) == expected.ion_with_error(peak)
            if peak["type"] is not None:
                assert (annotation.series, annotation.position) == (peak["type"], peak["number"])
                assert (annotation.charge, annotation.isotope or 0) == (peak["charge"], peak["isotope"])


def test_validator_finds_nothing_that_must_or_should_be_otherwise(read):
    chain = validator.load_default_validator() | validator.get_validator_for("peptide")
    chain.validate_library(read)
    assert [error.message for error in chain.error_log if error.requirement_level != RequirementLevel.may] == []
