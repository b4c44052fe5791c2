# SPDX-License-Identifier: Apache-2.0
"""Libraries of the program that ZAV_PROGRAM names: proteins are digested by pyteomics, masses computed by it, and what
the readers of the formats find has to agree with these, with single predictions, and from format to format."""

import dataclasses
import json
import os
import pathlib
import re
import sqlite3
import struct
import subprocess
import warnings
import zlib

import matchms.importing
import mzspeclib
import pyopenms
import pyteomics.fasta
import pyteomics.mass
import pyteomics.mgf
import pyteomics.parser
import pytest

import expected

FASTA = pathlib.Path(__file__).parent / "proteins.fasta"
PROTEINS = {"P11111": "FRST", "Q22222": "", "contig_17.orf3": ""}
CARBAMIDOMETHYL = 57.021464  # Da, what the program adds unless told otherwise
ENDINGS = ["mzSpecLib.txt", "msp", "tsv", "mgf", "dlib", "blib", "pqp"]
CHARGES = (2, 3)

# The network gives nothing weaker, relative to its base peak.
WEAKEST = 0.04

# Predictions made together and one by one sum in another order.
SAME_PREDICTION = 5e-5

LOSSES = {"": 0.0, "-H2O": pyteomics.mass.calculate_mass("H2O"), "-NH3": pyteomics.mass.calculate_mass("NH3")}


@dataclasses.dataclass
class Entry:
    precursor_mz: float
    peaks: list  # (m/z, intensity relative to 1, ion or None)
    proteins: list = None
    decoy: bool = None


def program(*arguments):
    return subprocess.run([os.environ["ZAV_PROGRAM"], *map(str, arguments)], check=True, capture_output=True).stdout


@pytest.fixture(scope="session")
def folder(tmp_path_factory):
    made = tmp_path_factory.mktemp("program")
    for ending in ENDINGS:
        program("library", FASTA, "-o", made / f"lib.{ending}", "--decoys", "reversed", "--missed-cleavages", 1)
    return made


@pytest.fixture(scope="session")
def main(folder):
    """The library as mzSpecLib, whose entries have the most in them."""
    return read_mzspeclib(folder / "lib.mzSpecLib.txt")


def read_mzspeclib(path):
    entries = {}
    for spectrum in mzspeclib.SpectrumLibrary(filename=str(path)).read():
        (analyte,) = spectrum.analytes.values()
        proteins = analyte.get_attribute("MS:1000885|protein accession")
        peptide = analyte.get_attribute("MS:1000888|stripped peptide sequence")
        entries[peptide, spectrum.precursor_charge] = Entry(
            precursor_mz=spectrum.precursor_mz,
            peaks=[(mz, intensity, str(ions[0]).split("/")[0]) for mz, intensity, ions, _ in spectrum.peak_list],
            proteins=[proteins] if isinstance(proteins, str) else proteins,
            decoy="decoy" in spectrum.get_attribute("MS:1003072|spectrum origin type"),
        )
    return entries


def read_msp_by_openms(path):
    identifications, spectra = pyopenms.PeptideIdentificationList(), pyopenms.MSExperiment()
    pyopenms.MSPFile().load(str(path), identifications, spectra)
    entries = {}
    for identification, spectrum in zip(identifications, spectra, strict=True):
        hit = identification.getHits()[0]
        peaks = [(peak.getMZ(), peak.getIntensity() / 10000, None) for peak in spectrum]
        entries[hit.getSequence().toUnmodifiedString(), hit.getCharge()] = Entry(
            spectrum.getPrecursors()[0].getMZ(), peaks
        )
    return entries


def read_msp_by_matchms(path):
    entries = {}
    for spectrum in matchms.importing.load_from_msp(str(path)):
        peptide, charge = spectrum.get("compound_name").split("/")
        fields = dict(field.split("=", 1) for field in spectrum.get("comment").split(" "))
        masses = list(spectrum.peaks.mz)
        # Of peaks at one m/z it keeps one annotation.
        ions = {
            mz: comment.split("/")[0] if masses.count(mz) == 1 else None
            for mz, comment in spectrum.get("peak_comments").items()
        }
        entries[peptide, int(charge)] = Entry(
            spectrum.get("precursor_mz"),
            [
                (mz, intensity / 10000, ions[mz])
                for mz, intensity in zip(masses, spectrum.peaks.intensities, strict=True)
            ],
            fields["Protein"].split(";"),
            fields.get("Remark") == "DECOY",
        )
    return entries


def read_tsv(path):
    experiment = pyopenms.TargetedExperiment()
    pyopenms.TransitionTSVFile().convertTSVToTargetedExperiment(str(path), experiment)
    return entries_of(experiment)


def read_pqp(path):
    experiment = pyopenms.TargetedExperiment()
    pyopenms.TransitionPQPFile().convertPQPToTargetedExperiment(str(path).encode(), experiment, True)
    return entries_of(experiment)


def entries_of(experiment):
    entries = {}
    keys = {}
    for peptide in experiment.getPeptides():
        keys[peptide.id] = (peptide.sequence, peptide.getChargeState())
        entries[keys[peptide.id]] = Entry(0.0, [], list(peptide.protein_refs))
    for transition in experiment.getTransitions():
        entry = entries[keys[transition.getPeptideRef()]]
        entry.precursor_mz = transition.getPrecursorMZ()
        entry.decoy = transition.getDecoyTransitionType() == transition.DECOY
        ion = transition.getMetaValue("annotation")
        entry.peaks.append((transition.getProductMZ(), transition.getLibraryIntensity(), ion))
    return entries


def read_mgf(path):
    entries = {}
    with pyteomics.mgf.read(str(path), use_index=False) as reader:
        for spectrum in reader:
            title = spectrum["params"]["title"]
            peptide, charge = title.removeprefix("DECOY_").split("/")
            peaks = [
                (mz, i / 10000, None) for mz, i in zip(spectrum["m/z array"], spectrum["intensity array"], strict=True)
            ]
            decoy = title.startswith("DECOY_")
            entries[peptide, int(charge)] = Entry(spectrum["params"]["pepmass"][0], peaks, decoy=decoy)
    return entries


def unpacked(blob, count, letter, order):
    size = count * struct.calcsize(letter)
    return struct.unpack(f"{order}{count}{letter}", blob if len(blob) == size else zlib.decompress(blob))


def read_dlib(path):
    connection = sqlite3.connect(path)
    entries = {}
    for mz, charge, peptide, size, masses, intensities in connection.execute(
        "SELECT PrecursorMz, PrecursorCharge, PeptideSeq, MassEncodedLength, MassArray, IntensityArray FROM entries"
    ):
        links = connection.execute(
            "SELECT ProteinAccession, isDecoy FROM peptidetoprotein WHERE PeptideSeq = ?", [peptide]
        )
        proteins, decoys = zip(*links, strict=True)
        values = zip(unpacked(masses, size // 8, "d", ">"), unpacked(intensities, size // 8, "f", ">"), strict=True)
        peaks = [(mass, intensity / 10000, None) for mass, intensity in values]
        entries[peptide, charge] = Entry(mz, peaks, list(proteins), any(decoys))
    return entries


def read_blib(path):
    connection = sqlite3.connect(path)
    entries = {}
    for number, mz, charge, peptide, count, masses, intensities in connection.execute(
        "SELECT id, precursorMZ, precursorCharge, peptideSeq, numPeaks, peakMZ, peakIntensity FROM RefSpectra "
        "JOIN RefSpectraPeaks ON RefSpectraID = id"
    ):
        links = connection.execute(
            "SELECT accession FROM RefSpectraProteins JOIN Proteins ON id = ProteinId WHERE RefSpectraId = ?", [number]
        )
        values = zip(unpacked(masses, count, "d", "<"), unpacked(intensities, count, "f", "<"), strict=True)
        peaks = [(mass, intensity / 10000, None) for mass, intensity in values]
        entries[peptide, charge] = Entry(mz, peaks, [row[0] for row in links])
    return entries


READERS = [
    ("msp", read_msp_by_openms),
    ("msp", read_msp_by_matchms),
    ("mgf", read_mgf),
    ("dlib", read_dlib),
    ("blib", read_blib),
]


def digest():
    """The peptides with their proteins, by pyteomics."""
    found = {}
    for header, sequence in pyteomics.fasta.read(str(FASTA)):
        accession = re.match(r"(?:sp|tr)\|([^|]+)\||(\S+)", header).expand(r"\1\2")
        peptides = pyteomics.parser.cleave(sequence, "(?<=[KR])(?!P)", missed_cleavages=1, min_length=7, regex=True)
        for peptide in peptides:
            if len(peptide) <= 30:
                found.setdefault(peptide, set()).add(accession)
    return found


def precursor_mz(peptide, charge):
    return pyteomics.mass.fast_mass(peptide, charge=charge) + peptide.count("C") * CARBAMIDOMETHYL / charge


def test_targets_are_the_peptides_of_the_proteins(main):
    wanted = {
        (peptide, charge): proteins
        for peptide, proteins in digest().items()
        for charge in CHARGES
        if 300 <= precursor_mz(peptide, charge) <= 1800
    }
    assert len(wanted) > 30
    assert {key: set(entry.proteins) for key, entry in main.items() if not entry.decoy} == wanted
    assert ("LVNEVTEFAK", 2) in wanted and wanted["LVNEVTEFAK", 2] == {"P11111", "Q22222"}


def test_decoys_are_targets_backwards_up_to_the_last_residue(main):
    decoys = {key: entry for key, entry in main.items() if entry.decoy}
    assert len(decoys) > 30
    for (peptide, charge), entry in decoys.items():
        target = main[peptide[-2::-1] + peptide[-1], charge]
        assert not target.decoy
        assert sorted(entry.proteins) == sorted("DECOY_" + accession for accession in target.proteins)


def test_masses_are_those_of_the_ions(main):
    for (peptide, charge), entry in main.items():
        assert entry.precursor_mz == pytest.approx(precursor_mz(peptide, charge), abs=2 * expected.MZ)
        for mz, _, ion in entry.peaks:
            series, number, loss, fragment_charge = re.fullmatch(r"([aby])(\d+)(-H2O|-NH3|)(?:\^(\d))?", ion).groups()
            part = peptide[-int(number) :] if series == "y" else peptide[: int(number)]
            z = int(fragment_charge or 1)
            wanted = pyteomics.mass.fast_mass(part, ion_type=series, charge=z)
            wanted += (part.count("C") * CARBAMIDOMETHYL - LOSSES[loss]) / z
            assert mz == pytest.approx(wanted, abs=2 * expected.MZ)


def single_prediction(peptide, charge):
    """By ion, relative to the base peak, of the peptide as a library has it."""
    proforma = peptide.replace("C", "C[Carbamidomethyl]")
    options = ["--energy", 30, "--format", "json", "--annotate", "--no-isotopes"]
    output = program("spectrum", proforma, charge, *options)
    (spectrum,) = json.loads(output)["spectra"]
    highest = max(spectrum["intensity"])
    found = {}
    for name, intensity in zip(spectrum["ion"], spectrum["intensity"], strict=True):
        z = name.count("+")
        found[name.rstrip("+") + (f"^{z}" if z > 1 else "")] = intensity / highest
    return found, highest


@pytest.mark.parametrize("key", [("LVNEVTEFAK", 2), ("SLHTLFGDK", 3), ("GELLTSVACDDFNCTIEK", 2), ("DLGEENFK", 2)])
def test_intensities_are_those_of_a_single_prediction(main, key):
    single, highest = single_prediction(*key)
    library = {ion: intensity for _, intensity, ion in main[key].peaks}
    for ion in library.keys() | single.keys():
        if ion in library and ion in single:
            assert library[ion] == pytest.approx(single[ion], abs=SAME_PREDICTION)
        else:
            there = library.get(ion, 0) + single.get(ion, 0)
            assert there * highest == pytest.approx(WEAKEST, abs=SAME_PREDICTION)


def compare_peaks(peaks, wanted):
    assert len(peaks) == len(wanted)
    for (mz, intensity, ion), (wanted_mz, wanted_intensity, wanted_ion) in zip(peaks, wanted, strict=True):
        # Both were rounded, and OpenMS reads an MSP file's m/z as 32-bit numbers.
        assert mz == pytest.approx(wanted_mz, abs=2 * expected.MZ + expected.FLOAT32 * wanted_mz)
        assert intensity == pytest.approx(wanted_intensity, abs=expected.INTENSITY_OF_10000 / 10000 + 5e-7)
        assert ion is None or ion == wanted_ion


@pytest.mark.parametrize("ending, read", READERS)
def test_formats_agree(folder, main, ending, read):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        entries = read(folder / f"lib.{ending}")
    assert entries.keys() == main.keys()
    for key, entry in entries.items():
        wanted = main[key]
        assert entry.precursor_mz == pytest.approx(wanted.precursor_mz, abs=3 * expected.MZ)
        assert entry.proteins is None or entry.proteins == wanted.proteins
        assert entry.decoy is None or entry.decoy == wanted.decoy
        compare_peaks(entry.peaks, wanted.peaks)


@pytest.mark.parametrize("ending, read", [("tsv", read_tsv), ("pqp", read_pqp)])
def test_transition_list_agrees_but_for_a_ions(folder, main, ending, read):
    entries = read(folder / f"lib.{ending}")
    assert entries.keys() == main.keys()
    for key, entry in entries.items():
        wanted = main[key]
        written = [peak for peak in wanted.peaks if peak[2][0] != "a"]
        highest = max(intensity for _, intensity, _ in written)
        assert (sorted(entry.proteins), entry.decoy) == (sorted(wanted.proteins), wanted.decoy)
        assert entry.precursor_mz == pytest.approx(wanted.precursor_mz, abs=2 * expected.MZ)
        by_ion = {ion: (mz, intensity) for mz, intensity, ion in entry.peaks}
        assert by_ion.keys() == {ion for _, _, ion in written}
        for mz, intensity, ion in written:
            assert by_ion[ion] == pytest.approx((mz, intensity / highest), abs=2 * expected.MZ)
