# SPDX-License-Identifier: Apache-2.0
"""Makes spectral libraries with the program that the package brings."""

import codecs
import errno
import os
import pty
import re
import signal
import subprocess
from collections.abc import Callable, Iterator, Sequence
from typing import Literal, TypedDict, Unpack

from zav import _program, _runtime
from zav._errors import Error, InvalidInput

__all__ = ["LibraryOptions", "library"]

_WRONG_USAGE = 2
_BAR = re.compile(r"\[[#.]*\] (\d+) of (\d+) ([^,]+)")
_END_OF_PIECE = re.compile(r"\r\x1b\[K|\r?\n")  # what erases a bar, or the end of a line


class LibraryOptions(TypedDict, total=False):
    """The options of `library`: those of ``zav library --help``, with ``_`` for ``-``.

    A flag is True or False. An option that may be repeated takes one value or several.
    """

    format: Literal["msp", "tsv", "mgf", "mzspeclib", "dlib", "blib", "pqp"]
    skipped: str | os.PathLike[str]
    threads: int
    low_memory: bool
    shard: str
    resume: bool
    models: str | os.PathLike[str]
    trust_networks: bool
    enzyme: str
    cleavage_pattern: str
    missed_cleavages: int
    min_length: int
    max_length: int
    semi_specific: bool
    remove_methionine: bool
    decoys: Literal["none", "reversed", "shuffled"]
    decoy_seed: int
    fixed: str | Sequence[str]
    variable: str | Sequence[str]
    max_variable: int
    cysteine: float
    charges: str | int | Sequence[int]
    energy: float
    calibrate: str | os.PathLike[str]
    no_retention_times: bool
    min_precursor_mz: float
    max_precursor_mz: float
    top: int
    min_intensity: float
    min_mz: float
    min_ion_number: int
    no_losses: bool
    isotopes: bool


def library(
    fasta: str | os.PathLike[str],
    output: str | os.PathLike[str],
    *,
    progress: Callable[[int, int, str], object] | None = None,
    **options: Unpack[LibraryOptions],
) -> list[str]:
    """Make a spectral library of all peptides of a FASTA file.

    The program does the work in a process of its own, on all cores. The library appears at `output` when it is
    complete. A Ctrl-C, or an exception of `progress`, ends the program, which removes what it began.

    Parameters
    ----------
    fasta
        The proteins, plain or compressed with gzip.
    output
        The library; its ending tells the format: ``.msp``, ``.tsv``, ``.pqp``, ``.mgf``, ``.mzSpecLib.txt``, ``.dlib``
        or ``.blib``.
    progress
        Called with what is done, the whole and its unit, such as ``(1200, 3000, "peptides")``, at most ten times a
        second and from the second second of each step on: first the digestion, in MB of the file, then the prediction.
    **options
        As `LibraryOptions`.

    Returns
    -------
    list of str
        What the program says of its work, a line each: how many peptides and spectra there are, what it left out.

    Raises
    ------
    InvalidInput
        The options contradict the manual; nothing was done.
    Error
        The library could not be made: the message is the program's.
    TypeError
        There is no such option, or it does not take such a value.

    Examples
    --------
    >>> zav.library("human.fasta", "human.tsv", charges=[2, 3], variable="Oxidation@M", decoys="shuffled")
    """
    target = os.fspath(output)
    if target == "-" or os.fspath(fasta) == "-":
        raise InvalidInput("fasta and output must be files")
    arguments = [*_arguments(options), f"--output={target}", "--", os.fspath(fasta)]
    _runtime.check_runtime()
    return _run(["library", *arguments], progress)


def _arguments(options: LibraryOptions) -> list[str]:
    arguments = []
    for name, value in options.items():
        if name not in LibraryOptions.__annotations__:
            raise TypeError(f"library() got an unexpected keyword argument {name!r}")
        arguments.extend(_argument(name, value))
    return arguments


def _argument(name: str, value: object) -> list[str]:
    flag = "--" + name.replace("_", "-")
    kind = LibraryOptions.__annotations__[name]
    if kind is bool:
        if not isinstance(value, bool):
            raise TypeError(f"{name} must be True or False")
        return [flag] if value else []
    if name in ("fixed", "variable") and not isinstance(value, str):
        return [f"{flag}={each}" for each in _several(name, value)]
    if name == "charges" and not isinstance(value, str | int):
        return [f"{flag}={','.join(map(str, _several(name, value)))}"]
    if isinstance(value, bool) or not isinstance(value, str | int | float | os.PathLike):
        raise TypeError(f"{name} cannot be {value!r}")
    return [f"{flag}={os.fspath(value) if isinstance(value, os.PathLike) else value}"]


def _several(name: str, value: object) -> Sequence[object]:
    if not isinstance(value, Sequence) or isinstance(value, bytes):
        raise TypeError(f"{name} cannot be {value!r}")
    return value


def _run(arguments: list[str], progress: Callable[[int, int, str], object] | None) -> list[str]:
    # The program draws its progress for terminals only, so it gets one. It has a process group of its own: the terminal
    # of this process would send it a Ctrl-C beside the one below, and a second one lets it leave unfinished files.
    reader, terminal = pty.openpty()
    try:
        process = subprocess.Popen(
            [_program.program_path(), *arguments],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=terminal,
            env=_program.environment(),
            process_group=0,
        )
    except BaseException:
        os.close(reader)
        raise
    finally:
        os.close(terminal)
    try:
        messages = _follow(reader, progress)
        code = process.wait()
    except BaseException:
        process.send_signal(signal.SIGINT)
        process.wait()
        raise
    finally:
        os.close(reader)
    if code != 0:
        raise _failure(code, messages)
    return messages


def _follow(terminal: int, progress: Callable[[int, int, str], object] | None) -> list[str]:
    """Report the bars that the program draws and return its messages, until it closes the terminal."""
    messages = []
    for text in _pieces(terminal):
        if bar := _BAR.match(text):
            if progress is not None:
                progress(int(bar[1]), int(bar[2]), bar[3])
        elif text:
            messages.append(text.removeprefix("zav: "))
    return messages


def _pieces(terminal: int) -> Iterator[str]:
    """Yield what stands between the ends of lines and the erasures of bars."""
    rest = ""
    for data in _reads(terminal):
        *whole, rest = _END_OF_PIECE.split(rest + data)
        yield from whole
    yield rest


def _reads(terminal: int) -> Iterator[str]:
    decoder = codecs.getincrementaldecoder("utf-8")("replace")
    while True:
        try:
            data = os.read(terminal, 65536)
        except OSError as problem:  # the program has closed its end
            if problem.errno != errno.EIO:
                raise
            return
        if not data:
            return
        yield decoder.decode(data)


def _failure(code: int, messages: list[str]) -> Error:
    said = "; ".join(messages[-3:]) or f"the program ended with {code}"
    return InvalidInput(said) if code == _WRONG_USAGE else Error(said)
