# SPDX-License-Identifier: Apache-2.0
"""What `zav library` costs: precursors a second and core, memory, the share of TensorFlow, and beside other programs.

    python3 library_benchmark.py ZAV PROTEINS.fasta [--shard 1/20] [--threads 1] [--precursors 20000]
                                 [--ms2pip PYTHON] [--deeplc PYTHON]

PROTEINS.fasta may come from synthetic_proteome.py. Makes one shard of its library for charges 2 and 3 as TSV, whole
command from start to end, and prints processor time, which other work on the machine disturbs least, beside the wall
clock's. With `perf` installed a second run tells how much of the time is spent in TensorFlow. PYTHON is one with
ms2pip 4.1.2 or with deeplc 4.5.0. The first predicts a quarter and then all of the first precursors of that library
(model HCDch2, one process), and so does zav from a list of their peptides; the second predicts the times of those
peptides (default model, one thread), and so does `zav retention`. So the ratios hold for one machine at one time.
"""

import argparse
import csv
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

from measured_run import Run

PEERS = pathlib.Path(__file__).resolve().parents[2] / "training" / "peers"


def print_rates(name, run, precursors):
    print(
        f"{name:<28}{precursors:>9} precursors  {precursors / run.computed:>8.0f} / s of a core"
        f"  {precursors / run.wall:>8.0f} / s by the clock  {run.memory:>6.0f} MiB"
    )


def library(zav, source, folder, name, *more):
    """Makes a library and returns the run, the file and how many precursors it holds."""
    path = pathlib.Path(folder) / name
    run = Run([zav, "library", *source, "-o", str(path), *more], stderr=subprocess.DEVNULL)
    return run, path, json.loads(pathlib.Path(f"{path}.json").read_text())["precursors"]


def share_of_tensorflow(command, folder):
    """Per cent of the samples of a profile that lie in TensorFlow's files, or in the code that it generates.

    What the C library and the kernel do for it is not told apart from what they do for others, and not counted.
    """
    data = str(pathlib.Path(folder) / "perf.data")
    subprocess.run(
        ["perf", "record", "-q", "-e", "task-clock", "-F", "199", "-o", data, *command],
        stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL,
        check=True,
    )
    report = subprocess.run(
        ["perf", "report", "-i", data, "--sort", "dso", "--stdio", "-q"],
        capture_output=True,
        text=True,
        check=True,
    ).stdout
    rows = re.findall(r"^\s*([0-9.]+)%\s+(\S+)", report, re.MULTILINE)
    for share, file in rows[:6]:
        print(f"{'':<28}{float(share):>8.1f} %  {file}")
    return sum(float(share) for share, file in rows if "tensorflow" in file or "JIT" in file)


def first_precursors(path, count):
    """Peptide and charge of the first entries of a TSV library."""
    found = {}
    with open(path, newline="", encoding="utf-8") as file:
        for row in csv.DictReader(file, delimiter="\t"):
            found[(row["PeptideSequence"], row["PrecursorCharge"])] = None
            if len(found) > count:
                break
    return list(found)[:count]


def race_spectra(zav, python, precursors, folder):
    """The same precursors with MS2PIP and with zav; the processor time of each."""
    table = pathlib.Path(folder) / "precursors.tsv"
    rows = "".join(f"{peptide}\t{charge}\n" for peptide, charge in precursors)
    table.write_text("peptide\tcharge\n" + rows, encoding="utf-8")
    with open(table, encoding="utf-8") as source, open(os.devnull, "w", encoding="utf-8") as nowhere:
        peer = Run([python, str(PEERS / "ms2pip_predict.py")], stdin=source, stdout=nowhere, stderr=nowhere)
    print_rates("MS2PIP", peer, len(precursors))
    peptides = peptide_list(precursors, folder)
    ours, _, written = library(zav, ["--peptides", str(peptides)], folder, "same.tsv", "--threads", "1")
    print_rates("zav, the same peptides", ours, written)
    return peer.computed, ours.computed


def race_times(zav, python, precursors, folder):
    """The times of the same peptides with DeepLC and with zav; the processor time of each."""
    peptides = peptide_list(precursors, folder)
    count = len(peptides.read_text(encoding="utf-8").splitlines())
    with open(peptides, encoding="utf-8") as source, open(os.devnull, "w", encoding="utf-8") as nowhere:
        peer = Run([python, str(PEERS / "deeplc_predict.py")], stdin=source, stdout=nowhere, stderr=nowhere)
        ours = Run([zav, "retention", "--peptides", str(peptides)], stdout=nowhere, stderr=nowhere)
    print_rates("DeepLC", peer, count)
    print_rates("zav retention, the same", ours, count)
    return peer.computed, ours.computed


def peptide_list(precursors, folder):
    path = pathlib.Path(folder) / "peptides.txt"
    path.write_text("".join(f"{p}\n" for p in dict.fromkeys(p for p, _ in precursors)), encoding="utf-8")
    return path


def compare(race, zav, python, precursors, folder):
    """Two sizes, so that the time of starting up can be taken off."""
    few = race(zav, python, precursors[: len(precursors) // 4], folder)
    many = race(zav, python, precursors, folder)
    print(f"zav is {many[0] / many[1]:.1f} times as fast by processor time with starting up", end=", ")
    print(f"{(many[0] - few[0]) / (many[1] - few[1]):.1f} times without")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("zav")
    parser.add_argument("proteins")
    parser.add_argument("--shard", default="1/20")
    parser.add_argument("--threads", default="1")
    parser.add_argument("--ms2pip", metavar="PYTHON", help="a Python that has ms2pip")
    parser.add_argument("--deeplc", metavar="PYTHON", help="a Python that has deeplc")
    parser.add_argument("--precursors", type=int, default=20000)
    arguments = parser.parse_args()

    settings = ["--shard", arguments.shard, "--threads", arguments.threads]
    with tempfile.TemporaryDirectory() as folder:
        run, path, precursors = library(arguments.zav, [arguments.proteins], folder, "library.tsv", *settings)
        print_rates(f"zav, shard {arguments.shard}", run, precursors)
        if shutil.which("perf"):
            again = [arguments.zav, "library", arguments.proteins, "-o", f"{folder}/again.tsv", *settings]
            print(f"at least {share_of_tensorflow(again, folder):.0f} % of the processor time in TensorFlow")
        for race, python in ((race_spectra, arguments.ms2pip), (race_times, arguments.deeplc)):
            if python:
                compare(race, arguments.zav, python, first_precursors(path, arguments.precursors), folder)


if __name__ == "__main__":
    main()
