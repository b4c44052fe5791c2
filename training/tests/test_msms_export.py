# SPDX-License-Identifier: Apache-2.0
from pathlib import Path

import numpy as np
import pytest
import tensorflow as tf
from conftest import random_peptide

from zav_training import graphs
from zav_training.msms import export, folded, ladder, metrics, predict_trained, vocabulary
from zav_training.msms.network import Network
from zav_training.msms.spectra import Spectrum

#: Float arithmetic in another order: the two differ by a few units in the seventh digit.
FLOAT_TOLERANCE = 1e-5
CHARGES = vocabulary.CHARGES


@pytest.fixture(scope="module", params=CHARGES)
def charge(request: pytest.FixtureRequest) -> int:
    return request.param


@pytest.fixture(scope="module")
def path(network: Network, charge: int, tmp_path_factory: pytest.TempPathFactory) -> Path:
    path = tmp_path_factory.mktemp("graphs") / f"msms_charge{charge}.pb"
    graphs.write_graph(export.build_graph(folded.fold(network, charge), charge), path)
    return path


@pytest.fixture(scope="module")
def run(path: Path) -> graphs.Runner:
    return graphs.Runner(path, export.INPUT, export.OUTPUT)


def some_peptides(charge: int) -> list[str]:
    random = np.random.default_rng(11)
    longest = vocabulary.MAX_LENGTH[charge]
    every = [random_peptide(random, 2, longest) for _ in range(40)]
    return [*every, random_peptide(random, longest, longest), "GK", "W" * longest]


def test_graph_equals_the_trained_network(
    network: Network, run: graphs.Runner, charge: int
) -> None:
    peptides = some_peptides(charge)
    empty = [
        Spectrum(p, charge, 0, np.zeros((len(p) - 1, 11)), np.zeros((len(p) - 1, 11), bool), 0.0)
        for p in peptides
    ]
    ladders = run(vocabulary.one_hot(peptides, charge))
    for peptide, slots, wanted in zip(
        peptides, ladders, predict_trained.predict(network, empty, true_source=False), strict=True
    ):
        got = ladder.slots_to_sites(slots, len(peptide), charge)
        assert np.abs(got - metrics.apply_cut(wanted)).max() < FLOAT_TOLERANCE


def test_prediction_does_not_depend_on_the_batch(run: graphs.Runner, charge: int) -> None:
    peptides = some_peptides(charge)
    together = run(vocabulary.one_hot(peptides, charge))
    alone = [run(vocabulary.one_hot([peptide], charge))[0] for peptide in peptides]
    assert np.abs(together - np.array(alone)).max() < FLOAT_TOLERANCE


def test_base_peak_is_one_and_nothing_is_negative(run: graphs.Runner, charge: int) -> None:
    ladders = run(vocabulary.one_hot(some_peptides(charge), charge))
    assert ladders.shape[1] == ladder.ladder_length(charge)
    assert np.all(ladders >= 0.0)
    assert np.allclose(ladders.max(1), 1.0)


def test_slots_without_a_fragment_are_zero(run: graphs.Runner, charge: int) -> None:
    (slots,) = run(vocabulary.one_hot(["PEPTIDEK"], charge))
    first = 0
    for column in ladder.columns_of_charge(charge):
        size = ladder.slots_of_series(column, charge)
        assert not slots[first + 7 : first + size].any()
        first += size


def test_fragments_over_2000_mz_are_zero(run: graphs.Runner, charge: int) -> None:
    peptide = "W" * vocabulary.MAX_LENGTH[charge]
    sites = ladder.slots_to_sites(
        run(vocabulary.one_hot([peptide], charge))[0], len(peptide), charge
    )
    over = ladder.site_mz(peptide) > 2000.0
    assert over.any()
    assert not sites[over].any()
    assert sites[~over & ladder.site_exists(len(peptide), charge)].all()


@pytest.mark.parametrize("peptide", ["", "A", "x", "xxxx"])
def test_peptide_without_a_bond_predicts_nothing(
    run: graphs.Runner, charge: int, peptide: str
) -> None:
    assert not run(vocabulary.one_hot([peptide], charge)).any()
    assert not run(vocabulary.one_hot([peptide, "PEPTIDEK"], charge))[0].any()


def test_unknown_residues_give_finite_intensities(run: graphs.Runner, charge: int) -> None:
    ladders = run(vocabulary.one_hot(["PEPxIDE", "xPEPTIDE", "PEPTIDEx"], charge))
    assert np.isfinite(ladders).all()
    assert np.allclose(ladders.max(1), 1.0)


def test_all_zero_rows_give_finite_intensities(run: graphs.Runner, charge: int) -> None:
    rows = np.zeros((2, vocabulary.MAX_LENGTH[charge], vocabulary.WIDTH), np.float32)
    assert np.isfinite(run(rows)).all()


def test_file_holds_the_promised_operations(path: Path, charge: int) -> None:
    nodes = {n.name: n for n in tf.compat.v1.GraphDef.FromString(path.read_bytes()).node}
    assert nodes["init"].op == "NoOp"
    assert nodes[export.INPUT].op == "Placeholder"
    shape = [d.size for d in nodes[export.INPUT].attr["shape"].shape.dim]
    assert shape == [-1, vocabulary.MAX_LENGTH[charge], 21]
    assert export.OUTPUT in nodes
    assert not {n.op for n in nodes.values()} & set(graphs.FORBIDDEN)


def test_graph_with_a_variable_is_refused(tmp_path: Path) -> None:
    graph = tf.Graph()
    with graph.as_default():
        tf.compat.v1.get_variable("w", shape=[1], use_resource=True)
        tf.no_op(name="init")
    with pytest.raises(ValueError, match="not frozen"):
        graphs.write_graph(graph, tmp_path / "variable.pb")
