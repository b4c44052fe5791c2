# SPDX-License-Identifier: Apache-2.0
"""Command line: train, ship, evaluate, or build, which is all of them in one."""

import argparse
import sys
from dataclasses import asdict
from pathlib import Path

import tensorflow as tf

from zav_training.rt import recipe
from zav_training.rt.data import read_all, scales
from zav_training.rt.evaluation import own_heads
from zav_training.rt.training import load


def main(arguments: list[str] | None = None) -> int:
    """Runs a command; returns the exit code."""
    options = _parser().parse_args(arguments)
    if options.threads:
        tf.config.threading.set_intra_op_parallelism_threads(options.threads)
        tf.config.threading.set_inter_op_parallelism_threads(1)
    return options.command(options)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m zav_training.rt", description=__doc__)
    commands = parser.add_subparsers(required=True)
    common = argparse.ArgumentParser(add_help=False)
    common.add_argument("data", type=Path, help="rt.tsv.gz")
    common.add_argument("run", type=Path, help="folder of a training run: weights, log")
    common.add_argument("--threads", type=int, default=0, help="0: as many as TensorFlow likes")
    length = argparse.ArgumentParser(add_help=False)
    length.add_argument("--length", type=float, default=1.0, help="factor of the epochs")
    length.add_argument("--seed", type=int, default=recipe.SEED)
    length.add_argument(
        "--without", default="", help="sources to leave out of training, joined by commas"
    )
    models = argparse.ArgumentParser(add_help=False)
    models.add_argument("models", type=Path, help="folder of the graph files")
    for name, function, parents, text in (
        ("train", _train, [common, length], "train only"),
        ("ship", _ship, [common, models], "write the graph and the contract of a run"),
        ("build", _build, [common, models, length], "train and ship"),
        ("evaluate", _evaluate, [common], "figures of a run on held-out peptides, as a table"),
    ):
        command = commands.add_parser(name, parents=parents, help=text, description=text)
        command.set_defaults(command=function)
    return parser


def _train(options: argparse.Namespace) -> int:
    left_out = set(filter(None, options.without.split(",")))
    observations = [one for one in read_all(options.data) if one.source not in left_out]
    learnt = [one for one in observations if not one.held_out]
    held_out = [one for one in observations if one.held_out]

    def report(network, _) -> str:  # noqa: ANN001
        figures = own_heads(network, held_out[::4], [asdict(s) for s in scales(learnt)])
        return " ".join(
            f"{name} {one.percent:.2f}/{one.width:.1f}" for name, one in figures.items()
        )

    recipe.run(learnt, options.run, options.seed, options.length, report)
    return 0


def _ship(options: argparse.Namespace) -> int:
    from zav_training.rt.shipping import ship

    ship(options.run, read_all(options.data), options.models)
    return 0


def _build(options: argparse.Namespace) -> int:
    return _train(options) or _ship(options)


def _evaluate(options: argparse.Namespace) -> int:
    held_out = [one for one in read_all(options.data) if one.held_out]
    network, about = load(options.run)
    print("source", "rows", "median error", "%", "width %", "bias %", "pearson", sep="\t")
    for name, one in own_heads(network, held_out, about["scales"]).items():
        print(name, one.count, *(f"{v:.4g}" for v in list(asdict(one).values())[1:]), sep="\t")
    return 0


if __name__ == "__main__":
    sys.exit(main())
