# SPDX-License-Identifier: Apache-2.0
import gzip
import json
from pathlib import Path

import numpy as np
import pytest

from zav_training.xic import examples, splits, traces, visible
from zav_training.xic.sets import window
from zav_training.xic.traces import Trace


def record(identifier: str, **fields: object) -> dict:
    rt = [0.5 * i for i in range(20)]
    plain = {"id": identifier, "group": "g", "rt": rt, "rt_unit": "s", "intensity": [1.0] * 20}
    return plain | {"peaks": [], "annotation": "none", "candidates": []} | fields


def write(folder: Path, source: str, records: list[dict]) -> None:
    with gzip.open(folder / f"{source}.jsonl.gz", "wt") as file:
        file.write("\n".join(json.dumps(r) for r in records) + "\n")


def labelled(y: np.ndarray, peak: tuple[float, float], **fields: object) -> Trace:
    plain = {"id": "i", "source": "s", "document": "d", "molecule": "m", "annotation": "software"}
    rt = np.arange(len(y), dtype=float)
    return Trace(**plain, rt=rt, intensity=y, peaks=[peak], **fields)


def bell(points: int, apex: float, sigma: float, height: float = 1e4) -> np.ndarray:
    t = np.arange(points, dtype=float)
    rng = np.random.default_rng(1)
    return height * np.exp(-0.5 * ((t - apex) / sigma) ** 2) + rng.uniform(0.0, 100.0, points)


def in_document(document: str) -> Trace:
    trace = labelled(bell(60, 30, 3), (20, 40))
    trace.document = document
    return trace


def test_times_in_minutes_become_seconds(tmp_path: Path) -> None:
    peaks, candidates = [[1.0, 2.0]], [{"start": 1.0, "end": 1.5}]
    fields = {"rt_unit": "min", "peaks": peaks, "candidates": candidates}
    write(tmp_path, "any", [record("doc|run|g|PEPTIDE/2/light/y7", **fields)])
    [trace] = traces.read_traces(tmp_path, "any")
    assert trace.rt[1] == pytest.approx(30.0)
    assert trace.peaks == [(60.0, 120.0)]
    assert trace.candidates == [(60.0, 90.0)]
    assert trace.molecule == "PEPTIDE"


def test_trace_of_seven_points_is_left_out(tmp_path: Path) -> None:
    write(tmp_path, "any", [record("a", rt=list(range(7)), intensity=[1] * 7), record("b")])
    assert [t.id for t in traces.read_traces(tmp_path, "any")] == ["b"]


def test_run_stands_for_the_document_where_a_file_holds_runs(tmp_path: Path) -> None:
    write(tmp_path, "openms", [record("run7.mzML|x", document="openms")])
    [trace] = traces.read_traces(tmp_path, "openms")
    assert trace.document == "run7.mzML"


def test_document_with_a_limit_drawn_by_a_person_is_for_testing_only() -> None:
    y = bell(60, 30, 3)
    a, b = labelled(y, (20, 40)), labelled(y, (20, 40))
    a.annotation = "manual"
    assert traces.roles([a, b]) == {"d": "test"}


def test_molecule_of_a_held_back_document_is_not_trained_on() -> None:
    y = bell(60, 30, 3)
    held_back, same, other = (labelled(y, (20, 40)) for _ in range(3))
    held_back.annotation = "manual"
    same.document = other.document = next(
        name
        for name in map(str, range(100))
        if traces.roles([in_document(name)])[name] == "training"
    )
    other.molecule = "another"
    parts = traces.split([held_back, same, other])
    assert parts["training"] == [other]
    assert parts["test"] == [held_back]


def test_clear_peak_is_visible_with_its_width() -> None:
    shape = visible.shape_of(labelled(bell(200, 100, 5), (85.0, 115.0)), (85.0, 115.0))
    assert shape is not None and shape.visible
    # a running mean of 3 widens a Gaussian of sigma 5 to sqrt(25 + 2 / 3)
    assert shape.half_width == pytest.approx(2.3548 * np.sqrt(25.0 + 2.0 / 3.0), rel=0.03)
    assert abs(shape.apex - 100) <= 1


def test_label_on_noise_is_not_visible() -> None:
    y = np.random.default_rng(4).uniform(0.0, 100.0, 200)
    shape = visible.shape_of(labelled(y, (85.0, 115.0)), (85.0, 115.0))
    assert shape is not None and not shape.visible


def test_label_on_a_flank_is_not_visible() -> None:
    shape = visible.shape_of(labelled(bell(200, 100, 20), (100.0, 130.0)), (100.0, 130.0))
    assert shape is not None and not shape.visible


def test_deepest_valley_is_relative_to_the_lower_top() -> None:
    assert visible.deepest_valley(np.array([0.0, 8.0, 3.0, 4.0, 1.0])) == pytest.approx(0.25)


def test_window_holds_the_label_and_its_width_on_both_sides() -> None:
    cut = window(labelled(bell(200, 100, 5), (90.0, 110.0)))
    assert (cut.rt[0], cut.rt[-1]) == (70.0, 130.0)


def test_candidates_beside_the_label_do_not_count() -> None:
    y = bell(300, 100, 5) + bell(300, 200, 5)
    trace = labelled(y, (88.0, 112.0), candidates=[(88.0, 112.0), (188.0, 212.0)])
    shape = visible.shape_of(trace, trace.peaks[0])
    assert shape is not None
    for seed in range(20):
        example = examples.real_example(np.random.default_rng(seed), trace, shape)
        high = example.intensity > 0.3 * example.intensity.max()
        counted = example.weights[examples.INSIDE] > 0
        wanted = example.targets[examples.INSIDE] > 0
        assert np.any(wanted)
        assert not np.any(high & counted & ~wanted)


def test_roughened_trace_keeps_its_size_and_stays_measurable() -> None:
    y = bell(200, 100, 5)
    rng = np.random.default_rng(2)
    changed = 0
    for _ in range(200):
        rough = examples.roughened(rng, y)
        assert rough.shape == y.shape
        assert np.all(np.isfinite(rough)) and np.all(rough >= 0.0)
        changed += not np.array_equal(rough, y)
        # no kind of roughening loses or doubles the peak's area, 5 sigma wide as it is
        assert 0.3 < rough[80:121].sum() / y[80:121].sum() < 2.0
    assert 50 < changed < 120


def test_simulated_example_asks_only_for_what_stands_out() -> None:
    rng = np.random.default_rng(8)
    for _ in range(50):
        example = examples.simulated_example(rng, 256)
        assert example.intensity.shape == (256,)
        assert example.targets.shape == example.weights.shape == (2, 256)
        inside, valley = example.targets
        assert np.all(inside[valley > 0] > 0)
        assert np.all(example.weights[examples.VALLEY][inside == 0] == 0)


def test_touching_candidates_with_a_clear_valley_are_neighbours() -> None:
    y = bell(200, 80, 6) + bell(200, 110, 6)
    touching = labelled(y, (60.0, 95.0), candidates=[(60.0, 95.0), (95.0, 130.0)])
    assert splits.neighbours(touching) == [pytest.approx(95, abs=2)]
    apart = labelled(y, (60.0, 95.0), candidates=[(60.0, 88.0), (100.0, 130.0)])
    assert splits.neighbours(apart) == []


def test_background_stretches_hold_no_peak() -> None:
    noise = np.random.default_rng(2).uniform(10.0, 20.0, 128)
    assert examples.calm(noise)
    assert not examples.calm(noise + bell(128, 60, 4, 100.0))
    assert not examples.calm(np.full(128, 7.0))
