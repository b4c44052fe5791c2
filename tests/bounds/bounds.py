# SPDX-License-Identifier: Apache-2.0
"""Hostile inputs of the program: each is read at half of its size and whole, and what that takes is written as a table.

    bounds.py ZAV FOLDER [--share 0.05]

An input that takes more memory than its bound, an end by a signal, another exit code than the expected one, or a failure
that is not said in short lines fails the run. Times are those computed by all threads; they are shown, not judged. The
last column is how many times longer the whole input takes than its half: about 2 where the time grows with the bytes,
less where starting up is most of it.
"""

import argparse
import base64
import gzip
import multiprocessing
import os
import pathlib
import struct
import subprocess
import sys
import threading
import zlib
from collections.abc import Callable
from dataclasses import dataclass

LONGEST_RUN = 900  # seconds
LONGEST_LINE = 1000  # characters of a message
MEBI = 1 << 20


@dataclass
class Input:
    """What it is, its file, how to write it at a share of its size, the command, the exit code, the bound in MiB."""

    what: str
    name: str
    write: Callable[[pathlib.Path, float], None]
    command: list[str]
    exit_code: int | None  # None: by its size
    most_mib: int


@dataclass
class Outcome:
    bytes: int
    seconds: float
    mib: float
    exit_code: int
    said: str


def pieces(path: pathlib.Path, piece: bytes, count: float, head: bytes = b"", tail: bytes = b"") -> None:
    """The piece as often as `count`, gzipped where the name says so."""
    opener = gzip.open if path.suffix == ".gz" else open
    with opener(path, "wb", **({"compresslevel": 1} if path.suffix == ".gz" else {})) as file:
        file.write(head)
        block = max(1, MEBI // len(piece))
        for _ in range(int(count) // block):
            file.write(piece * block)
        file.write(piece * (int(count) % block))
        file.write(tail)


def parameter(accession: str) -> str:
    return f'<cvParam cvRef="MS" accession="{accession}" name="x"/>'


def array(accession: str, text: str, compression: str = "MS:1000576") -> str:
    said = parameter("MS:1000523") + parameter(compression) + parameter(accession)
    return f'<binaryDataArray encodedLength="{len(text)}">{said}<binary>{text}</binary></binaryDataArray>'


def element(tag: str, number: int, length: int, arrays: str, head: str = "") -> str:
    arrays = f'<binaryDataArrayList count="2">{arrays}</binaryDataArrayList>'
    return f'<{tag} index="{number}" id="{number}" defaultArrayLength="{length}">{head}{arrays}</{tag}>'


def mzml(tag: str, before: str = "") -> tuple[bytes, bytes]:
    """What stands in front of the elements, and behind them."""
    start = f'<?xml version="1.0"?><mzML>{before}<run id="r"><{tag}List count="1">'
    return start.encode(), f"</{tag}List></run></mzML>".encode()


ONE = base64.b64encode(bytes(8)).decode()
POINT = array("MS:1000595", ONE) + array("MS:1000515", ONE)
TIME = '<scanList count="1"><scan><cvParam cvRef="MS" accession="MS:1000016" value="{}" unitAccession="UO:0000010"/></scan></scanList>'
LEVEL = '<cvParam cvRef="MS" accession="MS:1000511" value="1"/>'


def bomb(tag: str, positions: str) -> Callable[[pathlib.Path, float], None]:
    """`positions` is the accession of the array beside that of the intensities."""

    def write(path: pathlib.Path, share: float) -> None:
        packed = zlib.compressobj(9)
        data = b"".join(packed.compress(bytes(MEBI)) for _ in range(int(1024 * share))) + packed.flush()
        text = base64.b64encode(data).decode()
        arrays = array(positions, text, "MS:1000574") + array("MS:1000515", text, "MS:1000574")
        head, tail = mzml(tag)
        path.write_bytes(head + element(tag, 0, 2, arrays).encode() + tail)

    return write


def one_element(tag: str, content: Callable[[float], str], length: int = 1) -> Callable[[pathlib.Path, float], None]:
    def write(path: pathlib.Path, share: float) -> None:
        head, tail = mzml(tag)
        path.write_bytes(head + element(tag, 0, length, POINT, content(share)).encode() + tail)

    return write


def endless_array(path: pathlib.Path, share: float) -> None:
    pieces(path, b"A", (1 << 30) * share, mzml("chromatogram")[0] + b'<chromatogram id="a"><binary>')


def declared(path: pathlib.Path, share: float) -> None:
    head, tail = mzml("chromatogram")
    pieces(path, element("chromatogram", 0, 1 << 60, POINT).encode(), 1e5 * share, head, tail)


def nested(path: pathlib.Path, share: float) -> None:
    count = int(1e6 * share)
    one_element("chromatogram", lambda _: "<a>" * count + "</a>" * count)(path, share)


def one_point_traces(path: pathlib.Path, share: float) -> None:
    head, tail = mzml("chromatogram")
    pieces(path, element("chromatogram", 0, 1, POINT).encode(), 1e6 * share, head, tail)


def repeated_groups(path: pathlib.Path, share: float) -> None:
    group = f'<referenceableParamGroup id="g">{parameter("MS:1000511") * 280}</referenceableParamGroup>'
    head, tail = mzml(
        "chromatogram",
        f'<referenceableParamGroupList count="1">{group}</referenceableParamGroupList>',
    )
    reference = '<referenceableParamGroupRef ref="g"/>'
    pieces(path, element("chromatogram", 0, 1, POINT, reference).encode(), 1e5 * share, head, tail)


def one_peak_spectra(path: pathlib.Path, share: float) -> None:
    one = base64.b64encode(struct.pack("<d", 1)).decode()
    head, tail = mzml("spectrum")
    peak = array("MS:1000514", one) + array("MS:1000515", one)
    pieces(path, element("spectrum", 0, 1, peak).encode(), 1e6 * share, head, tail)


def json_traces(path: pathlib.Path, share: float) -> None:
    with open(path, "wb") as file:
        file.writelines(b'{"id": "t%d", "rt": [1], "intensity": [1]}\n' % i for i in range(int(1e6 * share)))


def targets(path: pathlib.Path, share: float) -> None:
    """One row a target, each three scans long; and the run beside it."""
    with open(path, "wb") as file:
        file.write(b"mz\trt_from\trt_to\n")
        file.writelines(b"%.3f\t%d\t%d\n" % (400 + i % 1000, i % 300, i % 300 + 2) for i in range(int(1e6 * share)))
    head, tail = mzml("spectrum")
    arrays = array("MS:1000514", ONE) + array("MS:1000515", ONE)
    spectra = "".join(element("spectrum", i, 1, arrays, LEVEL + TIME.format(i)) for i in range(300))
    path.with_suffix(".mzML").write_bytes(head + spectra.encode() + tail)


def repeated(piece: bytes, count: float, head: bytes = b"", tail: bytes = b"") -> Callable[[pathlib.Path, float], None]:
    return lambda path, share: pieces(path, piece, count * share, head, tail)


# What a run with the network takes before it reads anything is 340 MiB.
def inputs() -> list[Input]:
    limits, split, library = ["limits", "--method", "walk"], ["split"], ["library", "-o", "out.tsv"]
    spectrum, gibi, table = ["spectrum"], float(1 << 30), b"rt\tintensity\n"
    against = [*spectrum, "PEPTIDEK", "2", "--scan", "index=0", "--against"]
    residues, digits = b"ACDEFGHIKLMNPQRSTVWY", b"9" * 1_000_000
    references = one_element("chromatogram", lambda share: "&#55;" * int(1e7 * share))
    numbers = b'{"rt": [' + digits + b'], "intensity": [' + digits + b"]}\n"
    # fmt: off
    return [
        Input("gzip: a trace of 250 million rows", "rows.tsv.gz", repeated(b"1\t0\n", 25e7, table), limits, None, 1000),
        Input("gzip: a line of 1 GiB", "line.tsv.gz", repeated(b"0", gibi, table), limits, 1, 100),
        Input("gzip: an mzML element of 1 GiB", "element.mzML.gz", endless_array, limits, 1, 600),
        Input("zlib: an mzML array of 1 GiB", "bomb.mzML", bomb("chromatogram", "MS:1000595"), limits, 1, 400),
        Input("zlib: an array of 1 GiB of an mzML spectrum", "bomb.mzML", bomb("spectrum", "MS:1000514"), against, 1, 400),
        Input("1,000,000 mzML spectra, none of them asked for", "spectra.mzML", one_peak_spectra, [*against[:-2], "index=1000000", "--against"], 1, 800),
        Input("100,000 mzML traces that declare 2^60 values", "declared.mzML", declared, limits, 1, 400),
        Input("1,000,000 nested elements in an mzML trace", "nested.mzML", nested, limits, 1, 500),
        Input("1,000,000 nested elements of mzML", "deep.mzML", repeated(b"<mzML>", 1e6), limits, 1, 100),
        Input("10,000,000 character references in an mzML trace", "references.mzML", references, limits, 0, 800),
        Input("100,000 mzML traces that repeat a group of 16 KB", "groups.mzML", repeated_groups, limits, 0, 400),
        Input("1,000,000 mzML traces of one point", "points.mzML", one_point_traces, limits, 0, 400),
        Input("1,000,000 JSON traces of one point", "points.jsonl", json_traces, limits, 0, 400),
        Input("1,000,000 targets", "targets.tsv", targets, [*limits, "--targets", "targets.tsv", "targets.mzML"], 0, 2000),
        Input("TSV: a line of 1 GiB", "line.tsv", repeated(b"x", gibi, table), limits, 1, 100),
        Input("TSV: 100 numbers of 1,000,000 digits", "digits.tsv", repeated(b"1\t" + digits + b"\n", 100, table), limits, 1, 400),
        Input("JSON: a line of 1 GiB", "line.jsonl", repeated(b"1,", gibi / 2, b'{"rt": ['), split, 1, 800),
        Input("JSON: a line of 15 MB of empty lists", "lists.jsonl", repeated(b"[],", 5e6, b'{"rt": [', b"[]]}\n"), limits, 1, 1000),
        Input("JSON: lists nested 10,000,000 deep", "deep.jsonl", repeated(b"[", 1e7), limits, 1, 1500),
        Input("JSON: 100 numbers of 1,000,000 digits", "digits.jsonl", repeated(numbers, 50), limits, 1, 400),
        Input("FASTA: 100 million residues on a line", "protein.fasta", repeated(residues, 5e6, b">p\n"), library, None, 400),
        Input("FASTA: 100 million residues on lines of 60", "lines.fasta", repeated(residues * 3 + b"\n", 1e8 / 60, b">p\n"), library, None, 400),
        Input("MGF: a line of 1 GiB", "line.mgf", repeated(b"1", gibi, b"BEGIN IONS\n"), [*spectrum, "PEPTIDEK", "2", "--against"], 1, 400),
        Input("peptides: a line of 1 GiB", "list.tsv", repeated(b"K", gibi, b"peptide\tcharge\n"), [*spectrum, "--peptides"], 1, 400),
    ]
    # fmt: on


def write_apart(each: Input, path: pathlib.Path, share: float) -> None:
    """In a process of its own: what this one holds would count as memory of the programs that it starts."""
    writer = multiprocessing.get_context("fork").Process(target=each.write, args=(path, share))
    writer.start()
    writer.join()
    if writer.exitcode != 0:
        sys.exit(f"cannot write {path}")


def measured(program: pathlib.Path, each: Input, path: pathlib.Path) -> Outcome:
    folder = path.parent
    command = [str(program), *each.command, *([] if path.name in each.command else [path.name])]
    with open(folder / "said", "w+b") as said:
        process = subprocess.Popen(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=said)
        watch = threading.Timer(LONGEST_RUN, process.kill)
        watch.start()
        _, status, usage = os.wait4(process.pid, 0)
        watch.cancel()
        seconds = usage.ru_utime + usage.ru_stime
        process.returncode = os.waitstatus_to_exitcode(status)
        said.seek(0)
        text = said.read(100_000).decode(errors="replace")
    return Outcome(path.stat().st_size, seconds, usage.ru_maxrss / 1024, process.returncode, text)


def problem(each: Input, outcome: Outcome) -> str:
    if outcome.exit_code not in ((0, 1) if each.exit_code is None else (each.exit_code,)):
        return f"exit code {outcome.exit_code}, expected {each.exit_code}: {outcome.said[:200]}"
    if outcome.mib > each.most_mib:
        return f"{outcome.mib:.0f} MiB, at most {each.most_mib} are allowed"
    lines = outcome.said.splitlines()
    if outcome.exit_code and not lines:
        return "nothing is said"
    if any(not line.startswith("zav: ") or len(line) > LONGEST_LINE for line in lines):
        return f"said {outcome.said[:300]}"
    return ""


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path, help="for the inputs, one at a time; up to 1 GB")
    parser.add_argument("--share", type=float, default=1.0, help="of the sizes, for a short run")
    options = parser.parse_args()
    program = options.program.resolve()
    options.folder.mkdir(parents=True, exist_ok=True)
    print("| input | bytes | exit code | seconds computed | MiB | bound | whole / half |")
    print("| --- | --- | --- | --- | --- | --- | --- |")
    problems = []
    for each in inputs():
        path = options.folder / each.name
        outcomes = []
        for share in (0.5, 1.0):
            write_apart(each, path, share * options.share)
            outcomes.append(measured(program, each, path))
            if wrong := problem(each, outcomes[-1]):
                problems.append(f"{each.what}: {wrong}")
        path.unlink()
        half, whole = outcomes
        ratio = whole.seconds / half.seconds
        print(
            f"| {each.what} | {whole.bytes:,} | {whole.exit_code} | {whole.seconds:.2f} | {whole.mib:.0f} | {each.most_mib} | {ratio:.1f} |",
            flush=True,
        )
    for each in problems:
        print(each, file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
