# SPDX-License-Identifier: Apache-2.0
"""DLIB and BLIB, read by sqlite3, zlib and struct, and by the readers of mzspeclib."""

import sqlite3
import struct
import warnings
import zlib

import mzspeclib
import pytest

import expected


@pytest.fixture
def database(library):
    connections = []

    def connect(ending):
        connection = sqlite3.connect(f"file:{library(ending)}?mode=ro", uri=True)
        connection.row_factory = sqlite3.Row
        connections.append(connection)
        return connection

    yield connect
    for connection in connections:
        connection.close()


def numbers(blob, letter, order):
    return struct.unpack(f"{order}{len(blob) // struct.calcsize(letter)}{letter}", blob)


def columns(connection, table):
    return [row["name"] for row in connection.execute(f"PRAGMA table_info({table})")]


def check_peaks(entry, masses, intensities):
    assert list(masses) == [peak["mz"] for peak in entry["peaks"]]
    assert len(intensities) == len(entry["peaks"])
    for peak, intensity in zip(entry["peaks"], intensities, strict=True):
        assert intensity == pytest.approx(10000 * peak["intensity"], rel=expected.FLOAT32)


def test_databases_are_sound(database):
    for ending in ("dlib", "blib"):
        assert database(ending).execute("PRAGMA integrity_check").fetchone()[0] == "ok"


def test_dlib_has_the_tables_of_encyclopedia(database):
    connection = database("dlib")
    assert columns(connection, "entries") == [
        "PrecursorMz",
        "PrecursorCharge",
        "PeptideModSeq",
        "PeptideSeq",
        "Copies",
        "RTInSeconds",
        "Score",
        "MassEncodedLength",
        "MassArray",
        "IntensityEncodedLength",
        "IntensityArray",
        "CorrelationEncodedLength",
        "CorrelationArray",
        "RTInSecondsStart",
        "RTInSecondsStop",
        "MedianChromatogramEncodedLength",
        "MedianChromatogramArray",
        "SourceFile",
    ]
    assert columns(connection, "peptidetoprotein") == ["PeptideSeq", "isDecoy", "ProteinAccession"]
    metadata = dict(connection.execute("SELECT Key, Value FROM metadata").fetchall())
    assert metadata == {"version": "0.1.14", "staleProteinMapping": "true"}


def test_dlib_holds_every_value(database, entries):
    rows = database("dlib").execute("SELECT * FROM entries ORDER BY rowid").fetchall()
    assert len(rows) == len(entries)
    for entry, row in zip(entries, rows, strict=True):
        assert row["PrecursorMz"] == entry["precursor_mz"]
        assert row["PrecursorCharge"] == entry["charge"]
        assert row["PeptideSeq"] == entry["peptide"]
        assert row["PeptideModSeq"] == expected.mass_tagged(entry, 6)
        assert (row["Copies"], row["Score"], row["SourceFile"]) == (1, 0.0, "predicted")
        # Minutes, as which an iRT counts.
        time = entry["retention_time"]
        assert row["RTInSeconds"] == (-1.0 if time is None else 60 * time)
        masses = zlib.decompress(row["MassArray"])
        intensities = zlib.decompress(row["IntensityArray"])
        assert (row["MassEncodedLength"], row["IntensityEncodedLength"]) == (len(masses), len(intensities))
        check_peaks(entry, numbers(masses, "d", ">"), numbers(intensities, "f", ">"))


def test_dlib_holds_the_proteins_of_each_peptide_once(database, entries):
    rows = database("dlib").execute("SELECT PeptideSeq, isDecoy, ProteinAccession FROM peptidetoprotein").fetchall()
    wanted = {
        (entry["peptide"], int(entry["decoy"]), accession)
        for entry in entries
        for accession in expected.accessions(entry)
    }
    assert sorted(map(tuple, rows)) == sorted(wanted)


def test_blib_has_the_tables_of_bibliospec(database):
    connection = database("blib")
    assert columns(connection, "RefSpectra") == (
        "id peptideSeq precursorMZ precursorCharge peptideModSeq prevAA nextAA copies numPeaks ionMobility "
        "collisionalCrossSectionSqA ionMobilityHighEnergyOffset ionMobilityType retentionTime startTime endTime "
        "totalIonCurrent moleculeName chemicalFormula precursorAdduct inchiKey otherKeys fileID SpecIDinFile score "
        "scoreType"
    ).split(" ")
    assert columns(connection, "RefSpectraPeaks") == ["RefSpectraID", "peakMZ", "peakIntensity"]
    assert columns(connection, "Modifications") == ["id", "RefSpectraID", "position", "mass"]
    assert columns(connection, "SpectrumSourceFiles") == ["id", "fileName", "idFileName", "cutoffScore"]
    assert connection.execute("SELECT id, fileName FROM SpectrumSourceFiles").fetchall()[0][:] == (1, "predicted")
    score = connection.execute("SELECT * FROM ScoreTypes").fetchone()
    assert tuple(score) == (0, "UNKNOWN", "NOT_A_PROBABILITY_VALUE")
    assert [row["id"] for row in connection.execute("SELECT id FROM IonMobilityTypes")] == [0, 1, 2, 3]


def test_blib_says_what_it_is(database, set_name, entries):
    (info,) = database("blib").execute("SELECT * FROM LibInfo").fetchall()
    assert info["libLSID"].endswith(f":bibliospec:nr:{set_name}")
    assert info["createTime"] == "Thu Jan 01 00:00:00 1970"
    assert (info["numSpecs"], info["majorVersion"], info["minorVersion"]) == (len(entries), 1, 10)


def blib_array(blob, count, letter):
    """Compressed only where that is shorter: told by the length."""
    size = count * struct.calcsize(letter)
    raw = blob if len(blob) == size else zlib.decompress(blob)
    assert len(raw) == size and len(blob) <= size
    return numbers(raw, letter, "<")


def test_blib_holds_every_value(database, entries):
    connection = database("blib")
    rows = connection.execute(
        "SELECT * FROM RefSpectra JOIN RefSpectraPeaks ON RefSpectraID = id ORDER BY id"
    ).fetchall()
    assert len(rows) == len(entries)
    for number, (entry, row) in enumerate(zip(entries, rows, strict=True), start=1):
        assert row["id"] == number
        assert row["peptideSeq"] == entry["peptide"]
        assert row["peptideModSeq"] == expected.mass_tagged(entry, 5)
        assert row["precursorMZ"] == entry["precursor_mz"]
        assert row["precursorCharge"] == entry["charge"]
        assert row["numPeaks"] == len(entry["peaks"])
        assert (row["copies"], row["fileID"], row["scoreType"]) == (1, 1, 0)
        assert row["retentionTime"] == (entry["retention_time"] or 0.0)
        assert (row["prevAA"], row["nextAA"], row["startTime"], row["endTime"]) == ("-", "-", None, None)
        intensities = blib_array(row["peakIntensity"], row["numPeaks"], "f")
        check_peaks(entry, blib_array(row["peakMZ"], row["numPeaks"], "d"), intensities)
        assert row["totalIonCurrent"] == pytest.approx(sum(intensities), rel=1e-12)


def test_blib_holds_every_modification(database, entries):
    rows = database("blib").execute("SELECT RefSpectraID, position, mass FROM Modifications ORDER BY id").fetchall()
    wanted = [
        (number, place + 1, pytest.approx(mass, abs=1e-9))
        for number, entry in enumerate(entries, start=1)
        for place, mass in sorted(expected.residue_masses(entry).items())
    ]
    assert [tuple(row) for row in rows] == wanted


def test_blib_holds_every_protein(database, entries):
    rows = database("blib").execute(
        "SELECT RefSpectraId, accession FROM RefSpectraProteins JOIN Proteins ON ProteinId = id ORDER BY 1, id"
    )
    wanted = [(number, one) for number, entry in enumerate(entries, start=1) for one in expected.accessions(entry)]
    assert sorted(map(tuple, rows)) == sorted(wanted)


@pytest.mark.parametrize("ending", ["dlib", "blib"])
def test_mzspeclib_reads_every_value(library, entries, ending):
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        spectra = list(mzspeclib.SpectrumLibrary(filename=library(ending)).read())
    assert len(spectra) == len(entries)
    for entry, spectrum in zip(entries, spectra, strict=True):
        (analyte,) = spectrum.analytes.values()
        assert spectrum.precursor_mz == entry["precursor_mz"]
        assert spectrum.precursor_charge == entry["charge"]
        assert analyte.get_attribute("MS:1000888|stripped peptide sequence") == entry["peptide"]
        check_peaks(entry, [peak[0] for peak in spectrum.peak_list], [peak[1] for peak in spectrum.peak_list])
        # Its mass, computed by pyteomics from the peptide with its modifications.
        neutral = entry["charge"] * (entry["precursor_mz"] - 1.00727646677)
        assert analyte.mass == pytest.approx(neutral, abs=1e-4)
