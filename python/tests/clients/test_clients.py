# SPDX-License-Identifier: Apache-2.0
"""Large programs and libraries in one process with the package, which is installed with tensorflow-cpu."""

import subprocess
import sys
import textwrap
from pathlib import Path

import numpy as np
import pytest
from conftest import DATA
from pyteomics import mgf

import zav

pytestmark = pytest.mark.filterwarnings("ignore")  # of the programs, about themselves

PEPTIDE = "LQSRPAAPPAPGPGQLTLR"


def run_python(script: str) -> str:
    result = subprocess.run(
        [sys.executable, "-c", textwrap.dedent(script)], capture_output=True, text=True, check=False, timeout=300
    )
    assert result.returncode == 0, result.stderr
    return result.stdout


def test_spectrum_utils_draws_a_prediction(tmp_path: Path) -> None:
    import matplotlib as mpl

    mpl.use("Agg")
    import matplotlib.pyplot as plt
    from spectrum_utils import plot
    from spectrum_utils.spectrum import MsmsSpectrum

    mz, intensity = zav.FragmentPredictor().spectrum(PEPTIDE, 3)
    spectrum = MsmsSpectrum("predicted", 643.034, 3, mz, intensity)
    spectrum.annotate_proforma(PEPTIDE, 10, "ppm")
    named = {str(annotation) for annotation in spectrum.annotation}
    assert any(name.startswith("y7") for name in named) and any(name.startswith("y9") for name in named)
    figure, axes = plt.subplots()
    plot.spectrum(spectrum, ax=axes)
    figure.savefig(tmp_path / "spectrum.png")
    assert (tmp_path / "spectrum.png").stat().st_size > 5000
    plt.close(figure)


def test_matchms_finds_the_peptide_of_a_measured_spectrum() -> None:
    from matchms import Spectrum
    from matchms.similarity import CosineGreedy

    with mgf.read(str(DATA / f"{PEPTIDE}.mgf"), use_index=False) as reader:
        [measured] = reader
    observed = Spectrum(measured["m/z array"], measured["intensity array"], metadata={})
    predictor = zav.FragmentPredictor()
    scores = {}
    for peptide in (PEPTIDE, "LQSRPAAPPGAPGPQLTLR", PEPTIDE[-2::-1] + "R"):
        mz, intensity = predictor.spectrum(peptide, 3)
        predicted = Spectrum(np.asarray(mz), np.asarray(intensity), metadata={})
        scores[peptide] = float(CosineGreedy(tolerance=0.02).pair(observed, predicted)["score"])
    assert max(scores, key=lambda peptide: scores[peptide]) == PEPTIDE
    assert scores[PEPTIDE] > 0.7


@pytest.mark.parametrize("order", ["import tensorflow, zav", "import zav, tensorflow"])
def test_tensorflow_and_the_package_share_a_process(order: str) -> None:
    alone = zav.FragmentPredictor().spectrum("PEPTIDEK", 2)
    script = f"""
        {order}
        predictor = zav.FragmentPredictor()
        before = predictor.spectrum("PEPTIDEK", 2)
        print(float(tensorflow.reduce_sum(tensorflow.constant([1.0, 2.0, 3.0]))))
        layer = tensorflow.keras.layers.Dense(3)
        print(layer(tensorflow.ones([2, 4])).shape)
        after = predictor.spectrum("PEPTIDEK", 2)
        print(before.mz.tolist() == after.mz.tolist(), len(after.mz))
        maps = open("/proc/self/maps").read()
        print(len({{line.split()[-1] for line in maps.splitlines() if "libtensorflow_cc" in line}}))
        """
    assert run_python(script) == f"6.0\n(2, 3)\nTrue {len(alone.mz)}\n1\n"


def test_tensorflow_loaded_after_a_prediction_works() -> None:
    script = """
        import zav
        count = len(zav.FragmentPredictor().predict(["PEPTIDEK"], 2))
        import tensorflow
        print(count > 5, float(tensorflow.reduce_sum(tensorflow.constant([1.0, 2.0]))))
        """
    assert run_python(script) == "True 3.0\n"


@pytest.mark.parametrize("order", ["from PySide6 import QtCore; import zav", "import zav; from PySide6 import QtCore"])
def test_pyside_and_the_package_share_a_process(order: str) -> None:
    script = f"""
        {order}
        application = QtCore.QCoreApplication([])
        predictor = zav.FragmentPredictor()
        seen = []
        def predict():
            seen.append(len(predictor.predict(["PEPTIDEK"] * 50, 2)))
            QtCore.QTimer.singleShot(10, application.quit)
        QtCore.QTimer.singleShot(0, predict)
        application.exec()
        print(seen[0] > 250, QtCore.QDate(2020, 2, 29).addYears(1).toString("yyyy-MM-dd"))
        try:
            zav.LimitsDetector().detect([3.0, 2.0, 1.0] * 200, [1.0, 9.0, 1.0] * 200, method="walk")
        except zav.InvalidInput as error:
            print(error)
        lines = open("/proc/self/maps").read().splitlines()
        print(len({{line.split()[-1] for line in lines if "libQt6Core" in line}}))
        """
    assert run_python(script) == "True 2021-02-28\nStart is greater than end\n2\n"


def test_pyside_threads_predict() -> None:
    script = """
        from PySide6 import QtCore
        import zav
        predictor = zav.FragmentPredictor()
        class Worker(QtCore.QThread):
            def run(self):
                self.count = len(predictor.predict(["LGGNEQVTR"] * 500, 2))
        application = QtCore.QCoreApplication([])
        workers = [Worker() for _ in range(4)]
        for worker in workers:
            worker.start()
        for worker in workers:
            worker.wait()
        print(len({worker.count for worker in workers}), workers[0].count % 500, workers[0].count > 0)
        """
    assert run_python(script) == "1 0 True\n"
