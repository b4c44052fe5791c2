# SPDX-License-Identifier: Apache-2.0
from dataclasses import replace
from pathlib import Path

import numpy as np
import pytest

from zav_training import graphs
from zav_training.xic import graph, network
from zav_training.xic.frozen import read_weights
from zav_training.xic.graph import LimitsRule, SplitRule
from zav_training.xic.training import Trainer


def varied(size: network.Size) -> dict[str, np.ndarray]:
    """Weights of which no two are alike, the biases included."""
    rng = np.random.default_rng(4)
    initial = network.initial_weights(size, 4)
    return {k: rng.normal(0.0, 0.1, v.shape).astype(np.float32) for k, v in initial.items()}


def test_graph_file_gives_back_its_weights(tmp_path: Path) -> None:
    weights = varied(network.DETECTOR)
    path = tmp_path / "limits.pb"
    graphs.write_graph(graph.limits_graph(weights, LimitsRule((0.1, 0.4))), path)
    found = read_weights(path, network.DETECTOR)
    assert list(found) == list(weights)
    assert all(np.array_equal(found[k], weights[k]) for k in weights)


def test_run_gives_back_its_weights(tmp_path: Path) -> None:
    weights = varied(network.DETECTOR)
    np.savez(tmp_path / "limits.npz", **weights)
    found = read_weights(tmp_path / "limits.npz", network.DETECTOR)
    assert all(np.array_equal(found[k], weights[k]) for k in weights)


def test_weights_of_another_network_are_refused(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    path = tmp_path / "split.pb"
    monkeypatch.setattr(network, "SPLITTER", replace(network.SPLITTER, channels=(8, 8, 8, 8)))
    graphs.write_graph(graph.split_graph(varied(network.SPLITTER), SplitRule((0.1, 0.4))), path)
    with pytest.raises(ValueError, match=r"split\.pb"):
        read_weights(path, network.DETECTOR)


def test_training_begins_with_the_weights_given() -> None:
    weights = varied(network.DETECTOR)
    found = Trainer(network.DETECTOR, 1, weights).weights()
    assert all(np.array_equal(found[k], weights[k]) for k in weights)
