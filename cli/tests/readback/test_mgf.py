# SPDX-License-Identifier: Apache-2.0
"""MGF, read by pyteomics and OpenMS."""

import pyopenms
import pyteomics.mgf
import pytest

import expected


def check_peaks(entry, masses, intensities):
    assert len(masses) == len(intensities) == len(entry["peaks"])
    for peak, mz, intensity in zip(entry["peaks"], masses, intensities, strict=True):
        assert mz == pytest.approx(peak["mz"], abs=expected.MZ)
        assert float(intensity) == pytest.approx(10000 * peak["intensity"], abs=expected.INTENSITY_OF_10000)


def test_pyteomics_reads_every_value(library, entries):
    with pyteomics.mgf.read(library("mgf"), use_index=False) as reader:
        spectra = list(reader)
    assert len(spectra) == len(entries)
    for entry, spectrum in zip(entries, spectra, strict=True):
        time = entry["retention_time"] if entry["time_scale"] == "minutes" else None
        assert set(spectrum["params"]) == {"title", "pepmass", "charge"} | ({"rtinseconds"} if time else set())
        if time:
            assert spectrum["params"]["rtinseconds"] == pytest.approx(60 * time, abs=expected.TIME)
        assert spectrum["params"]["title"] == expected.spectrum_name(entry)
        assert spectrum["params"]["charge"] == [entry["charge"]]
        assert spectrum["params"]["pepmass"][0] == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        check_peaks(entry, spectrum["m/z array"], spectrum["intensity array"])


def test_openms_reads_every_value(library, entries):
    spectra = pyopenms.MSExperiment()
    pyopenms.MascotGenericFile().load(library("mgf"), spectra)
    assert spectra.size() == len(entries)
    for i, (entry, spectrum) in enumerate(zip(entries, spectra, strict=True)):
        assert spectrum.getMetaValue("TITLE") == f"{expected.spectrum_name(entry)}_index={i}"
        time = 60 * entry["retention_time"] if entry["time_scale"] == "minutes" else -1.0
        assert spectrum.getRT() == pytest.approx(time, abs=expected.TIME)
        (precursor,) = spectrum.getPrecursors()
        assert precursor.getMZ() == pytest.approx(entry["precursor_mz"], abs=expected.MZ)
        assert precursor.getCharge() == entry["charge"]
        check_peaks(entry, *spectrum.get_peaks())
