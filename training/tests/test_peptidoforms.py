# SPDX-License-Identifier: Apache-2.0
from dataclasses import replace
from pathlib import Path

import numpy as np
import pytest
import tensorflow as tf
from conftest import random_peptide

from zav_training import rows
from zav_training.graphs import write_graph
from zav_training.msms import folded
from zav_training.msms.export import build_graph as build_plain
from zav_training.msms.network import Network as PlainNetwork
from zav_training.msms.network import Shape as PlainShape
from zav_training.peptidoforms import ladder, training
from zav_training.peptidoforms.beginning import begin_from
from zav_training.peptidoforms.evaluation import angles, predict
from zav_training.peptidoforms.export import build_graph
from zav_training.peptidoforms.lessons import make_lessons
from zav_training.peptidoforms.network import Network, Shape
from zav_training.peptidoforms.shipping import NAME, Shipped
from zav_training.peptidoforms.sources import NAMES, SHIPPED, SOURCES, source_of
from zav_training.peptidoforms.spectra import Spectrum, blocked, from_fragments, read_spectrum
from zav_training.peptidoforms.training import Schedule, energy_input, epoch, fill_buckets, train

SMALL = Shape(width=16, head=32, kind=4, charge=4, dropout=0.0)
FLOAT_TOLERANCE = 1e-4
#: Monoisotopic masses in Da, added up by hand from the elements.
H3PO4, CH4OS, WATER, PROTON = 97.976896, 63.998286, 18.010565, 1.007276


@pytest.fixture(autouse=True)
def one_padded_length(monkeypatch: pytest.MonkeyPatch) -> None:
    """One length, because the step is compiled for each."""
    monkeypatch.setattr(training, "LENGTHS", (9,))


def spectrum_of(
    peptide: str, modified: list[tuple[int, str]], charge: int, energy: float = float("nan")
) -> Spectrum:
    exists = ladder.site_exists(peptide, charge, modified)
    intensity = np.where(exists, 0.5, 0.0).astype(np.float32)
    intensity[0, 0] = 1.0
    return Spectrum(
        peptide, tuple(modified), charge, SHIPPED, "made", energy, intensity, exists, 0.01, 1.0
    )


def some_spectra() -> list[Spectrum]:
    random = np.random.default_rng(8)
    made = []
    for index in range(60):
        peptide = random_peptide(random, 2, 40)
        modified = [(0, "Acetyl")] if index % 3 == 0 else [(len(peptide), "Methyl")]
        made.append(spectrum_of(peptide, modified, index % 6 + 1, 20.0 + index % 20))
    return made


@pytest.fixture(scope="module")
def network() -> Network:
    made = Network(SMALL, seed=4)
    random = np.random.default_rng(5)
    for variable in made.weights.values():
        variable.assign_add(random.normal(0.0, 0.05, variable.shape).astype(np.float32))
    return made


def test_modified_fragments_weigh_what_they_should() -> None:
    mz = ladder.site_mz("SAMK", [(1, "Phospho"), (3, "Oxidation")])
    serine, alanine, methionine, lysine = 87.032028, 71.037114, 131.040485, 128.094963
    b1 = serine + 79.966331 + PROTON
    y2 = methionine + 15.994915 + lysine + WATER + PROTON
    assert mz[0, ladder.COLUMN_OF["b", 1, ""]] == pytest.approx(b1, abs=1e-4)
    assert mz[0, ladder.COLUMN_OF["b", 1, "-H3PO4"]] == pytest.approx(b1 - H3PO4, abs=1e-4)
    assert mz[1, ladder.COLUMN_OF["y", 1, ""]] == pytest.approx(y2, abs=1e-4)
    doubly = (y2 - CH4OS + PROTON) / 2.0
    assert mz[1, ladder.COLUMN_OF["y", 2, "-CH4OS"]] == pytest.approx(doubly, abs=1e-4)
    assert mz[1, ladder.COLUMN_OF["b", 1, ""]] == pytest.approx(b1 + alanine, abs=1e-4)


def test_losses_exist_where_the_fragment_holds_what_loses_them() -> None:
    exists = ladder.site_exists("ASGTYK", 2, [(2, "Phospho"), (4, "Phospho"), (5, "Phospho")])
    b = exists[:, ladder.COLUMN_OF["b", 1, "-H3PO4"]]
    y = exists[:, ladder.COLUMN_OF["y", 1, "-H3PO4"]]
    both = exists[:, ladder.COLUMN_OF["b", 1, "-2H3PO4"]]
    assert b.tolist() == [False, True, True, True, True]
    assert y.tolist() == [True, True, True, False, False]  # phosphotyrosine does not lose it
    assert both.tolist() == [False, False, False, True, True]
    assert not exists[:, ladder.COLUMN_OF["b", 1, "-CH4OS"]].any()


def test_singly_charged_precursor_has_no_doubly_charged_fragment() -> None:
    exists = ladder.site_exists("ASGTYK", 1, [])
    assert not exists[:, np.array(ladder.CHARGE) > 1].any()


def test_cysteines_of_the_data_are_blocked_unless_otherwise_modified() -> None:
    assert blocked("ACC", [(2, "Methyl")]) == ((2, "Methyl"), (3, "Carbamidomethyl"))


def test_fragments_are_read_into_their_sites() -> None:
    sites = from_fragments("y3+1:1.0 b2+2-H3PO4:0.5 y2+1-H2O-H3PO4:0.3 b9+1:0.2", 5)
    assert sites[1, ladder.COLUMN_OF["y", 1, ""]] == 1.0
    assert sites[1, ladder.COLUMN_OF["b", 2, "-H3PO4"]] == 0.5
    assert np.count_nonzero(sites) == 2  # two losses at once have no slot, b9 no bond


def test_phospho_library_hides_what_it_left_out() -> None:
    row = {
        "peptide": "ASMTYKGG",
        "charge": "2",
        "modifications": "2:Phospho;3:Oxidation",
        "nce": "",
        "source": "deepphospho/RPE1_DIA",
        "precursor_mz": "",
        "peaks": "",
        "fragments": "y5+1:1.0 b3+1-H3PO4:0.4 y1+1:0.2",
    }
    spectrum = read_spectrum(row)
    assert spectrum is not None
    assert np.isnan(spectrum.energy)
    assert not spectrum.observed[:, ladder.COLUMN_OF["b", 1, "-CH4OS"]].any()
    assert not spectrum.observed[-1, ladder.COLUMN_OF["y", 1, ""]]  # y1 is under the lowest number
    assert np.count_nonzero(spectrum.intensity) == 2


def test_energy_counts_only_where_its_scale_is_known() -> None:
    assert source_of("elfragmentador_proteometools").scaled
    assert not source_of("pdeep_velos/a.raw").scaled
    assert energy_input(np.array([30.0, 40.0, 20.0, np.nan])).tolist() == [0.0, 1.0, -1.0, 0.0]


def test_every_source_names_a_known_kind() -> None:
    assert {source.like for source in SOURCES} <= set(NAMES)


def test_graph_equals_the_trained_network(network: Network, tmp_path: Path) -> None:
    write_graph(build_graph(network), tmp_path / f"{NAME}.pb")
    spectra = some_spectra()
    for got, wanted in zip(
        Shipped(tmp_path).sites(spectra), predict(network, spectra), strict=True
    ):
        assert np.abs(got - wanted).max() < FLOAT_TOLERANCE * wanted.max()


def test_precursors_of_one_peptidoform_share_its_rows(network: Network, tmp_path: Path) -> None:
    path = tmp_path / f"{NAME}.pb"
    write_graph(build_graph(network), path)
    graph = tf.Graph()
    with graph.as_default():
        tf.import_graph_def(tf.compat.v1.GraphDef.FromString(path.read_bytes()), name="")
    encoded = rows.pad([rows.encode("PEPTIDEK", []), rows.encode("SAMPLERK", [])])
    precursors = np.array([[0, 2, 0.0], [1, 3, 0.5], [0, 3, -1.0], [1, 2, 0.0]], np.float32)
    with tf.compat.v1.Session(graph=graph) as session:

        def run(which: list[int]) -> np.ndarray:
            feed = {"peptidoforms:0": encoded, "precursors:0": precursors[which]}
            return session.run("intensities:0", feed)

        together = run([0, 1, 2, 3])
        for index in range(4):
            assert np.allclose(run([index])[0], together[index], rtol=1e-4)
    assert together.shape == (4, 7, ladder.COUNT)
    assert not np.allclose(together[0], together[2])


def test_energy_of_the_centre_changes_nothing(network: Network) -> None:
    unknown = spectrum_of("PEPTIDEK", [], 2)
    centre = spectrum_of("PEPTIDEK", [], 2, 30.0)
    higher = spectrum_of("PEPTIDEK", [], 2, 35.0)
    first, second, third = predict(network, [unknown, centre, higher])
    assert np.array_equal(first, second)
    assert not np.allclose(first, third)


def test_it_begins_as_the_network_for_plain_peptides(tmp_path: Path) -> None:
    plain = PlainNetwork(PlainShape(width=16, head=32, condition=4), seed=3)
    graph = tmp_path / "msms_charge2.pb"
    write_graph(build_plain(folded.fold(plain, 2), 2), graph)
    begun = Network(SMALL, seed=1)
    begin_from(begun, graph, 2)
    random = np.random.default_rng(4)
    peptides = [random_peptide(random, 7, 20).replace("C", "A") for _ in range(40)]
    shown = [s for s in make_lessons(tmp_path, peptides, 40, 1, {2: 1.0}) if s.charge == 2]
    assert len(shown) == 40
    assert np.median(angles(shown, predict(begun, shown))) > 0.95


def test_training_lowers_the_loss(tmp_path: Path) -> None:
    random = np.random.default_rng(9)
    spectra = []
    for _ in range(300):
        one = spectrum_of(random_peptide(random, 7, 9), [], 2)
        one.intensity[:, 1] *= 0.2  # b ions are weak
        spectra.append(one)
    schedule = Schedule(epochs=6, batch=16, warm_up=5)
    train(spectra, SMALL, schedule, 1, tmp_path, lambda _: None, lambda _: "")
    losses = [float(line.split("\t")[2]) for line in (tmp_path / "log.tsv").open()]
    assert losses[-1] < 0.7 * losses[0]


def test_epoch_holds_small_sources_several_times_and_libraries_in_part() -> None:
    library = [replace(spectrum_of("SAMPLEK", [(1, "Phospho")], 2), group="phospho_x")] * 1000
    velos = [replace(spectrum_of("SAMPLEK", [(3, "Oxidation")], 2), group="pdeep_velos")] * 100
    schedule = Schedule(batch=10, phospho=0.3, repeats=3)
    buckets = fill_buckets(library + velos, schedule)
    shown = sum(len(b[1]) for b in epoch(buckets, schedule, np.random.default_rng(1)))
    assert shown == pytest.approx(600, abs=60)  # four standard deviations of 1000 draws
