# SPDX-License-Identifier: Apache-2.0
"""What concerns a whole process: interrupts, the interpreter's lock, the runtime, the command."""

import os
import signal
import subprocess
import sys
import textwrap
import threading
import time
from collections.abc import Callable
from pathlib import Path

from conftest import random_peptides

import zav
from zav import _runtime

Program = Callable[..., subprocess.CompletedProcess[str]]


def run_python(script: str, **variables: str) -> subprocess.CompletedProcess[str]:
    return subprocess.run(
        [sys.executable, "-c", textwrap.dedent(script)],
        capture_output=True,
        text=True,
        check=False,
        timeout=120,
        env=os.environ | variables,
    )


def processor_time(pid: int) -> float:
    """Seconds that a process has computed; on a busy machine time passes without it."""
    fields = Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def test_ctrl_c_ends_a_prediction_within_a_second() -> None:
    script = """
        import random, time, zav
        predictor = zav.FragmentPredictor()
        peptides = ["".join(random.choices("ACDEFGHIKLMNPQRSTVWY", k=25)) for _ in range(300_000)]
        print("ready", flush=True)
        try:
            predictor.predict(peptides, 2)
        except KeyboardInterrupt:
            print(time.process_time(), flush=True)
            print(len(predictor.predict(["PEPTIDEK"], 2)) > 5, flush=True)
        """
    with subprocess.Popen(
        [sys.executable, "-c", textwrap.dedent(script)], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
    ) as process:
        assert process.stdout and process.stdout.readline() == "ready\n"
        ready = processor_time(process.pid)
        while processor_time(process.pid) < ready + 2:  # the prediction takes at least ten times as long
            time.sleep(0.05)
        sent = processor_time(process.pid)
        process.send_signal(signal.SIGINT)
        assert float(process.stdout.readline()) - sent < 1.0
        assert process.stdout.readline() == "True\n"
    assert process.returncode == 0


def test_other_threads_run_during_a_prediction(predictor: zav.FragmentPredictor) -> None:
    peptides = random_peptides(2000, seed=5)  # one piece: one call of the library
    beats = []
    done = threading.Event()

    def beat() -> None:
        while not done.wait(0.001):
            beats.append(time.monotonic())

    watcher = threading.Thread(target=beat)
    watcher.start()
    try:
        start = time.monotonic()
        table = predictor.predict(peptides, 2)
        end = time.monotonic()
    finally:
        done.set()
        watcher.join()
    assert len(table)
    assert sum(start < each < end for each in beats) >= 10


def test_tensorflow_s_python_is_not_imported() -> None:
    result = run_python("""
        import sys, zav
        zav.FragmentPredictor().predict(["PEPTIDEK"], 2)
        print([name for name in sys.modules if name.split(".")[0] in ("tensorflow", "keras")])
        """)
    assert result.stdout == "[]\n", result.stderr


def test_runtime_is_found_in_the_folder_of_the_package_tensorflow(tmp_path: Path) -> None:
    """Its Python code is not run."""
    package = tmp_path / "tensorflow"
    package.mkdir()
    (package / "__init__.py").write_text("raise SystemExit('imported')\n")
    runtime = _runtime.runtime_folder()
    assert runtime
    for library in ("libtensorflow_cc.so.2", "libtensorflow_framework.so.2"):
        (package / library).symlink_to(runtime / library)
    script = """
        import zav
        predicted = len(zav.FragmentPredictor().predict(["PEPTIDEK"], 2)) > 5
        maps = open("/proc/self/maps").read()
        print(predicted, [name for name in ("libtensorflow_cc.so.2",) if name in maps])
        """
    result = run_python(script, ZAV_TENSORFLOW_DIR="", PYTHONPATH=str(tmp_path))
    assert result.stdout == "True ['libtensorflow_cc.so.2']\n", result.stderr


def test_a_missing_runtime_is_an_error(tmp_path: Path) -> None:
    script = """
        import zav
        for make in (zav.FragmentPredictor, zav.LimitsDetector, zav.Splitter):
            try:
                make()
            except zav.Error as error:
                print(type(error).__name__, error.code.name, error)
        try:
            zav.library("proteins.fasta", "library.tsv")
        except zav.Error as error:
            print(type(error).__name__, error.code.name, error)
        """
    result = run_python(script, ZAV_TENSORFLOW_DIR=str(tmp_path))
    expected = (
        f"Error Failure The TensorFlow C library libtensorflow_cc.so.2 was not found in {tmp_path}: install the package"
        " tensorflow-cpu, or name its folder in the environment variable ZAV_TENSORFLOW_DIR\n"
    )
    assert result.stdout == 4 * expected, result.stderr


def test_a_runtime_that_is_none_is_an_error(tmp_path: Path) -> None:
    (tmp_path / "libtensorflow_cc.so.2").write_bytes(b"no library")
    script = """
        import zav
        try:
            zav.FragmentPredictor()
        except zav.Error as error:
            print(error)
        """
    result = run_python(script, ZAV_TENSORFLOW_DIR=str(tmp_path))
    assert result.stdout.startswith("The TensorFlow C library cannot be opened: "), result.stderr


def test_errors_can_be_pickled() -> None:
    result = run_python("""
        import pickle, zav
        error = zav.InvalidInput("wrong", [zav.CaughtAt("f()", "ml/src/Model", 3)])
        copy = pickle.loads(pickle.dumps(error))
        print(type(copy).__name__, copy.code.name, copy.message, copy.trail[0].line, isinstance(copy, ValueError))
        """)
    assert result.stdout == "InvalidInput InvalidInput wrong 3 True\n", result.stderr


def test_command_finds_networks_and_runtime(program: Program, tmp_path: Path) -> None:
    result = program("spectrum", "PEPTIDEK", "2", "--format", "tsv", cwd=tmp_path)
    assert result.returncode == 0 and len(result.stdout.splitlines()) > 5, result.stderr
    assert program("inspect").returncode == 0


def test_command_hands_over_the_exit_code(program: Program) -> None:
    assert program("spectrum", "PEPTIDEX", "2").returncode != 0
    assert program("unknown").returncode == 2


def test_package_is_that_of_the_environment() -> None:
    """Nothing of the sources or a build folder is tested in its place."""
    assert Path(zav.__file__).is_relative_to(sys.prefix)
    maps = Path("/proc/self/maps").read_text()
    loaded = {line.split()[-1] for line in maps.splitlines() if "/libzav_" in line or "/libQt6Core" in line}
    assert len(loaded) >= 4
    assert all(Path(path).is_relative_to(sys.prefix) for path in loaded), loaded
