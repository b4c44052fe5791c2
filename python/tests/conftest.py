# SPDX-License-Identifier: Apache-2.0
import json
import os
import random
import shutil
import subprocess
import sysconfig
from collections.abc import Callable
from pathlib import Path

import numpy as np
import numpy.typing as npt
import pytest

import zav

DATA = Path(os.environ.get("ZAV_TEST_DATA", Path(__file__).resolve().parents[2] / "cli/tests/data"))
RESIDUES = "ACDEFGHIKLMNPQRSTVWY"

Trace = tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]


def random_peptides(count: int, seed: int, shortest: int = 7, longest: int = 25) -> list[str]:
    """Tryptic in looks: any residues, then K or R."""
    chosen = random.Random(seed)
    return [
        "".join(chosen.choices(RESIDUES, k=chosen.randint(shortest, longest) - 1)) + chosen.choice("KR")
        for _ in range(count)
    ]


def gaussians(*peaks: tuple[float, float, float], background: float = 50.0) -> Trace:
    """A chromatogram from 10 to 14 min in steps of 0.01; a peak is (apex, height, sigma)."""
    times = np.linspace(10.0, 13.99, 400, dtype=np.float64)
    heights = np.full(400, background, dtype=np.float64)
    for apex, height, sigma in peaks:
        heights += height * np.exp(-(((times - apex) / sigma) ** 2) / 2)
    return times, heights


@pytest.fixture(scope="session")
def predictor() -> zav.FragmentPredictor:
    return zav.FragmentPredictor()


@pytest.fixture(scope="session")
def detector() -> zav.LimitsDetector:
    return zav.LimitsDetector()


@pytest.fixture(scope="session")
def splitter() -> zav.Splitter:
    return zav.Splitter()


@pytest.fixture(scope="session")
def measured() -> Trace:
    """The chromatogram of AAGGISSLEDAK."""
    trace = json.loads((DATA / "AAGGISSLEDAK.jsonl").read_text().splitlines()[0])
    return np.array(trace["rt"], dtype=float), np.array(trace["intensity"], dtype=float)


@pytest.fixture(scope="session")
def program() -> Callable[..., subprocess.CompletedProcess[str]]:
    """Run the command zav of the environment that the tests run in."""
    path = shutil.which("zav", path=sysconfig.get_path("scripts"))
    assert path, "pip has not installed the command zav"

    def run(*arguments: object, **keywords: object) -> subprocess.CompletedProcess[str]:
        return subprocess.run(  # type: ignore[call-overload, no-any-return]
            [path, *map(str, arguments)], capture_output=True, text=True, check=False, timeout=120, **keywords
        )

    return run
