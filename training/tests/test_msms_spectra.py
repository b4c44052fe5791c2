# SPDX-License-Identifier: Apache-2.0
from pathlib import Path

import numpy as np
import pytest

from zav_training.msms import ladder, sources, spectra
from zav_training.msms.comparison import observed_sites

COLUMN = ladder.COLUMN_OF


def source_named(name: str) -> sources.Source:
    return next(s for s in sources.SOURCES if s.name == name)


def test_held_out_share_does_not_tell_i_from_l() -> None:
    assert spectra.is_held_out("PEPTIDE") == spectra.is_held_out("PEPTLDE")


def test_about_a_tenth_is_held_out() -> None:
    held = sum(
        spectra.is_held_out("PEPTIDE" + "A" * n + "GK" * m) for n in range(40) for m in range(40)
    )
    assert 110 <= held <= 210  # 160 expected of 1600, within 4 standard deviations


def test_fragments_go_to_their_sites() -> None:
    sites = spectra.from_fragments("b2+1:0.5 y1+1:1.0 y6+2:0.2 y3+1-H2O:0.1 a3+1:0.05", 7)
    assert sites[1, COLUMN["b", 1, ""]] == np.float32(0.5)
    assert sites[5, COLUMN["y", 1, ""]] == 1.0
    assert sites[0, COLUMN["y", 2, ""]] == np.float32(0.2)
    assert sites[3, COLUMN["y", 1, "-H2O"]] == np.float32(0.1)
    assert sites[2, COLUMN["a", 1, ""]] == np.float32(0.05)
    assert np.count_nonzero(sites) == 5


@pytest.mark.parametrize("text", ["y7+1:1.0", "y2+4:1.0", "y4+2-H2O:1.0", "p+2:1.0"])
def test_ions_without_a_slot_are_dropped(text: str) -> None:
    assert not spectra.from_fragments(text, 7).any()


def test_peaks_within_the_tolerance_are_annotated() -> None:
    # b2 of PEPTIDE is at 227.1026: 20 ppm are 0.0045 Da
    mz, height = np.array([148.0604, 227.1066, 227.1026, 227.1100]), np.array([1.0, 0.9, 0.2, 5.0])
    order = np.argsort(mz)
    sites, clear = spectra.annotate(mz[order], height[order], "PEPTIDE", (20.0, "ppm"))
    assert sites[1, COLUMN["b", 1, ""]] == np.float32(0.9)
    assert sites[5, COLUMN["y", 1, ""]] == 1.0
    assert clear[1, COLUMN["b", 1, ""]]


def test_peak_of_two_ions_goes_to_the_first_series_and_hides_the_other() -> None:
    # In SS the b1 and y1-H2O ions have the same mass.
    mz = ladder.site_mz("SS")[0, COLUMN["b", 1, ""]]
    sites, clear = spectra.annotate(np.array([mz]), np.array([1.0]), "SS", (20.0, "ppm"))
    assert sites[0, COLUMN["b", 1, ""]] == 1.0 and clear[0, COLUMN["b", 1, ""]]
    assert sites[0, COLUMN["y", 1, "-H2O"]] == 0.0 and not clear[0, COLUMN["y", 1, "-H2O"]]


def test_library_hides_small_numbers_a_ions_and_distant_mz() -> None:
    seen = source_named("library_RPE1_DIA").observes("PEPTIDEPEPTIDE", 2)
    assert not seen[:, COLUMN["a", 1, ""]].any()
    assert not seen[:2, COLUMN["b", 1, ""]].any() and seen[2, COLUMN["b", 1, ""]]
    assert not seen[-2:, COLUMN["y", 1, ""]].any()
    assert not seen[:, COLUMN["y", 3, ""]].any()


def test_every_source_hides_what_is_over_2000_mz() -> None:
    for source in sources.SOURCES:
        seen = source.observes("W" * 20, 2)
        assert not seen[ladder.site_mz("W" * 20) > 2000.0].any()


def test_replicates_are_averaged_over_those_that_observe() -> None:
    def spectrum(values: list[float], seen: list[bool]) -> spectra.Spectrum:
        sites, observed = np.zeros((2, 11), np.float32), np.zeros((2, 11), bool)
        sites[0, :2], observed[0, :2] = values, seen
        return spectra.Spectrum("GAK", 2, 4, sites, observed, 0.01)

    (mean,) = spectra.average_replicates(
        [spectrum([1.0, 0.5], [True, True]), spectrum([1.0, 0.0], [True, False])]
    )
    assert mean.intensity[0, 0] == 1.0 and mean.intensity[0, 1] == 0.5


def test_all_files_are_read(data: Path) -> None:
    every = spectra.read_all(data)
    found = {sources.SOURCES[s.source].file for s in every}
    assert found == set(sources.FILES)
    assert all(s.intensity.max() == pytest.approx(1.0) for s in every)
    assert all(not s.intensity[~s.observed].any() for s in every)


def test_row_of_an_undeclared_source_is_refused() -> None:
    with pytest.raises(ValueError, match="no source is declared"):
        sources.source_of("library_human", "unknown/library")


@pytest.mark.parametrize("peptide, charge", [("A", 2), ("PEPXIDE", 2), ("A" * 28, 1), ("AAK", 6)])
def test_peptides_that_no_network_reads_are_left_out(peptide: str, charge: int) -> None:
    assert not spectra.is_usable(peptide, charge)


def test_compared_peak_counts_for_every_ion_that_it_fits() -> None:
    mz = ladder.site_mz("SS")[0, COLUMN["b", 1, ""]]
    row = {"peptide": "SS", "charge": "2", "peaks": f"{mz:.5f}:0.7"}
    sites = observed_sites(row)
    assert sites[0, COLUMN["b", 1, ""]] == sites[0, COLUMN["y", 1, "-H2O"]] == np.float32(0.7)
