# SPDX-License-Identifier: Apache-2.0
import gzip
import json
from pathlib import Path

import numpy as np
import pytest
from conftest import random_peptide

from zav_training import contract, rows
from zav_training.graphs import write_graph
from zav_training.msms.spectra import is_held_out
from zav_training.rt import __main__ as program
from zav_training.rt import export, recipe, training
from zav_training.rt.data import HEADS, Observation, read_all, scales, weights
from zav_training.rt.directions import COUNT, find_directions
from zav_training.rt.evaluation import compare, predict
from zav_training.rt.network import REACH, UNMAPPED, Network, Shape
from zav_training.rt.shipping import Shipped
from zav_training.rt.training import Schedule, epoch, fill_buckets, robust_loss, train

SMALL = Shape(width=8, mixing=4, pooled=8, hidden=(12, 8))
FLOAT_TOLERANCE = 1e-4
#: Retention by a rule: hydrophobic residues stay longer.
STAYING = {"L": 12.0, "I": 11.0, "F": 14.0, "W": 15.0, "V": 7.0, "M": 6.0, "Y": 5.0}


@pytest.fixture(autouse=True)
def one_padded_length(monkeypatch: pytest.MonkeyPatch) -> None:
    """One length, because the step is compiled for each."""
    monkeypatch.setattr(training, "LENGTHS", (20,))


@pytest.fixture(scope="module")
def table(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """A table in the format of the real one; one source is a bent copy of the scale."""
    random = np.random.default_rng(3)
    lines = ["source\tpeptide\tmodifications\trt\tunit"]
    sources = ["swath_human", "proteometools_irt", "proteometools_small", *HEADS[2:]]
    for index in range(900):
        peptide = random_peptide(random, 7, 20)
        source = sources[index % len(sources)]
        time = sum(STAYING.get(letter, 0.0) for letter in peptide) - len(peptide)
        modified = "1:Oxidation" if peptide[0] == "M" else ""
        time += -8.0 if modified else 0.0
        rt = 0.2 * time + 10.0 if source == "hela_phospho" else time
        lines.append(f"{source}\t{peptide}\t{modified}\t{rt:.3f}\tiRT")
    path = tmp_path_factory.mktemp("rt") / "rt.tsv.gz"
    with gzip.open(path, "wt") as file:
        file.write("\n".join(lines) + "\n")
    return path


@pytest.fixture(scope="module")
def network() -> Network:
    made = Network(SMALL, seed=4)
    random = np.random.default_rng(5)
    for variable in made.weights.values():
        variable.assign_add(random.normal(0.0, 0.1, variable.shape).astype(np.float32))
    return made


def some_peptidoforms() -> list[tuple[str, list[tuple[int, str]]]]:
    random = np.random.default_rng(6)
    peptides = [random_peptide(random, 2, 52) for _ in range(40)]
    return [("GK", []), *((p, [(0, "Acetyl"), (len(p), "Methyl")]) for p in peptides)]


def as_observations(peptidoforms: list[tuple[str, list[tuple[int, str]]]]) -> list[Observation]:
    return [Observation("swath_human", 0, p, list(m), 0.0) for p, m in peptidoforms]


def test_both_proteometools_tables_share_a_head(table: Path) -> None:
    heads = {one.source: one.head for one in read_all(table)}
    assert heads["proteometools_irt"] == heads["proteometools_small"] == UNMAPPED
    assert heads["swath_human"] == 0


def test_scale_is_the_median_and_the_middle_80_percent() -> None:
    times = np.random.default_rng(1).normal(50.0, 20.0, 20_000)
    made = [Observation("swath_human", 0, "PEPTIDEK", [], float(t)) for t in times]
    scale = scales(made)[0]
    assert scale.centre == pytest.approx(50.0, abs=1.0)
    assert scale.width == pytest.approx(20.0, rel=0.03)


def test_small_sources_weigh_more_up_to_three() -> None:
    made = [Observation("swath_human", 0, "PEPTIDEK", [], 0.0)] * 400
    made += [Observation("u2os_dia", 7, "PEPTIDEK", [], 0.0)] * 100
    made += [Observation("hela_phospho", 4, "PEPTIDEK", [], 0.0)] * 4
    assert sorted(set(weights(made).tolist())) == [1.0, 2.0, 3.0]


def test_epoch_gives_each_observation_at_most_once(table: Path) -> None:
    observations = read_all(table)
    batches = list(epoch(fill_buckets(observations), 16, np.random.default_rng(1)))
    assert all(len(b[1]) == 16 for b in batches)
    keys = [row.tobytes() for b in batches for row in rows.pad(list(b[0]))]
    assert len(keys) == len(set(keys)) > 0.8 * len(observations)


def test_loss_is_quadratic_near_zero_and_linear_beyond() -> None:
    values = robust_loss(np.array([0.0, 0.025, 1.0, -1.0], np.float32)).numpy()
    assert values == pytest.approx([0.0, 0.00625, 0.975, 0.975])


def test_maps_are_monotone_and_one_head_has_none(network: Network) -> None:
    line = np.linspace(-2.0 * REACH, 2.0 * REACH, 101, dtype=np.float32)
    mapped = network.mapped(np.repeat(line[:, None], len(HEADS), 1)).numpy()
    assert np.all(np.diff(mapped, axis=0) > 0.0)
    assert mapped[:, UNMAPPED] == pytest.approx(line, abs=1e-5)


def test_untrained_maps_are_the_identity() -> None:
    line = np.linspace(-2.0 * REACH, 2.0 * REACH, 11, dtype=np.float32)
    mapped = Network(SMALL, 1).mapped(np.repeat(line[:, None], len(HEADS), 1)).numpy()
    assert np.allclose(mapped, line[:, None], atol=1e-5)


def test_graph_equals_the_trained_network(network: Network, tmp_path: Path) -> None:
    peptidoforms = some_peptidoforms()
    observations = as_observations(peptidoforms)
    graph = export.build_graph(network, find_directions(network, observations), 40.0, 30.0)
    write_graph(graph, tmp_path / "retention_time.pb")
    got = Shipped(tmp_path).outputs(peptidoforms)
    wanted = predict(network, observations) * 30.0 + 40.0
    assert np.abs(got[:, : len(HEADS)] - wanted).max() < 30.0 * FLOAT_TOLERANCE


def test_directions_differ_from_the_mean_of_the_heads_and_from_one_another(
    network: Network, tmp_path: Path
) -> None:
    observations = as_observations(some_peptidoforms())
    found = find_directions(network, observations)
    write_graph(export.build_graph(network, found, 0.0, 1.0), tmp_path / "retention_time.pb")
    outputs = Shipped(tmp_path).outputs(some_peptidoforms())
    mean = outputs[:, : len(HEADS)].mean(1, keepdims=True)
    apart = outputs[:, len(HEADS) :] - mean
    assert apart.shape[1] == found.weights.shape[1] == min(COUNT, SMALL.hidden[1])
    assert np.abs(apart.mean(0)).max() < FLOAT_TOLERANCE
    products = apart.T @ np.concatenate([apart, mean - mean.mean()], 1)
    others = products - np.eye(*products.shape) * products.diagonal()[:, None]
    assert np.abs(others).max() < 1e-3 * products.diagonal().max()


def test_prediction_does_not_depend_on_the_batch(network: Network) -> None:
    observations = as_observations(some_peptidoforms())
    together = predict(network, observations)
    alone = np.concatenate([predict(network, [one]) for one in observations])
    assert np.abs(together - alone).max() < FLOAT_TOLERANCE


def test_student_takes_over_what_its_teacher_says(table: Path, tmp_path: Path) -> None:
    observations = read_all(table)
    lessons = np.tile(np.linspace(-1.0, 1.0, len(HEADS), dtype=np.float32), (len(observations), 1))
    schedule = Schedule(epochs=6, batch=16, warm_up=5, rate=5e-3, taught=1.0)
    student = train(observations, SMALL, schedule, 1, tmp_path, lambda *_: "", lessons)
    apart = np.abs(predict(student, observations) - lessons)
    assert apart.mean() < 0.1


def test_training_lowers_the_loss(table: Path, tmp_path: Path) -> None:
    schedule = Schedule(epochs=6, batch=16, warm_up=5, rate=5e-3)
    train(read_all(table), SMALL, schedule, 1, tmp_path, lambda *_: "")
    losses = [float(line.split("\t")[2]) for line in (tmp_path / "log.tsv").open()]
    assert losses[-1] < 0.6 * losses[0]


def test_figures_are_those_of_the_errors() -> None:
    observed = np.linspace(0.0, 100.0, 201)
    figures = compare(observed, observed + 2.0)
    assert figures.median == pytest.approx(2.0)
    assert figures.percent == pytest.approx(2.0 / 0.99)
    assert figures.width == pytest.approx(4.0 / 0.99)
    assert figures.bias == pytest.approx(2.0 / 0.99)


def test_one_command_builds_what_ships(
    table: Path, tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    monkeypatch.setattr(recipe, "TEACHER_SHAPE", SMALL)
    monkeypatch.setattr(recipe, "STUDENT_SHAPE", SMALL)
    monkeypatch.setattr(recipe, "TEACHER", Schedule(epochs=1.0, batch=8))
    monkeypatch.setattr(recipe, "STUDENT", Schedule(epochs=1.0, batch=8))
    models = tmp_path / "models"
    assert program.main(["build", str(table), str(tmp_path / "run"), str(models)]) == 0
    fields = contract.read_contract(models / "retention_time.pb")
    assert fields["heads"] == list(HEADS)
    held_out = [o for o in read_all(table) if is_held_out(o.peptide) and o.head == 0]
    assert fields["heldOutObservations"] == len(held_out) > 0
    assert json.loads((tmp_path / "run" / "run.json").read_text())["steps"] > 0
