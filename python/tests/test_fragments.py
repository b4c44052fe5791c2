# SPDX-License-Identifier: Apache-2.0
import csv
import io
import subprocess
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

import numpy as np
import numpy.typing as npt
import pytest
from conftest import random_peptides

import zav

Program = Callable[..., subprocess.CompletedProcess[str]]
Table = npt.NDArray[np.void]

PEPTIDE = "LQSRPAAPPAPGPGQLTLR"

# By hand from the residues' monoisotopic masses: PGQLTLR 765.44971 and PGPGQLTLR 919.52393 with water 18.01056 and a
# proton 1.00728; the b ions LQS 328.17467 and CK 231.10414 (plain cysteine 103.00919) with a proton alone.
Y7, Y9 = 784.46755, 938.54177


def ion(table: Table, name: str, number: int, charge: int = 1, loss: str = "") -> Table:
    kept: npt.NDArray[np.bool_] = (
        (table["ion"] == name) & (table["number"] == number) & (table["charge"] == charge) & (table["loss"] == loss)
    )
    return table[kept]


def test_ions_have_the_mass_of_their_residues(predictor: zav.FragmentPredictor) -> None:
    table = predictor.predict([PEPTIDE], 3)
    assert ion(table, "y", 7)["mz"] == pytest.approx([Y7], abs=2e-4)
    assert ion(table, "y", 9)["mz"] == pytest.approx([Y9], abs=2e-4)


def test_table_has_the_documented_columns_and_order(predictor: zav.FragmentPredictor) -> None:
    peptides = random_peptides(40, seed=1)
    table = predictor.predict(peptides, 2)
    assert table.dtype == zav.PEAK_DTYPE
    assert table.dtype.names == ("spectrum", "mz", "intensity", "ion", "number", "charge", "loss", "isotope")
    assert list(dict.fromkeys(table["spectrum"].tolist())) == list(range(40))
    for spectrum in range(40):
        peaks = table[table["spectrum"] == spectrum]
        assert (np.diff(peaks["mz"]) >= 0).all()
        assert peaks["intensity"].min() >= 0.025 and peaks["mz"].max() <= 2000
        assert peaks["number"].max() < len(peptides[spectrum])
    assert set(np.unique(table["ion"])) <= {"y", "b", "a"}
    assert set(np.unique(table["loss"])) <= {"", "-H2O", "-NH3"}
    assert table["charge"].min() >= 1 and table["charge"].max() <= 3
    assert not table["isotope"].any()


def test_isotope_peaks_are_added_on_request(predictor: zav.FragmentPredictor) -> None:
    plain = predictor.predict([PEPTIDE], 3)
    full = predictor.predict([PEPTIDE], 3, isotopes=True)
    assert full["isotope"].max() >= 1
    np.testing.assert_allclose(full[full["isotope"] == 0]["mz"], plain["mz"])
    light, *heavy = ion(full, "y", 9)[["mz", "isotope"]].tolist()
    assert light == (pytest.approx(Y9, abs=2e-4), 0)
    assert heavy[0] == (pytest.approx(Y9 + 1.003355, abs=5e-3), 1)  # of 13C; the library takes an average


def test_each_peptide_has_the_spectrum_that_it_has_alone(predictor: zav.FragmentPredictor) -> None:
    peptides = random_peptides(3000, seed=2)  # more than one piece
    charges = [1 + index % 4 for index in range(3000)]
    peptides = [peptide if charge > 1 else peptide[:26] for peptide, charge in zip(peptides, charges, strict=True)]
    table = predictor.predict(peptides, charges)
    assert (np.diff(table["spectrum"]) >= 0).all()
    for index in range(0, 3000, 97):
        alone = predictor.predict([peptides[index]], charges[index])
        found = table[table["spectrum"] == index]
        # A peak next to the lowest intensity may be in one of the two alone.
        kept = [peaks[peaks["intensity"] > 0.0251] for peaks in (alone, found)]
        np.testing.assert_array_equal(kept[0]["mz"], kept[1]["mz"])
        np.testing.assert_allclose(kept[0]["intensity"], kept[1]["intensity"], atol=1e-4)


def test_cysteine_has_the_mass_that_is_asked_for() -> None:
    peptide = "ACDEFGHIK"
    masses = {}
    for cysteine in (0.0, 57.02146, 125.0477):
        table = zav.FragmentPredictor(cysteine=cysteine).predict([peptide], 2)
        masses[cysteine] = ion(table, "b", 2)["mz"]
    # A 71.03711, C 103.00919, a proton 1.00728.
    assert masses[0.0] == pytest.approx([175.05358], abs=2e-4)
    assert masses[57.02146] == pytest.approx([232.07504], abs=2e-4)
    assert masses[125.0477] == pytest.approx([300.10128], abs=2e-4)


def test_spectrum_is_the_table_with_isotopes(predictor: zav.FragmentPredictor) -> None:
    mz, intensity = predictor.spectrum(PEPTIDE, 3)
    table = predictor.predict([PEPTIDE], 3, isotopes=True)
    assert mz.dtype == intensity.dtype == np.float64
    assert mz.shape == intensity.shape == table.shape
    np.testing.assert_allclose(mz, table["mz"], atol=1e-6)
    np.testing.assert_allclose(intensity, table["intensity"], atol=1e-5)


def read_tsv(text: str) -> list[dict[str, str]]:
    return list(csv.DictReader(io.StringIO(text), delimiter="\t"))


@pytest.mark.parametrize("charge", [1, 2, 3, 4, 5])
def test_predictions_are_those_of_the_program(
    predictor: zav.FragmentPredictor, program: Program, tmp_path: Path, charge: int
) -> None:
    peptides = random_peptides(60, seed=charge)
    list_file = tmp_path / "peptides.tsv"
    list_file.write_text("".join(f"{peptide}\t{charge}\n" for peptide in peptides))
    result = program("spectrum", "--peptides", list_file, "--no-isotopes", "--format", "tsv")
    assert result.returncode == 0, result.stderr
    told = read_tsv(result.stdout)
    table = predictor.predict(peptides, charge)
    assert len(told) == len(table)
    np.testing.assert_allclose([float(row["mz"]) for row in told], table["mz"], atol=6e-6)
    np.testing.assert_allclose([float(row["intensity"]) for row in told], table["intensity"], atol=2e-6)
    assert [row["peptide"] for row in told] == [peptides[index] for index in table["spectrum"]]
    if "ion" in told[0]:
        assert [row["ion"][0] for row in told] == table["ion"].tolist()


def test_one_spectrum_is_that_of_the_program(predictor: zav.FragmentPredictor, program: Program) -> None:
    result = program("spectrum", PEPTIDE, 3, "--format", "tsv")
    told = read_tsv(result.stdout)
    mz, intensity = predictor.spectrum(PEPTIDE, 3)
    np.testing.assert_allclose([float(row["mz"]) for row in told], mz, atol=6e-6)
    np.testing.assert_allclose([float(row["intensity"]) for row in told], intensity, atol=2e-6)


def test_no_peptides_give_an_empty_table(predictor: zav.FragmentPredictor) -> None:
    empty: list[Any] = [2, [], np.array([], dtype=int), np.array([])]
    for charges in empty:
        table = predictor.predict([], charges)
        assert table.shape == (0,) and table.dtype == zav.PEAK_DTYPE


def test_columns_of_numpy_are_taken(predictor: zav.FragmentPredictor) -> None:
    peptides = ["PEPTIDEK", "LGGNEQVTR"]
    expected = predictor.predict(peptides, [2, 3])
    for kind in (np.int8, np.int64, np.uint16):
        table = predictor.predict(np.array(peptides), np.array([2, 3], dtype=kind))
        np.testing.assert_array_equal(table, expected)
    np.testing.assert_array_equal(predictor.predict(iter(peptides), np.int32(2)), predictor.predict(peptides, 2))


@pytest.mark.parametrize(
    ("peptide", "charge", "message"),
    [
        ("", 2, "peptide 1, '': the peptide is empty"),
        ("PEPTIDEX", 2, "'X' at position 8 is none of the 20 standard residues in upper case"),
        ("pEPTIDE", 2, "'p' at position 1 is none of the 20 standard residues in upper case"),
        ("PEPTIDE\0", 2, r"'\x00' at position 8 is none of the 20 standard residues in upper case"),
        ("PÉPTIDE", 2, "'É' at position 2 is none of the 20 standard residues in upper case"),
        ("\ud800", 2, "is none of the 20 standard residues in upper case"),
        ("A" * 44, 2, "44 residues, more than the 43 of precursor charge 2"),
        ("A" * 28, 1, "28 residues, more than the 27 of precursor charge 1"),
    ],
)
def test_peptides_that_are_not_predicted_are_refused(
    predictor: zav.FragmentPredictor, peptide: str, charge: int, message: str
) -> None:
    with pytest.raises(zav.InvalidInput) as caught:
        predictor.predict(["PEPTIDEK", peptide, "also wrong"], charge)
    assert str(caught.value).startswith("peptide 1, ") and message in str(caught.value)
    assert caught.value.code == zav.ErrorCode.InvalidInput
    with pytest.raises(zav.InvalidInput, match="peptide 0"):
        predictor.spectrum(peptide, charge)


@pytest.mark.parametrize("charge", [0, -1, 6, 2**40])
def test_charges_without_a_network_are_refused(predictor: zav.FragmentPredictor, charge: int) -> None:
    message = f"^charge {charge} is not predicted, only 1 to 5$"
    with pytest.raises(zav.InvalidInput, match=message):
        predictor.predict(["PEPTIDEK"], charge)
    with pytest.raises(zav.InvalidInput, match=message):
        predictor.predict(["PEPTIDEK", "LGGNEQVTR"], [2, charge])
    with pytest.raises(zav.InvalidInput, match=message):
        predictor.spectrum("PEPTIDEK", charge)
    with pytest.raises(zav.InvalidInput, match=message):
        predictor.longest_peptide(charge)


def test_lists_of_unequal_lengths_are_refused(predictor: zav.FragmentPredictor) -> None:
    with pytest.raises(zav.InvalidInput, match="^there are 1 charges for 2 peptides$"):
        predictor.predict(["PEPTIDEK", "LGGNEQVTR"], [2])
    with pytest.raises(zav.InvalidInput, match="^charges has 2 dimensions, must have 1$"):
        predictor.predict(["PEPTIDEK"], np.array([[2]]))


@pytest.mark.parametrize("peptides", [[None], [b"PEPTIDEK"], ["PEPTIDEK", 7], [float("nan")]])
def test_peptides_of_other_types_are_refused(predictor: zav.FragmentPredictor, peptides: list[Any]) -> None:
    with pytest.raises(TypeError, match=r"^peptide \d is of type \w+, must be str$"):
        predictor.predict(peptides, 2)


def test_one_text_is_no_list_of_peptides(predictor: zav.FragmentPredictor) -> None:
    with pytest.raises(TypeError, match="^peptides is one text, must be a list of peptides$"):
        predictor.predict("PEPTIDEK", 2)


@pytest.mark.parametrize("charges", [2.0, None, [2.5], ["2"], np.array([2.0]), np.array(["2"])])
def test_charges_of_other_types_are_refused(predictor: zav.FragmentPredictor, charges: Any) -> None:  # noqa: ANN401
    with pytest.raises(TypeError):
        predictor.predict(["PEPTIDEK"], charges)


@pytest.mark.parametrize("cysteine", [float("nan"), float("inf")])
def test_a_cysteine_without_mass_is_refused(cysteine: float) -> None:
    with pytest.raises(zav.InvalidInput, match="^cysteine is (nan|inf), must be a finite mass$"):
        zav.FragmentPredictor(cysteine=cysteine)


def test_a_fragment_beyond_all_masses_is_refused() -> None:
    predictor = zav.FragmentPredictor(cysteine=1e7)
    with pytest.raises(zav.InvalidInput, match="ACDEK has a fragment whose mass is not finite or above 1e6 Da"):
        predictor.predict(["ACDEK"], 2)
    with pytest.raises(zav.InvalidInput):
        predictor.spectrum("ACDEK", 2)
    assert len(predictor.predict(["PEPTIDEK"], 2)) > 5


def test_a_network_that_is_missing_is_named(tmp_path: Path) -> None:
    with pytest.raises(zav.Error, match=rf"^no network msms_charge1.pb in {tmp_path}$") as caught:
        zav.FragmentPredictor(models=tmp_path)
    assert not isinstance(caught.value, zav.InvalidInput)
    assert caught.value.code == zav.ErrorCode.Failure and caught.value.trail == ()


def test_a_network_that_is_broken_is_named_by_the_trail(tmp_path: Path) -> None:
    for charge in range(1, 6):
        source = zav.models_folder() / f"msms_charge{charge}.pb"
        (tmp_path / source.name).write_bytes(source.read_bytes() if charge < 3 else b"no graph")
    with pytest.raises(zav.Error) as caught:
        zav.FragmentPredictor(models=str(tmp_path))
    assert caught.value.code == zav.ErrorCode.Failure
    assert len(caught.value.trail) >= 2
    places = ", ".join(f"{place.file}:{place.line}" for place in caught.value.trail)
    assert str(caught.value) == (caught.value.message or f"Failure at {places}")
    place = caught.value.trail[-1]
    assert place.file == "ml/src/MsMsFragmentationPredictomatic" and place.line > 0 and place.function


def test_another_folder_of_networks_is_used(tmp_path: Path) -> None:
    for source in zav.models_folder().glob("msms_charge*.pb"):
        charge = int(source.stem[-1])
        name = {2: "msms_charge3.pb", 3: "msms_charge2.pb"}.get(charge, source.name)
        (tmp_path / name).write_bytes(source.read_bytes())
    # Networks in each other's place take peptides of another length, which they say.
    swapped = zav.FragmentPredictor(models=tmp_path)
    with pytest.raises(zav.Error):
        swapped.predict(["PEPTIDEK"], 2)
    assert len(swapped.predict(["PEPTIDEK"], 1)) > 5


def test_longest_peptides(predictor: zav.FragmentPredictor) -> None:
    assert [predictor.longest_peptide(charge) for charge in range(1, 6)] == [27, 43, 50, 52, 50]
    for charge in range(1, 6):
        peptide = "A" * (predictor.longest_peptide(charge) - 1) + "K"
        assert (predictor.predict([peptide], charge)["number"] < len(peptide)).all()


def test_threads_may_share_a_predictor(predictor: zav.FragmentPredictor) -> None:
    lists = [random_peptides(300, seed=seed) for seed in range(8)]
    expected = [predictor.predict(peptides, 2) for peptides in lists]
    with ThreadPoolExecutor(8) as pool:
        found = list(pool.map(lambda peptides: predictor.predict(peptides, 2), lists))
    for one, other in zip(expected, found, strict=True):
        np.testing.assert_array_equal(one, other)


def test_threads_may_have_predictors_of_their_own() -> None:
    lists = [random_peptides(300, seed=seed) for seed in range(3)]
    expected = [zav.FragmentPredictor().predict(peptides, 3) for peptides in lists]
    with ThreadPoolExecutor(3) as pool:
        found = list(pool.map(lambda peptides: zav.FragmentPredictor().predict(peptides, 3), lists))
    for one, other in zip(expected, found, strict=True):
        np.testing.assert_array_equal(one, other)


def test_table_owns_its_memory(predictor: zav.FragmentPredictor) -> None:
    table = predictor.predict(["PEPTIDEK"], 2)
    copy = table.copy()
    for seed in range(5):
        predictor.predict(random_peptides(50, seed), 2)
    np.testing.assert_array_equal(table, copy)
    table["intensity"] *= 2  # and may be written
