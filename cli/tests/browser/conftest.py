# SPDX-License-Identifier: Apache-2.0
"""Reports that the program made, and a browser without a window."""

import json
import math
import os
import pathlib
import shutil
import subprocess

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"


def trace(name, count=200, peaks=((100, 5000, 5),), **more):
    """A JSON line: a baseline that flickers, and peaks (apex, height, sigma). Without peaks it is 0 throughout."""
    intensities = [
        bool(peaks) * (20 + i * 7919 % 11) + sum(h * math.exp(-0.5 * ((i - a) / s) ** 2) for a, h, s in peaks)
        for i in range(count)
    ]
    line = {"id": name, "rt": list(range(count)), "intensity": intensities, "rt_unit": "s", **more}
    return json.dumps(line) + "\n"


class Workplace:
    """A folder in which the program makes a report from traces, with the same traces as a table."""

    def __init__(self, folder):
        self.folder = folder

    def report(self, name, lines, *arguments, **how):
        source = self.folder / f"{name}.jsonl"
        source.write_text(lines, encoding="utf-8")
        return self.report_of(name, [source], *arguments, **how)

    def report_of(self, name, sources, *arguments, command="limits", exit_code=0):
        report = self.folder / f"{name}.html"
        table = self.folder / f"{name}.tsv"
        self.run(command, *sources, "--report", report, "-o", table, *arguments, exit_code=exit_code)
        return report

    def spectra_report(self, name, peptides, run, *arguments, exit_code=0):
        """Of peptides (peptide, charge, scan); the table has the scores."""
        source = self.list(f"{name}.peptides.tsv", ("peptide", "charge", "scan"), peptides)
        report = self.folder / f"{name}.html"
        outputs = ("--report", report, "--scores", self.folder / f"{name}.tsv", "-o", self.folder / f"{name}.json")
        self.run("spectrum", "--peptides", source, "--against", run, *outputs, *arguments, exit_code=exit_code)
        return report

    def predictions(self, name, peptides):
        """An MGF file of the predicted spectra of peptides, each with the title PEPTIDE/CHARGE."""
        source = self.list(f"{name}.tsv", ("peptide", "charge"), peptides)
        predicted = self.folder / f"{name}.mgf"
        self.run("spectrum", "--peptides", source, "-o", predicted)
        return predicted

    def list(self, name, *rows):
        path = self.folder / name
        lines = [rows[0], *rows[1]]
        path.write_text("".join("\t".join(map(str, line)) + "\n" for line in lines), encoding="utf-8")
        return path

    def run(self, *arguments, exit_code=0):
        program = [os.environ["ZAV_PROGRAM"], *map(str, arguments)]
        run = subprocess.run(program, capture_output=True, check=False)
        assert run.returncode == exit_code, run.stderr.decode()

    def rows(self, name):
        lines = (self.folder / f"{name}.tsv").read_text(encoding="utf-8").splitlines()
        return [line.split("\t") for line in lines]


@pytest.fixture(scope="session")
def workplace(tmp_path_factory):
    return Workplace(tmp_path_factory.mktemp("reports"))


@pytest.fixture(scope="session")
def browser(workplace):
    options = webdriver.ChromeOptions()
    options.binary_location = shutil.which("chromium")
    for argument in ("--headless=new", "--disable-gpu", "--disable-dev-shm-usage", "--window-size=1400,900"):
        options.add_argument(argument)
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")  # Chromium's sandbox does not run as root
    options.add_experimental_option("prefs", {"download.default_directory": str(workplace.folder)})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    driver = webdriver.Chrome(options=options, service=Service(shutil.which("chromedriver")))
    driver.set_script_timeout(30)
    yield driver
    driver.quit()


@pytest.fixture(autouse=True)
def nothing_kept(browser):
    yield
    browser.execute_script("try { localStorage.clear(); } catch { /* there is none */ }")
