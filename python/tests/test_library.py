# SPDX-License-Identifier: Apache-2.0
import os
import random
import signal
import subprocess
import sys
import textwrap
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

import pytest

import zav

Program = Callable[..., subprocess.CompletedProcess[str]]


def write_proteins(path: Path, count: int) -> Path:
    chosen = random.Random(count)
    with path.open("w") as file:
        for number in range(count):
            sequence = "".join(chosen.choices("ACDEFGHIKLMNPQRSTVWY", k=400))
            file.write(f">sp|P{number:05}|PROT{number}_TEST A protein GN=GENE{number}\n{sequence}\n")
    return path


@pytest.fixture(scope="session")
def few(tmp_path_factory: pytest.TempPathFactory) -> Path:
    return write_proteins(tmp_path_factory.mktemp("few") / "proteins.fasta", 5)


@pytest.fixture(scope="session")
def many(tmp_path_factory: pytest.TempPathFactory) -> Path:
    """Proteins whose library takes one thread some seconds, so that there is progress to tell."""
    return write_proteins(tmp_path_factory.mktemp("many") / "proteins.fasta", 800)


def test_library_is_that_of_the_program(few: Path, tmp_path: Path, program: Program) -> None:
    ours, theirs = tmp_path / "ours.tsv", tmp_path / "theirs.tsv"
    messages = zav.library(
        few,
        ours,
        charges=[2, 3, 4],
        variable=["Oxidation@M", "Acetyl@protein-N-term"],
        fixed="Carbamidomethyl@C",
        decoys="shuffled",
        decoy_seed=7,
        max_length=20,
        min_intensity=0.05,
        no_losses=True,
        low_memory=False,
        skipped=tmp_path / "skipped.tsv",
    )
    result = program(
        *["library", few, "-o", theirs, "--charges", "2,3,4", "--variable", "Oxidation@M"],
        *["--variable", "Acetyl@protein-N-term", "--fixed", "Carbamidomethyl@C", "--decoys", "shuffled"],
        *["--decoy-seed", 7, "--max-length", 20, "--min-intensity", 0.05, "--no-losses"],
    )
    assert result.returncode == 0, result.stderr
    assert len(ours.read_text().splitlines()) > 1000
    assert ours.read_bytes() == theirs.read_bytes()
    assert messages and all(message and not message.startswith("zav:") for message in messages)
    assert (tmp_path / "skipped.tsv").exists()


def test_options_reach_the_program(few: Path, tmp_path: Path) -> None:
    sizes = {}
    options: dict[str, Any] = {"one": {"charges": 2}, "text": {"charges": "2"}, "several": {"charges": (2, 3)}}
    for name, given in options.items():
        zav.library(str(few), str(tmp_path / f"{name}.msp"), **given)
        sizes[name] = (tmp_path / f"{name}.msp").stat().st_size
    assert sizes["one"] == sizes["text"] < sizes["several"]


def test_progress_is_told_from_the_program_s_bar(many: Path, tmp_path: Path) -> None:
    calls: list[tuple[int, int, str]] = []
    zav.library(many, tmp_path / "library.msp", progress=lambda *call: calls.append(call), charges=2, threads=1)
    assert len(calls) >= 2
    for done, total, unit in calls:
        assert 0 <= done <= total and unit
    assert len({unit for _, _, unit in calls}) <= 2
    last_unit = [call for call in calls if call[2] == calls[-1][2]]
    assert [done for done, _, _ in last_unit] == sorted(done for done, _, _ in last_unit)
    assert last_unit[-1][1] > 1000


def test_an_exception_of_the_callback_ends_the_program(many: Path, tmp_path: Path) -> None:
    def stop(done: int, total: int, unit: str) -> None:
        raise RuntimeError("enough")

    with pytest.raises(RuntimeError, match="^enough$"):
        zav.library(many, tmp_path / "library.msp", progress=stop, threads=1)
    assert list(tmp_path.iterdir()) == []


def test_ctrl_c_ends_the_program_and_leaves_nothing(many: Path, tmp_path: Path) -> None:
    script = """
        import sys, zav
        def tell(*progress):
            print("running", flush=True)
        try:
            zav.library(sys.argv[1], sys.argv[2], progress=tell, charges="1-6", threads=1)
        except KeyboardInterrupt:
            print("interrupted", flush=True)
        """
    command = [sys.executable, "-c", textwrap.dedent(script), str(many), str(tmp_path / "library.msp")]
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
        assert process.stdout and process.stdout.readline() == "running\n"
        process.send_signal(signal.SIGINT)
        assert process.stdout.read().endswith("interrupted\n")
    assert process.returncode == 0
    deadline = time.monotonic() + 10
    while list(tmp_path.iterdir()) and time.monotonic() < deadline:
        time.sleep(0.1)
    assert list(tmp_path.iterdir()) == []


def test_a_file_that_cannot_be_read_is_an_error(tmp_path: Path) -> None:
    with pytest.raises(zav.Error, match=r"missing\.fasta") as caught:
        zav.library(tmp_path / "missing.fasta", tmp_path / "library.msp")
    assert caught.value.code == zav.ErrorCode.Failure
    assert list(tmp_path.iterdir()) == []


@pytest.mark.parametrize(
    ("options", "message"),
    [
        ({"charges": [7]}, "--charges"),
        ({"variable": "Unheard@M"}, "--variable 'Unheard@M'"),
        ({"enzyme": "none of them"}, "none of them"),
        ({"min_intensity": 2}, "--min-intensity is not within 0 to 1"),
        ({"min_length": -3}, ""),
        ({"format": "--help"}, "--format '--help'"),
    ],
)
def test_options_out_of_range_are_refused(few: Path, tmp_path: Path, options: dict[str, Any], message: str) -> None:
    with pytest.raises(zav.InvalidInput) as caught:
        zav.library(few, tmp_path / "library.msp", **options)
    assert message in str(caught.value) and str(caught.value)
    assert list(tmp_path.iterdir()) == []


@pytest.mark.parametrize(
    "options",
    [
        {"unknown": 1},
        {"isotopes": 1},
        {"top": True},
        {"top": None},
        {"charges": {2, 3}},
        {"fixed": b"Carbamidomethyl@C"},
    ],
)
def test_options_of_other_types_are_refused(few: Path, tmp_path: Path, options: dict[str, Any]) -> None:
    with pytest.raises(TypeError):
        zav.library(few, tmp_path / "library.msp", **options)


def test_streams_are_refused(few: Path) -> None:
    for arguments in (("-", "library.msp"), (few, "-")):
        with pytest.raises(zav.InvalidInput, match="^fasta and output must be files$"):
            zav.library(*arguments)


def test_names_that_look_like_options_are_files(few: Path, tmp_path: Path) -> None:
    (tmp_path / "--help").write_bytes(few.read_bytes())
    before = Path.cwd()
    os.chdir(tmp_path)
    try:
        zav.library("--help", "-v.msp", charges=2)
    finally:
        os.chdir(before)
    assert (tmp_path / "-v.msp").stat().st_size > 1000


def test_messages_beyond_ascii_survive(few: Path, tmp_path: Path) -> None:
    with pytest.raises(zav.Error, match="Bücher-蛋白"):
        zav.library(tmp_path / "Bücher-蛋白.fasta", tmp_path / "library.msp")
