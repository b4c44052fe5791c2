# SPDX-License-Identifier: Apache-2.0
"""Command line: train, ship, evaluate, or build, which is all of them in one."""

import argparse
import sys
from pathlib import Path

import numpy as np

from zav_training.peptidoforms import recipe
from zav_training.peptidoforms.evaluation import angles, medians, predict, use_threads
from zav_training.peptidoforms.network import Network
from zav_training.peptidoforms.sources import SHIPPED
from zav_training.peptidoforms.spectra import Spectrum, read_modified, read_plain
from zav_training.peptidoforms.training import load

#: Of the plain held-out spectra so many are looked at after each epoch.
REPORTED = 800
#: Groups of fewer spectra are not shown.
LEAST = 10


def main(arguments: list[str] | None = None) -> int:
    """Runs a command; returns the exit code."""
    options = _parser().parse_args(arguments)
    use_threads(options.threads)
    return options.command(options)


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python -m zav_training.peptidoforms", description=__doc__
    )
    commands = parser.add_subparsers(required=True)
    common = argparse.ArgumentParser(add_help=False)
    common.add_argument("data", type=Path, help="folder with msms/, peptidoforms/ and rt/")
    common.add_argument("run", type=Path, help="folder of a training run: weights, log")
    common.add_argument("models", type=Path, help="folder of the graph files")
    common.add_argument("--threads", type=int, default=0, help="0: as many as TensorFlow likes")
    length = argparse.ArgumentParser(add_help=False)
    length.add_argument("--length", type=float, default=1.0, help="factor of the epochs")
    length.add_argument("--seed", type=int, default=recipe.SEED)
    for name, function, parents, text in (
        ("train", _train, [common, length], "train only"),
        ("ship", _ship, [common], "write the graph and the contract of a run"),
        ("build", _build, [common, length], "train and ship"),
        ("evaluate", _evaluate, [common], "figures on held-out spectra, as a table"),
    ):
        command = commands.add_parser(name, parents=parents, help=text, description=text)
        command.set_defaults(command=function)
    return parser


def read_all(data: Path) -> list[Spectrum]:
    """Every spectrum of the data, plain and modified."""
    return read_plain(data / "msms") + read_modified(data / "peptidoforms")


def _train(options: argparse.Namespace) -> int:
    spectra = read_all(options.data)
    held_out = [s for s in spectra if s.held_out]
    plain = [s for s in held_out if not s.names and s.group != "proteometools"]
    shown = plain[:: max(1, len(plain) // REPORTED)] + [s for s in held_out if s.names][::2]

    def report(network: Network) -> str:
        values = angles(shown, predict(network, shown))
        groups = [_brief(s) for s in shown]
        return " ".join(
            f"{group} {np.median(values[[g == group for g in groups]]):.3f}"
            for group in sorted(set(groups))
            if groups.count(group) >= LEAST
        )

    recipe.run(
        spectra,
        options.data / "rt" / "rt.tsv.gz",
        options.models,
        options.run,
        options.seed,
        options.length,
        report,
    )
    return 0


def last_stage(run: Path) -> Path:
    """Folder of the last stage of a run."""
    return run / f"stage{len(recipe.STAGES) - 1}"


def _brief(spectrum: Spectrum) -> str:
    names = sorted({name.split("@")[0] for name in spectrum.names})
    count = sum(n.startswith("Phospho") for n in spectrum.names)
    return f"{spectrum.group}/{'+'.join(names) or '-'}{count if count > 1 else ''}"


def _ship(options: argparse.Namespace) -> int:
    from zav_training.peptidoforms.shipping import ship

    held_out = [s for s in read_all(options.data) if s.held_out]
    ship(last_stage(options.run), held_out, options.models)
    return 0


def _build(options: argparse.Namespace) -> int:
    return _train(options) or _ship(options)


def _evaluate(options: argparse.Namespace) -> int:
    held_out = [s for s in read_all(options.data) if s.held_out]
    network = load(last_stage(options.run))
    shipped = medians(held_out, angles(held_out, predict(network, held_out, SHIPPED)))
    own = medians(held_out, angles(held_out, predict(network, held_out, None)))
    print("| held-out spectra | number | angle | as their own source |")
    print("| --- | ---: | ---: | ---: |")
    for name, (count, value) in shipped.items():
        print(f"| {name} | {count} | {value:.3f} | {own[name][1]:.3f} |")
    return 0


if __name__ == "__main__":
    sys.exit(main())
