# SPDX-License-Identifier: Apache-2.0
"""Compares the package's prediction of many peptides with the C++ batch, and with ms2pip where that is installed.

    taskset -c 0 python fragments.py [number of peptides]

All run in turn, in one process and on the same peptides; the ratios count, not the times. The C++ batch is compiled
here, against the libraries of the installed package: this needs the headers of the sources, g++ and those of Qt.
"""

import ctypes
import importlib.util
import os
import platform
import random
import statistics
import subprocess
import sys
import tempfile
import time
from collections.abc import Callable
from pathlib import Path

import zav

ROUNDS = 5
CHARGE = 2
ROOT = Path(__file__).resolve().parents[2]
PACKAGE = Path(zav.__file__).parent


def random_peptides(count: int) -> list[str]:
    """Return peptides of 7 to 25 residues."""
    chosen = random.Random(1)
    return ["".join(chosen.choices("ACDEFGHIKLMNPQRSTVWY", k=chosen.randint(7, 25))) for _ in range(count)]


def compiled_batch(folder: Path) -> ctypes.CDLL:
    """Return batch.cpp, linked with the libraries that the package has loaded."""
    flags = subprocess.run(["pkg-config", "--cflags", "Qt6Core"], check=True, capture_output=True, text=True)
    includes = [f"-I{ROOT / layer / 'include'}" for layer in ("common/stable", "common/core_mini", "ml")]
    libraries = [*(PACKAGE / "lib").glob("libzav_*.so*"), *PACKAGE.parent.glob("zav.libs/libQt6Core*.so*")]
    output = folder / "libbatch.so"
    source = Path(__file__).with_name("batch.cpp")
    command = ["g++", "-std=c++17", "-O2", "-fPIC", "-shared", *flags.stdout.split(), *includes, source, "-o", output]
    allow = "-Wl,--allow-shlib-undefined"
    subprocess.run([str(part) for part in [*command, *libraries, allow]], check=True)
    library = ctypes.CDLL(str(output))
    library.batchPredict.restype = ctypes.c_double
    return library


def cpp_batch(library: ctypes.CDLL, peptides: list[str]) -> tuple[float, int]:
    """Return the seconds of one call in C++ and how many peaks it gave."""
    peaks = ctypes.c_longlong()
    seconds = library.batchPredict("\n".join(peptides).encode(), CHARGE, ctypes.byref(peaks))
    if seconds < 0:
        sys.exit("the C++ batch failed")
    return seconds, peaks.value


def python_batch(predictor: zav.FragmentPredictor, peptides: list[str]) -> tuple[float, int]:
    """Return the seconds of one call in Python and how many peaks it gave."""
    start = time.perf_counter()
    table = predictor.predict(peptides, CHARGE)
    return time.perf_counter() - start, len(table)


def ms2pip_batch(peptides: list[str]) -> tuple[float, int]:
    """Return the seconds of one call of ms2pip's Python interface and how many intensities it gave."""
    from ms2pip.core import predict_batch  # type: ignore[import-not-found, unused-ignore]
    from psm_utils import PSM, PSMList  # type: ignore[import-not-found, unused-ignore]

    psms = PSMList(psm_list=[PSM(peptidoform=f"{each}/{CHARGE}", spectrum_id=i) for i, each in enumerate(peptides)])
    start = time.perf_counter()
    results = predict_batch(psms, model="HCD2021", processes=1)
    seconds = time.perf_counter() - start
    return seconds, sum(len(ions) for each in results for ions in each.predicted_intensity.values())


def main() -> None:
    """Print the medians of the rounds and their ratios."""
    peptides = random_peptides(int(sys.argv[1]) if len(sys.argv) > 1 else 100_000)
    predictor = zav.FragmentPredictor()
    with tempfile.TemporaryDirectory() as folder:
        library = compiled_batch(Path(folder))
    if library.batchLoad(str(zav.models_folder()).encode()):
        sys.exit("the C++ batch cannot load the networks")
    calls: dict[str, Callable[[], tuple[float, int]]] = {
        "C++": lambda: cpp_batch(library, peptides),
        "Python": lambda: python_batch(predictor, peptides),
    }
    if importlib.util.find_spec("ms2pip"):
        calls["ms2pip"] = lambda: ms2pip_batch(peptides)

    print(
        f"{len(peptides)} peptides, charge {CHARGE}, {ROUNDS} rounds; Python {platform.python_version()}, load", end=" "
    )
    print(*(f"{load:.1f}" for load in os.getloadavg()))
    seconds: dict[str, list[float]] = {name: [] for name in calls}
    peaks: dict[str, int] = {}
    for _ in range(ROUNDS):
        for name, call in calls.items():
            passed, peaks[name] = call()
            seconds[name].append(passed)
    if abs(peaks["C++"] - peaks["Python"]) > 1e-4 * peaks["C++"]:
        sys.exit(f"the predictions differ: {peaks}")
    for name, each in seconds.items():
        ratios = [one / other for one, other in zip(each, seconds["C++"], strict=True)]
        median = statistics.median(each)
        print(
            f"{name:7} {median:7.2f} s  {len(peptides) / median:8.0f} / s  {statistics.median(ratios):5.2f} of C++ ",
            end="",
        )
        print(f"({min(ratios):.2f} to {max(ratios):.2f})")


if __name__ == "__main__":
    main()
