# SPDX-License-Identifier: Apache-2.0
"""The tables and files in the programs that people use them with."""

import subprocess
from collections.abc import Callable
from pathlib import Path

import numpy as np
import numpy.typing as npt
import pandas as pd
import polars as pl
from conftest import DATA
from pyteomics import mgf

import zav

Program = Callable[..., subprocess.CompletedProcess[str]]

PEPTIDES = ["LQSRPAAPPAPGPGQLTLR", "PEPTIDEK"]


def test_pandas_takes_the_table(predictor: zav.FragmentPredictor) -> None:
    table = predictor.predict(PEPTIDES, [3, 2])
    frame = pd.DataFrame(table)
    assert list(frame.columns) == list(zav.PEAK_DTYPE.names or ())
    assert frame["mz"].dtype == np.float64 and frame["number"].dtype == np.int32
    for name in frame.columns:
        assert frame[name].tolist() == table[name].tolist()
    highest = frame.loc[frame.groupby("spectrum")["intensity"].idxmax(), "mz"]
    assert highest.tolist() == [table[table["spectrum"] == i]["mz"][_apex(table, i)] for i in (0, 1)]


def _apex(table: npt.NDArray[np.void], spectrum: int) -> int:
    return int(table[table["spectrum"] == spectrum]["intensity"].argmax())


def test_polars_takes_the_table(predictor: zav.FragmentPredictor) -> None:
    table = predictor.predict(PEPTIDES, [3, 2])
    frame = pl.DataFrame(table)
    assert frame.columns == list(zav.PEAK_DTYPE.names or ())
    assert frame.schema["mz"] == pl.Float64 and frame.schema["ion"] == pl.String
    for name in frame.columns:
        assert frame[name].to_list() == table[name].tolist()


def test_peptides_and_charges_may_be_columns(predictor: zav.FragmentPredictor) -> None:
    expected = predictor.predict(PEPTIDES, [3, 2])
    columns = {"peptide": PEPTIDES, "charge": [3, 2]}
    for frame in (pd.DataFrame(columns), pl.DataFrame(columns)):
        np.testing.assert_array_equal(predictor.predict(frame["peptide"], frame["charge"]), expected)


def test_columns_of_frames_are_chromatograms(detector: zav.LimitsDetector) -> None:
    times = np.linspace(10, 14, 401)
    intensities = 50 + 10000 * np.exp(-(((times - 12) / 0.05) ** 2) / 2)
    expected = detector.detect(times, intensities)
    columns = {"rt": times, "intensity": intensities}
    for frame in (pd.DataFrame(columns), pl.DataFrame(columns)):
        np.testing.assert_array_equal(detector.detect(frame["rt"], frame["intensity"]), expected)


def test_pyteomics_reads_the_spectra_of_the_program(
    predictor: zav.FragmentPredictor, program: Program, tmp_path: Path
) -> None:
    output = tmp_path / "predicted.mgf"
    result = program("spectrum", PEPTIDES[0], 3, "--no-isotopes", "-o", output)
    assert result.returncode == 0, result.stderr
    with mgf.read(str(output), use_index=False) as reader:
        [spectrum] = reader
    table = predictor.predict([PEPTIDES[0]], 3)
    assert spectrum["params"]["charge"] == [3]
    # By hand: the residues 1908.06932 Da and water 18.01056, with three protons of 1.00728.
    assert abs(spectrum["params"]["pepmass"][0] - (1908.06932 + 18.01056 + 3 * 1.00728) / 3) < 2e-3
    np.testing.assert_allclose(spectrum["m/z array"], table["mz"], atol=6e-6)
    heights = np.asarray(spectrum["intensity array"])
    np.testing.assert_allclose(heights / heights.max(), table["intensity"] / table["intensity"].max(), atol=1e-4)


def test_measured_spectrum_of_pyteomics_agrees_with_the_prediction(predictor: zav.FragmentPredictor) -> None:
    with mgf.read(str(DATA / "LQSRPAAPPAPGPGQLTLR.mgf"), use_index=False) as reader:
        [measured] = reader
    table = predictor.predict([PEPTIDES[0]], 3)
    strong = table[table["intensity"] > 0.2]
    distances = np.abs(np.subtract.outer(strong["mz"], measured["m/z array"])).min(axis=1)
    assert (distances < 0.02).mean() > 0.8
