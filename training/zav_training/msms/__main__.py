# SPDX-License-Identifier: Apache-2.0
"""Command line: train, ship, evaluate, predict, or build, which is all but the last in one."""

import argparse
import csv
import sys
from functools import partial
from pathlib import Path

import tensorflow as tf

from zav_training.msms import recipe
from zav_training.msms.comparison import compare, held_out_rows
from zav_training.msms.evaluation import evaluate, to_markdown
from zav_training.msms.predict_trained import report_line
from zav_training.msms.shipped import Shipped, to_text
from zav_training.msms.shipping import ship
from zav_training.msms.spectra import is_usable, read_all
from zav_training.msms.training import load


def main(arguments: list[str] | None = None) -> int:
    """Runs a command; returns the exit code."""
    options = _parser().parse_args(arguments)
    if getattr(options, "threads", 0):
        tf.config.threading.set_intra_op_parallelism_threads(options.threads)
        tf.config.threading.set_inter_op_parallelism_threads(1)
    return options.command(options)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m zav_training.msms", description=__doc__)
    commands = parser.add_subparsers(required=True)
    data = argparse.ArgumentParser(add_help=False)
    data.add_argument("data", type=Path, help="folder of the gzipped data files")
    models = argparse.ArgumentParser(add_help=False)
    models.add_argument("models", type=Path, help="folder of the graph files")
    run = argparse.ArgumentParser(add_help=False)
    run.add_argument("run", type=Path, help="folder of a training run: weights, log")
    length = argparse.ArgumentParser(add_help=False)
    length.add_argument("--length", type=float, default=1.0, help="factor of the epochs")
    length.add_argument("--seed", type=int, default=recipe.SEED, help="of the first teacher")
    length.add_argument("--threads", type=int, default=0, help="0: as many as TensorFlow likes")
    file = argparse.ArgumentParser(add_help=False)
    file.add_argument("file", type=Path, help="a gzipped data file")
    predicted = argparse.ArgumentParser(add_help=False)
    predicted.add_argument("predicted", type=Path, help="TSV of peptide, charge, fragments")
    for name, function, parents, text in (
        ("build", _build, [data, run, models, length], "train and ship all five networks"),
        ("train", _train, [data, run, length], "train only"),
        ("ship", _ship, [data, run, models], "write graphs and contracts of a run"),
        ("evaluate", _evaluate, [data, models], "figures on held-out spectra, as a table"),
        ("held-out", _held_out, [file], "held-out rows of a data file, as a TSV"),
        ("compare", _compare, [file, predicted], "figures of written predictions on those rows"),
        ("predict", _predict, [models], "fragments of the peptides and charges of a TSV on stdin"),
    ):
        command = commands.add_parser(name, parents=parents, help=text, description=text)
        command.set_defaults(command=function)
    return parser


def _train(options: argparse.Namespace) -> int:
    spectra = read_all(options.data)
    held_out = [s for s in spectra if s.held_out]
    report = partial(report_line, spectra=held_out)
    recipe.run(spectra, options.run, options.seed, options.length, report)
    return 0


def _ship(options: argparse.Namespace) -> int:
    held_out = [s for s in read_all(options.data) if s.held_out]
    print(to_markdown(ship(load(options.run / "student"), held_out, options.models)))
    return 0


def _build(options: argparse.Namespace) -> int:
    return _train(options) or _ship(options)


def _evaluate(options: argparse.Namespace) -> int:
    held_out = [s for s in read_all(options.data) if s.held_out]
    print(to_markdown(evaluate(options.models, held_out)))
    return 0


def _held_out(options: argparse.Namespace) -> int:
    for index, row in enumerate(held_out_rows(options.file)):
        if index == 0:
            print(*row.keys(), sep="\t")
        print(*row.values(), sep="\t")
    return 0


def _compare(options: argparse.Namespace) -> int:
    count, angle, correlation = compare(held_out_rows(options.file), options.predicted)
    print("spectra", "angle", "correlation", sep="\t")
    print(count, f"{angle:.3f}", f"{correlation:.3f}", sep="\t")
    return 0


def _predict(options: argparse.Namespace) -> int:
    rows = csv.DictReader(sys.stdin, delimiter="\t")
    precursors = dict.fromkeys((row["peptide"], int(row["charge"])) for row in rows)
    usable = [precursor for precursor in precursors if is_usable(*precursor)]
    print("peptide", "charge", "fragments", sep="\t")
    for (peptide, charge), sites in zip(usable, Shipped(options.models).sites(usable), strict=True):
        print(peptide, charge, to_text(sites), sep="\t")
    return 0


if __name__ == "__main__":
    sys.exit(main())
