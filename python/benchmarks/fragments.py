# SPDX-License-Identifier: Apache-2.0
"""Compares the package's prediction of many peptides with the C++ batch, and with ms2pip where that is installed.

    taskset -c 0 python fragments.py [number of peptides [rounds]]

All run in turn on the same peptides, C++ and Python in one process. Times are processor time; the ratios count. The C++
batch is compiled here, against the libraries of the installed package: this needs g++, the sources' headers and Qt's.
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

CHARGE = 2
MS2PIP_PEPTIDES = 2000  # it takes about ten times as long
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


def cpp_batch(library: ctypes.CDLL, peptides: list[str]) -> tuple[float, int, int]:
    """Return the seconds of one call in C++, its peaks and its peptides."""
    peaks = ctypes.c_longlong()
    seconds = library.batchPredict("\n".join(peptides).encode(), CHARGE, ctypes.byref(peaks))
    if seconds < 0:
        sys.exit("the C++ batch failed")
    return seconds, peaks.value, len(peptides)


def python_batch(predictor: zav.FragmentPredictor, peptides: list[str]) -> tuple[float, int, int]:
    """Return the seconds of one call in Python, its peaks and its peptides."""
    start = time.process_time()
    table = predictor.predict(peptides, CHARGE)
    return time.process_time() - start, len(table), len(peptides)


def ms2pip_batch(peptides: list[str]) -> tuple[float, int, int]:
    """Return the seconds of one call of ms2pip's Python interface, its intensities and its peptides."""
    from ms2pip.core import predict_batch
    from psm_utils import PSM, PSMList

    psms = PSMList(psm_list=[PSM(peptidoform=f"{each}/{CHARGE}", spectrum_id=i) for i, each in enumerate(peptides)])
    start = sum(os.times()[:4])  # of this process and those that it has waited for
    results = predict_batch(psms, model="HCDch2", processes=1)
    seconds = sum(os.times()[:4]) - start
    ions = sum(len(values) for each in results for values in each.predicted_intensity.values())
    return seconds, ions, len(peptides)


def main() -> None:
    """Print the medians of the rounds and their ratios."""
    peptides = random_peptides(int(sys.argv[1]) if len(sys.argv) > 1 else 100_000)
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    predictor = zav.FragmentPredictor()
    with tempfile.TemporaryDirectory() as folder:
        library = compiled_batch(Path(folder))
    if library.batchLoad(str(zav.models_folder()).encode()):
        sys.exit("the C++ batch cannot load the networks")
    calls: dict[str, Callable[[], tuple[float, int, int]]] = {
        "C++": lambda: cpp_batch(library, peptides),
        "Python": lambda: python_batch(predictor, peptides),
    }
    if importlib.util.find_spec("ms2pip"):
        calls["ms2pip"] = lambda: ms2pip_batch(peptides[:: len(peptides) // MS2PIP_PEPTIDES or 1])

    print(
        f"{len(peptides)} peptides, charge {CHARGE}, {rounds} rounds; Python {platform.python_version()}, load", end=" "
    )
    print(*(f"{load:.1f}" for load in os.getloadavg()))
    each: dict[str, list[float]] = {name: [] for name in calls}  # seconds per peptide
    peaks: dict[str, int] = {}
    for _ in range(rounds):
        for name, call in calls.items():
            seconds, peaks[name], count = call()
            each[name].append(seconds / count)
    if abs(peaks["C++"] - peaks["Python"]) > 1e-4 * peaks["C++"]:
        sys.exit(f"the predictions differ: {peaks}")
    for name, times in each.items():
        ratios = [one / other for one, other in zip(times, each["C++"], strict=True)]
        median = statistics.median(times)
        print(f"{name:7} {median * 1e6:6.1f} us per peptide, {1 / median:8.0f} / s,", end=" ")
        print(f"{statistics.median(ratios):5.3f} of C++ ({min(ratios):.3f} to {max(ratios):.3f})")


if __name__ == "__main__":
    main()
