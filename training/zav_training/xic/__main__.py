# SPDX-License-Identifier: Apache-2.0
"""Command line: train, ship, evaluate, or build, which is all of them in one."""

import argparse
import json
from collections.abc import Callable, Iterator
from pathlib import Path

import numpy as np
import tensorflow as tf

from zav_training.contract import read_contract
from zav_training.xic import (
    evaluate,
    evaluate_offsets,
    evaluate_splits,
    network,
    picks,
    recipe,
    ship,
)
from zav_training.xic.batches import Batch, detector_batches, splitter_batches
from zav_training.xic.examples import Backgrounds, RealTraces
from zav_training.xic.frozen import read_weights
from zav_training.xic.sets import evaluation_sets
from zav_training.xic.splits import RealNeighbours
from zav_training.xic.traces import BACKGROUND, LABELLED, Trace, read_traces, split
from zav_training.xic.training import Trainer, train

Parts = dict[str, list[Trace]]
START = "weights (.npz) or graph file (.pb) of a limits network from which the training goes on"


def main(arguments: list[str] | None = None) -> int:
    """Runs a command; returns the exit code."""
    options = _parser().parse_args(arguments)
    if options.threads:
        tf.config.threading.set_intra_op_parallelism_threads(options.threads)
        tf.config.threading.set_inter_op_parallelism_threads(1)
    parts = split([t for s in LABELLED + BACKGROUND for t in read_traces(options.data, s)])
    for step in options.steps:
        step(options, parts)
    return 0


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(prog="python -m zav_training.xic", description=__doc__)
    commands = parser.add_subparsers(required=True)
    steps: dict[str, tuple[tuple[Callable, ...], str]] = {
        "build": ((_train_limits, _train_split, _ship, _evaluate), "train, ship and evaluate both"),
        "train-limits": ((_train_limits,), "train the network of peak limits"),
        "train-split": ((_train_split,), "train the splitter, which starts from it"),
        "ship": ((_ship,), "write graphs and contracts of what a run holds"),
        "rewrite": ((_rewrite,), "write the limits graph anew around its weights: a new rule"),
        "evaluate": ((_evaluate,), "figures of shipped networks, as tables"),
        "picks": ((_picks,), "labels and found peaks of the sets as JSON lines in the run"),
    }
    for name, (functions, text) in steps.items():
        command = commands.add_parser(name, help=text, description=text)
        command.add_argument("data", type=Path, help="folder of the gzipped data files")
        command.add_argument("run", type=Path, help="folder of a training run: weights")
        command.add_argument("models", type=Path, help="folder of the graph files")
        command.add_argument("--seed", type=int, default=recipe.SEED)
        command.add_argument("--start", type=Path, help=START)
        command.add_argument("--share", type=float, default=1.0, help="of the steps, for a trial")
        command.add_argument("--threads", type=int, default=0, help="0: as TensorFlow likes")
        command.add_argument("--openms", action="store_true", help="compare with pyopenms, too")
        command.set_defaults(steps=functions)
    return parser


def _train_limits(options: argparse.Namespace, parts: Parts) -> None:
    rng = np.random.default_rng(options.seed)
    known = parts["training"]
    real, backgrounds = RealTraces(known), Backgrounds(known)
    if options.start:
        start = read_weights(options.start, network.DETECTOR)
        trainer = Trainer(network.DETECTOR, options.seed, start, levelled=True)
        shares = (recipe.LIFTED_SHARE, recipe.NEIGHBOUR_SHARE)
        batches = detector_batches(rng, real, backgrounds, *shares)
        _train(options, trainer, recipe.CONTINUED_SCHEDULE, batches, ship.LIMITS)
        return
    trainer = Trainer(network.DETECTOR, options.seed)
    batches = detector_batches(rng, real, backgrounds)
    _train(options, trainer, recipe.LIMITS_SCHEDULE, batches, ship.LIMITS)


def _train_split(options: argparse.Namespace, parts: Parts) -> None:
    rng = np.random.default_rng(options.seed)
    known = parts["training"]
    batches = splitter_batches(rng, RealNeighbours(known), Backgrounds(known))
    limits = options.start or _weights(options, ship.LIMITS)
    start = network.splitter_start(read_weights(limits, network.DETECTOR))
    trainer = Trainer(network.SPLITTER, options.seed, start, levelled=True)
    _train(options, trainer, recipe.SPLIT_SCHEDULE, batches, ship.SPLIT)


def _train(
    options: argparse.Namespace,
    trainer: Trainer,
    schedule: recipe.Schedule,
    batches: Iterator[Batch],
    name: str,
) -> None:
    options.run.mkdir(parents=True, exist_ok=True)
    steps = max(1, int(schedule.steps * options.share))
    train(trainer, batches, steps, schedule.rate, _weights(options, name))
    made = {"trainingSeed": options.seed, "trainingSteps": steps}
    _made(options, name).write_text(json.dumps(made))


def _weights(options: argparse.Namespace, name: str) -> Path:
    return options.run / f"{name}.npz"


def _made(options: argparse.Namespace, name: str) -> Path:
    """How the weights were trained, for the contract."""
    return options.run / f"{name}.json"


def _ship(options: argparse.Namespace, parts: Parts) -> None:
    options.models.mkdir(parents=True, exist_ok=True)
    writers = {ship.LIMITS: ship.ship_limits, ship.SPLIT: ship.ship_split}
    trained = {n: w for n, w in writers.items() if _made(options, n).exists()}
    if not trained:
        raise SystemExit(f"{options.run} holds no trained weights")
    for name, write in trained.items():
        made = json.loads(_made(options, name).read_text())
        write(dict(np.load(_weights(options, name))), options.models, parts, made)


def _rewrite(options: argparse.Namespace, parts: Parts) -> None:
    path = options.models / f"{ship.LIMITS}.pb"
    contract = read_contract(path)
    made = {k: contract[k] for k in ("trainingSeed", "trainingSteps")}
    ship.ship_limits(read_weights(path, network.DETECTOR), options.models, parts, made)


def _picks(options: argparse.Namespace, parts: Parts) -> None:
    options.run.mkdir(parents=True, exist_ok=True)
    limits = options.models / f"{ship.LIMITS}.pb"
    pick = evaluate.network_picker(limits, recipe.LIMITS_OPTIONS)
    for name, traces in evaluation_sets(parts).items():
        picks.write_labelled(options.run / f"{name}.labelled.jsonl", traces)
        picks.write_picked(options.run / f"{name}.picked.jsonl", traces, pick)


def _evaluate(options: argparse.Namespace, parts: Parts) -> None:
    limits = options.models / f"{ship.LIMITS}.pb"
    evaluate.report(evaluation_sets(parts), limits, recipe.LIMITS_OPTIONS, options.openms)
    evaluate_offsets.report(evaluate.network_picker(limits, recipe.LIMITS_OPTIONS))
    splitters = {
        "network": evaluate_splits.network_splitter(
            options.models / f"{ship.SPLIT}.pb", recipe.SPLIT_OPTIONS
        ),
        **{
            f"Savitzky-Golay minima, {width} points": evaluate_splits.minima_of(width)
            for width in evaluate_splits.WIDTHS
        },
    }
    evaluate_splits.report(ship.split_sets(parts), splitters)


if __name__ == "__main__":
    raise SystemExit(main())
