# SPDX-License-Identifier: Apache-2.0
import hashlib
import json
from pathlib import Path

import numpy as np
import pytest
from conftest import SMALL

from zav_training import contract
from zav_training.msms import __main__ as program
from zav_training.msms import comparison, recipe, shipped, vocabulary
from zav_training.msms.batches import epoch, hide_sources, loss_factors
from zav_training.msms.network import Network
from zav_training.msms.sources import GENERIC, SOURCES, SUPPORT, TYPICAL, TYPICAL_MEAN
from zav_training.msms.spectra import Spectrum, read_all
from zav_training.msms.training import Schedule, Trainer, load, train

SHORT = Schedule(epochs=6, batch=16, warm_up=5)


@pytest.fixture(scope="module")
def spectra(data: Path) -> list[Spectrum]:
    return read_all(data)


def test_training_lowers_the_loss(spectra: list[Spectrum], tmp_path: Path) -> None:
    train(spectra, SMALL, SHORT, 1, tmp_path)
    lines = (tmp_path / "log.tsv").read_text().splitlines()
    losses = [float(line.split("\t")[2]) for line in lines]
    assert losses[-1] < 0.8 * losses[0]


def test_saved_network_is_the_trained_one(spectra: list[Spectrum], tmp_path: Path) -> None:
    made = train(spectra, SMALL, Schedule(epochs=1, batch=16), 1, tmp_path)
    again = load(tmp_path)
    for name, variable in made.weights.items():
        assert np.array_equal(variable.numpy(), again.weights[name].numpy())


def test_learning_rate_warms_up_and_ends_at_zero() -> None:
    trainer = Trainer(Network(SMALL, 1), Schedule(rate=1.0, warm_up=10), steps=1000)
    assert trainer.rate_at(0) == pytest.approx(0.1)
    assert trainer.rate_at(500) == pytest.approx(0.5)
    assert trainer.rate_at(1000) == pytest.approx(0.0)


def test_epoch_gives_each_spectrum_at_most_once(spectra: list[Spectrum]) -> None:
    weights = np.ones(len(spectra), np.float32)
    batches = list(epoch(spectra, weights, 16, np.random.default_rng(1)))
    peptides = np.concatenate([b.length for b in batches])
    assert len(spectra) - 2 * 16 <= len(peptides) <= len(spectra)
    keys = {tuple(row[row > 0]) for b in batches for row in b.residues}
    assert keys <= {tuple(vocabulary.encode(s.peptide)) for s in spectra}
    assert len(keys) == len(peptides)  # the random peptides are all different
    assert all(b.mask.shape == b.observed.shape == (*b.residues.shape, 11) for b in batches)


def test_only_orbitrap_sources_become_typical() -> None:
    source = np.arange(len(SOURCES)).repeat(1000)
    hidden = hide_sources(source, 0.2, 0.5, np.random.default_rng(1))
    for index, one in enumerate(SOURCES):
        own = hidden[source == index]
        assert abs(np.mean(own == GENERIC) - 0.2) < 0.05  # 4 standard deviations of 1000 draws
        assert abs(np.mean(own == TYPICAL_MEAN) - 0.5 * one.orbitrap) < 0.06


def test_typical_condition_is_the_mean_of_its_sources(network: Network) -> None:
    charge = np.full(len(TYPICAL), 2, np.int32)
    each = network.condition(charge, np.array(TYPICAL, np.int32)).numpy()
    (mean,) = network.condition(charge[:1], np.array([TYPICAL_MEAN], np.int32)).numpy()
    assert np.allclose(mean, each.mean(0), atol=1e-6)


@pytest.mark.parametrize("charge, sources", [(2, TYPICAL), (5, TYPICAL + SUPPORT)])
def test_shipped_condition_is_that_of_its_charge(
    network: Network, charge: int, sources: tuple[int, ...]
) -> None:
    charges = np.full(len(sources), charge, np.int32)
    each = network.condition(charges, np.array(sources, np.int32)).numpy()
    (shipped_one,) = network.shipped_condition(charges[:1]).numpy()
    assert np.allclose(shipped_one, each.mean(0), atol=1e-6)


def test_loss_factors_multiply() -> None:
    nothing = np.zeros((2, 11), np.float32)
    velos, library = 4, 0
    made = [Spectrum("GAK", z, s, nothing, nothing > 0, 0.0) for z, s in ((5, velos), (2, library))]
    assert loss_factors(made, {5: 2.0}, 3.0).tolist() == [6.0, 1.0]


def test_one_command_builds_what_ships(
    data: Path, tmp_path: Path, monkeypatch: pytest.MonkeyPatch, capsys: pytest.CaptureFixture
) -> None:
    monkeypatch.setattr(recipe, "SHAPE", SMALL)
    models = tmp_path / "models"
    arguments = ["build", str(data), str(tmp_path / "run"), str(models), "--length", "0.005"]
    assert program.main(arguments) == 0
    assert "| orbitrap |" in capsys.readouterr().out
    for charge in range(1, 6):
        check_contract(shipped.graph_path(models, charge), charge)


def check_contract(graph: Path, charge: int) -> None:
    fields = json.loads(graph.with_suffix(".json").read_text())
    assert fields["charge"] == charge
    assert fields["sha256"] == hashlib.sha256(graph.read_bytes()).hexdigest()
    assert sum(fields["seriesSlots"]) == fields["outputShape"][1]
    assert all(not isinstance(value, dict) for value in fields.values())
    assert contract.read_contract(graph) == fields
    graph.write_bytes(graph.read_bytes() + b"\0")
    with pytest.raises(ValueError, match="is not the file"):
        contract.read_contract(graph)


def test_written_predictions_are_compared_with_held_out_rows(data: Path, tmp_path: Path) -> None:
    file = data / "peaks_synthetic.tsv.gz"
    rows = list(comparison.held_out_rows(file))
    lines = [
        f"{r['peptide']}\t{r['charge']}\t{shipped.to_text(comparison.observed_sites(r), 1e-9)}"
        for r in rows
    ]
    predicted = tmp_path / "predicted.tsv"
    predicted.write_text("\n".join(["peptide\tcharge\tfragments", *lines]) + "\n")
    count, angle, correlation = comparison.compare(rows, predicted)
    assert count == len(rows) > 0
    assert angle == pytest.approx(1.0, abs=1e-3)
    assert correlation == pytest.approx(1.0, abs=1e-3)
