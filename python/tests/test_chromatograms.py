# SPDX-License-Identifier: Apache-2.0
import csv
import io
import subprocess
import tracemalloc
from collections.abc import Callable
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from typing import Any

import numpy as np
import numpy.typing as npt
import pytest
from conftest import DATA, Trace, gaussians

import zav

Program = Callable[..., subprocess.CompletedProcess[str]]
Floats = npt.NDArray[np.float64]


def test_two_gaussians_are_two_peaks(detector: zav.LimitsDetector) -> None:
    start, end = detector.detect(*gaussians((11.0, 10000, 0.05), (12.5, 4000, 0.06)))
    assert start.dtype == end.dtype == np.float64
    assert len(start) == len(end) == 2
    assert start[0] < 11.0 < end[0] < start[1] < 12.5 < end[1]


def test_walk_stops_at_its_share_of_the_apex() -> None:
    detector = zav.LimitsDetector(limit_threshold=0.5, smoothing_pass_count=0)
    start, end = detector.detect(*gaussians((12.0, 10000, 0.1), background=0.0), method="walk")
    # A Gaussian falls to a half at 1.17741 sigma; the walk ends at the next of the points, 0.01 apart.
    assert start[0] == pytest.approx(12.0 - 0.117741, abs=0.011)
    assert end[0] == pytest.approx(12.0 + 0.117741, abs=0.011)


def test_valley_between_two_peaks_is_a_split(splitter: zav.Splitter) -> None:
    time, probability = splitter.split(*gaussians((11.8, 10000, 0.08), (12.2, 9000, 0.08)))
    assert time.dtype == probability.dtype == np.float64
    assert 1 <= len(time) == len(probability) <= 4
    assert 11.9 < time[0] < 12.1
    assert ((probability >= 0.5) & (probability <= 1.0)).all()
    assert (np.diff(probability) <= 0).all()


def read_tsv(text: str) -> list[dict[str, str]]:
    return list(csv.DictReader(io.StringIO(text), delimiter="\t"))


def column(rows: list[dict[str, str]], name: str) -> list[float]:
    [key] = {key for row in rows for key in row if key == name or key.startswith(name + "_")} or {name}
    return [float(row[key]) for row in rows]


@pytest.mark.parametrize("method", ["network", "walk"])
def test_limits_are_those_of_the_program(
    detector: zav.LimitsDetector,
    program: Program,
    measured: Trace,
    method: Any,  # noqa: ANN401
) -> None:
    arguments = ["--max-point-count", 8192, "--method", method, "--format", "tsv"]
    result = program("limits", DATA / "AAGGISSLEDAK.jsonl", *arguments)
    assert result.returncode == 0, result.stderr
    told = read_tsv(result.stdout)
    found = sorted(zip(*detector.detect(*measured, method=method), strict=True), key=lambda limits: limits[0])
    assert len(told) >= 1
    np.testing.assert_allclose(column(told, "start"), [start for start, _ in found], atol=1e-4)
    np.testing.assert_allclose(column(told, "end"), [end for _, end in found], atol=1e-4)


def test_limits_with_a_hint_are_those_of_the_program(program: Program, tmp_path: Path) -> None:
    times, intensities = gaussians((11.0, 100000, 0.05), (12.5, 150, 0.06), background=20.0)
    file = tmp_path / "trace.tsv"
    rows = zip(times.tolist(), intensities.tolist(), strict=True)
    file.write_text("rt\tintensity\n" + "".join(f"{time!r}\t{intensity!r}\n" for time, intensity in rows))
    detector = zav.LimitsDetector()
    counts = set()
    for hint in (None, 12.5):
        arguments = [] if hint is None else ["--hint", hint]
        result = program("limits", file, "--max-point-count", 8192, "--format", "tsv", *arguments)
        assert result.returncode == 0, result.stderr
        start, end = detector.detect(times, intensities, hint=hint)
        told = read_tsv(result.stdout)
        np.testing.assert_allclose(column(told, "start"), start, atol=1e-4)
        np.testing.assert_allclose(column(told, "end"), end, atol=1e-4)
        counts.add(tuple(start))
    assert len(counts) == 2, "the hint changed nothing"


def test_splits_are_those_of_the_program(program: Program, tmp_path: Path) -> None:
    times, intensities = gaussians((11.8, 10000, 0.08), (12.2, 9000, 0.08))
    file = tmp_path / "trace.tsv"
    rows = zip(times.tolist(), intensities.tolist(), strict=True)
    file.write_text("rt\tintensity\n" + "".join(f"{time!r}\t{intensity!r}\n" for time, intensity in rows))
    result = program("split", file, "--max-point-count", 512, "--format", "tsv")
    assert result.returncode == 0, result.stderr
    found = zav.Splitter(max_point_count=512).split(times, intensities)
    told = read_tsv(result.stdout)
    order = np.argsort(found.time)
    np.testing.assert_allclose(column(told, "split"), found.time[order], atol=1e-4)


def test_short_chromatograms_have_no_peaks(detector: zav.LimitsDetector, splitter: zav.Splitter) -> None:
    for count in (0, 1, 4):
        times = np.arange(float(count))
        for arrays in (detector.detect(times, times), splitter.split(times, times)):
            assert all(array.shape == (0,) and array.dtype == np.float64 for array in arrays)
    assert len(detector.detect([], [], method="walk").start) == 0


def test_other_arrays_are_converted(detector: zav.LimitsDetector, splitter: zav.Splitter) -> None:
    times, intensities = gaussians((11.8, 10000, 0.08), (12.2, 9000, 0.08))
    times = np.round(times * 128) / 128  # exact in all types below
    intensities = np.round(intensities)
    for each in (detector.detect, splitter.split):
        expected = each(times, intensities)
        for given in (
            (times.tolist(), intensities.tolist()),
            (times.astype(np.float32), intensities.astype(np.int32)),
            (times.astype(">f8"), intensities.astype(np.uint16)),
            (np.column_stack([times, times])[:, 1], np.repeat(intensities, 3)[::3]),
            (times[::-1].copy()[::-1], intensities[::-1].copy()[::-1]),
        ):
            np.testing.assert_array_equal(each(*given), expected)


def peak_memory(call: Callable[[], object]) -> int:
    """Bytes of Python's and numpy's memory that a call held at once."""
    call()
    tracemalloc.start()
    try:
        call()
        return tracemalloc.get_traced_memory()[1]
    finally:
        tracemalloc.stop()


@pytest.mark.parametrize("stride", [1, 3])
def test_arrays_of_float64_are_not_copied(stride: int) -> None:
    count = 1_000_000
    times = np.arange(float(count * stride))[::stride]
    intensities = np.ones(count * stride)[::stride]
    detector = zav.LimitsDetector(max_point_count=1024)
    assert peak_memory(lambda: detector.detect(times, intensities)) < 2 * count  # one bool each, of the check for NaN
    single = intensities.astype(np.float32)
    assert peak_memory(lambda: detector.detect(times, single)) > 8 * count  # the measure sees a copy where there is one


@pytest.mark.parametrize("wrong", [np.ones((3, 3)), np.float64(3), np.ones((9, 1))])
def test_other_shapes_are_refused(detector: zav.LimitsDetector, splitter: zav.Splitter, wrong: Any) -> None:  # noqa: ANN401
    for each in (detector.detect, splitter.split):
        with pytest.raises(zav.InvalidInput, match=rf"^rt has {np.ndim(wrong)} dimensions, must have 1$"):
            each(wrong, np.ones(9))
        with pytest.raises(zav.InvalidInput, match=rf"^intensity has {np.ndim(wrong)} dimensions, must have 1$"):
            each(np.ones(9), wrong)


def test_unequal_lengths_are_refused(detector: zav.LimitsDetector, splitter: zav.Splitter) -> None:
    for each in (detector.detect, splitter.split):
        with pytest.raises(zav.InvalidInput, match="^rt has 8 values and intensity 9$"):
            each(np.ones(8), np.ones(9))


@pytest.mark.parametrize("wrong", [["a"] * 9, [None] * 9, [1j] * 9, np.array(["2020-01-01"] * 9, "datetime64[D]")])
def test_other_types_are_refused(detector: zav.LimitsDetector, splitter: zav.Splitter, wrong: Any) -> None:  # noqa: ANN401
    for each in (detector.detect, splitter.split):
        with pytest.raises(TypeError, match="^intensity is of type .*, must be of real numbers$"):
            each(np.arange(9.0), wrong)


@pytest.mark.parametrize("value", [float("nan"), float("inf")])
def test_times_that_are_not_finite_are_refused(
    detector: zav.LimitsDetector, splitter: zav.Splitter, value: float
) -> None:
    times, intensities = gaussians((12.0, 10000, 0.1))
    times[7] = value
    for each in (detector.detect, splitter.split):
        with pytest.raises(zav.InvalidInput, match="^rt holds a value that is not finite$"):
            each(times, intensities)


def test_intensities_that_are_not_finite_are_taken(detector: zav.LimitsDetector, splitter: zav.Splitter) -> None:
    times, intensities = gaussians((12.0, 10000, 0.1))
    intensities[[3, 390]] = np.nan
    start, end = detector.detect(times, intensities)
    assert ((start < 12.0) & (end > 12.0)).any()
    splitter.split(times, intensities)


def test_descending_times_are_refused_with_the_library_s_trail(detector: zav.LimitsDetector) -> None:
    times, intensities = gaussians((12.0, 10000, 0.1))
    with pytest.raises(zav.InvalidInput, match="^Start is greater than end$") as caught:
        detector.detect(times[::-1], intensities)
    assert caught.value.code == zav.ErrorCode.InvalidInput
    assert any(place.file.startswith("ml/src/") and place.line > 0 for place in caught.value.trail)


@pytest.mark.parametrize("hint", [-1.0, -5, float("nan"), float("inf")])
def test_wrong_hints_are_refused(detector: zav.LimitsDetector, hint: float) -> None:
    with pytest.raises(zav.InvalidInput, match="^hint is .*, must be finite and above -1$"):
        detector.detect(*gaussians((12.0, 10000, 0.1)), hint=hint)


def test_wrong_methods_are_refused(detector: zav.LimitsDetector) -> None:
    trace = gaussians((12.0, 10000, 0.1))
    with pytest.raises(zav.InvalidInput, match="^method 'guess' is neither 'network' nor 'walk'$"):
        detector.detect(*trace, method="guess")  # type: ignore[arg-type]
    with pytest.raises(zav.InvalidInput, match="^hint needs the method 'network'$"):
        detector.detect(*trace, hint=12.0, method="walk")


@pytest.mark.parametrize(
    ("kind", "options", "message"),
    [
        (zav.LimitsDetector, {"max_point_count": 200}, "maxPointCount"),
        (zav.LimitsDetector, {"probability_tolerance": 1.5}, "probabilityTolerance"),
        (zav.LimitsDetector, {"probability_tolerance": float("nan")}, "probabilityTolerance"),
        (zav.LimitsDetector, {"dbscan_epsilon": 0}, "dbscanEpsilon"),
        (zav.LimitsDetector, {"dbscan_min_points": 0}, "dbscanMinPoints"),
        (zav.LimitsDetector, {"min_point_count": -1}, "minPointCount"),
        (zav.LimitsDetector, {"smoothing_pass_count": -1}, "smoothingPassCount"),
        (zav.LimitsDetector, {"gaussian_filter_size": 0}, "gaussianFilterSize"),
        (zav.LimitsDetector, {"limit_threshold": 1}, "limitThreshold"),
        (zav.LimitsDetector, {"max_point_count": 2**40}, "max_point_count is 1099511627776"),
        (zav.Splitter, {"max_point_count": 2**24 + 1}, "maxPointCount"),
        (zav.Splitter, {"probability_tolerance": -0.1}, "probabilityTolerance"),
        (zav.Splitter, {"gaussian_filter_size": 2**20 + 1}, "gaussianFilterSize"),
        (zav.Splitter, {"smoothing_pass_count": -1}, "smoothingPassCount"),
    ],
)
def test_options_out_of_range_are_refused(kind: Callable[..., object], options: dict[str, Any], message: str) -> None:
    with pytest.raises(zav.InvalidInput, match=message):
        kind(**options)


@pytest.mark.parametrize("options", [{"max_point_count": 500.5}, {"limit_threshold": "0.1"}, {"unknown": 1}])
def test_options_of_other_types_are_refused(options: dict[str, Any]) -> None:
    with pytest.raises(TypeError):
        zav.LimitsDetector(**options)


def test_options_have_their_effect() -> None:
    trace = gaussians((11.0, 10000, 0.05), (12.5, 4000, 0.06))
    assert len(zav.LimitsDetector(min_point_count=400).detect(*trace).start) == 0
    strict = zav.LimitsDetector(probability_tolerance=0.1).detect(*trace)
    lenient = zav.LimitsDetector(probability_tolerance=0.95).detect(*trace)
    assert (lenient.end - lenient.start).sum() > (strict.end - strict.start).sum()
    assert len(zav.Splitter(probability_tolerance=0.0).split(*trace).time) == 0


@pytest.mark.parametrize("kind", [zav.LimitsDetector, zav.Splitter])
def test_a_network_that_is_missing_is_named(kind: Callable[..., object], tmp_path: Path) -> None:
    with pytest.raises(zav.Error, match=rf"^no network xic_(limits|split).pb in {tmp_path}$"):
        kind(models=tmp_path)
    for name in ("xic_limits.pb", "xic_split.pb"):
        (tmp_path / name).write_bytes(b"no graph")
    with pytest.raises(zav.Error) as caught:
        kind(models=tmp_path)
    assert caught.value.code == zav.ErrorCode.Failure and caught.value.trail


def test_threads_may_share_readers(detector: zav.LimitsDetector, splitter: zav.Splitter) -> None:
    traces = [gaussians((11.0 + 0.1 * step, 10000, 0.05), (12.5, 4000, 0.06)) for step in range(12)]
    for each in (detector.detect, splitter.split):
        expected = [each(*trace) for trace in traces]
        with ThreadPoolExecutor(6) as pool:
            found = list(pool.map(lambda trace, each=each: each(*trace), traces))
        for one, other in zip(expected, found, strict=True):
            np.testing.assert_array_equal(one, other)
