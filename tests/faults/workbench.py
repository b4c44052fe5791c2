# SPDX-License-Identifier: Apache-2.0
"""Runs of the program in a folder of their own, disturbed by the fault injector, and what has to hold after each."""

import concurrent.futures
import dataclasses
import math
import os
import pathlib
import re
import subprocess
import tempfile

PROGRAM = os.environ["ZAV_PROGRAM"]
INJECTOR = os.environ["ZAV_FAULT_INJECTOR"]
TIMEOUT = 120  # seconds; a run takes one or two

OLD = b"what stood here before\n"

# What a line may say of an error that was injected: the system's words, or SQLite's for the same.
REASONS_OF = {
    "EIO": ("Input/output error", "disk I/O error"),
    "ENOSPC": ("No space left on device", "database or disk is full"),
    "EINTR": ("Interrupted system call",),
    "EMFILE": ("Too many open files",),
}
# SQLite opens a file for reading where it cannot open it for writing, and does not keep the reason.
OPENED_FOR_READING = "unable to open database file"


@dataclasses.dataclass
class Case:
    """A command on small inputs. {d} in its arguments is the folder that it runs in."""

    name: str
    arguments: str
    outputs: tuple  # files that it makes
    inputs: dict = dataclasses.field(default_factory=dict)  # name -> bytes
    in_folder: dict = dataclasses.field(default_factory=dict)  # more of the environment, with {d}
    keeps_outputs: bool = False  # the outputs stand there at the start, complete
    draws_pictures: bool = False
    expected: dict = dataclasses.field(default_factory=dict)  # name -> bytes, of an undisturbed run
    usual_lines: tuple = ()  # of standard error of an undisturbed run


@dataclasses.dataclass
class Run:
    code: int
    stdout: bytes
    lines: list  # of standard error
    files: dict  # name -> bytes, below the folder
    counted: int  # -1 where the injector did not come to its end
    done: int
    calls: list  # of the log


def clean_environment(case, folder):
    environment = dict(os.environ, TMPDIR=str(folder / "tmp"), QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
    for name, value in case.in_folder.items():
        environment[name] = value.format(d=folder)
    return environment


def prepare(case, folder, with_old):
    (folder / "tmp").mkdir()
    for name, content in case.inputs.items():
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        (folder / name).write_bytes(content)
    if case.keeps_outputs:
        for name, content in case.expected.items():
            (folder / name).write_bytes(content)
    elif with_old:
        for name in case.outputs:
            if "/" not in name:
                (folder / name).write_bytes(OLD)


def read_files(folder):
    found = {}
    for path in sorted(folder.rglob("*")):
        if path.is_file() or path.is_symlink():
            found[str(path.relative_to(folder))] = path.read_bytes()
    return found


def command_line(case, folder):
    return [argument.format(d=folder) for argument in case.arguments.split()]


def run_in(case, folder, injection, working_folder):
    """injection: arguments of the injector, or None for none at all."""
    log = working_folder / "log"
    command = [PROGRAM, *command_line(case, folder)]
    if injection is not None:
        command = [INJECTOR, "--under", str(folder), "--log", str(log), *injection, "--", *command]
    try:
        done = subprocess.run(command, cwd=working_folder, env=clean_environment(case, folder),
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=TIMEOUT, check=False)
        code, stdout, stderr = done.returncode, done.stdout, done.stderr
    except subprocess.TimeoutExpired:
        code, stdout, stderr = "hangs", b"", b""
    logged = log.read_text(errors="replace").splitlines() if injection is not None and log.exists() else []
    counted, done_count = -1, 0
    if logged and (match := re.fullmatch(r"counted (\d+) done (\d+)", logged[-1])):
        counted, done_count = int(match[1]), int(match[2])
    lines = stderr.decode("utf-8", "replace").splitlines()
    return Run(code, stdout, lines, read_files(folder), counted, done_count, logged[:-1])


def run(case, injection=None, with_old=False):
    """One run in a fresh folder."""
    with tempfile.TemporaryDirectory(prefix="zav-faults-") as base:
        folder = pathlib.Path(base) / "d"
        folder.mkdir()
        prepare(case, folder, with_old)
        return run_in(case, folder, injection, pathlib.Path(base))


def calls_of(case, injection):
    """How many such calls a run has."""
    counted = run(case, injection).counted
    if counted < 0:
        raise SystemExit(f"{case.name}: the calls of a run cannot be counted")
    return counted


def without_folder(lines):
    return [re.sub(r"\S*zav-faults-[^/]*/d/", "", line) for line in lines]


def learn(case):
    """What the case makes when nothing disturbs it."""
    if case.keeps_outputs:
        case.keeps_outputs = False
        learn(case)
        case.keeps_outputs = True
        return
    undisturbed = run(case)
    if undisturbed.code != 0:
        raise SystemExit(f"{case.name}: fails undisturbed: {undisturbed.lines}")
    missing = [name for name in case.outputs if name not in undisturbed.files]
    if missing:
        raise SystemExit(f"{case.name}: does not make {missing}; there are {sorted(undisturbed.files)}")
    case.expected = {name: undisturbed.files[name] for name in case.outputs}
    case.usual_lines = tuple(without_folder(undisturbed.lines))


def leftovers(case, files):
    known = set(case.inputs) | set(case.outputs)
    return [name for name in files if name not in known]


def is_named_as_unfinished(case, name):
    """Nobody takes human.tsv.a1B2c3 for a result; in the folder for temporary files anything may stand."""
    if name.startswith("tmp/"):
        return True
    return any(re.fullmatch(re.escape(output) + r"\.[0-9A-Za-z]{6}(-journal)?", name) for output in case.outputs)


def wrong_files(case, result, with_old):
    """Outputs that are neither complete nor what they were."""
    wrong = []
    for name in case.outputs:
        content = result.files.get(name)
        before = case.expected[name] if case.keeps_outputs else OLD if with_old and "/" not in name else None
        if content not in (case.expected[name], before):
            wrong.append(f"{name} is neither complete nor what it was ({len(content or b'')} bytes)")
    for name, content in case.inputs.items():
        if result.files.get(name) != content:
            wrong.append(f"the input {name} was changed")
    return wrong


def all_names(case):
    """What a failed run may name. A temporary file has no name."""
    names = [name.split("/")[-1] for name in (*case.inputs, *case.outputs)]
    return {*names, "standard output", "zav-faults-", "pictures", "a temporary file in tmp"}


def names_of(case, path):
    """What a run may name where a call on this path has failed: a file by the name that it is to have; for the folder,
    each file in it; for a file that has no name yet any output."""
    place = re.search(r"zav-faults-[^/]*/d(?:/(.*))?$", path)
    inside = place[1] if place and place[1] else ""
    is_nameless = re.search(r"#\d+( \(deleted\))?$", inside) is not None
    if inside.startswith("tmp") and not is_nameless:
        return {"a temporary file in tmp"}
    if not inside or is_nameless:
        return all_names(case)
    name = inside.split("/")[-1].removesuffix("-journal")
    return {name, re.sub(r"\.[0-9A-Za-z]{6}$", "", name)}


@dataclasses.dataclass
class Told:
    """What the line about a failure has to hold: one of the names and, where there are any, one of the reasons."""

    names: set
    reasons: tuple


def wrong_message(case, result, told):
    """A failed run tells one line more than usual, with a file and the reason."""
    lines = without_folder(result.lines)
    own = [line for line in lines if line not in case.usual_lines and not line.startswith("zav: left out")]
    foreign = [line for line in own if not line.startswith("zav: ")]
    if foreign:
        return [f"line that is not the program's own: {foreign[0]!r}"]
    if len(own) != 1:
        return [f"{len(own)} lines about the failure: {own}"]
    wrong = []
    if not any(name in own[0] for name in told.names):
        wrong.append(f"none of {sorted(told.names)} is named: {own[0]!r}")
    if told.reasons and not any(reason in own[0] for reason in told.reasons):
        wrong.append(f"none of the reasons {told.reasons} is told: {own[0]!r}")
    return wrong


def judge(case, result, with_old, told, may_leave=False):
    """The faults of a run that one of its calls has failed in; empty if all is well."""
    if result.code not in (0, 1):
        return [f"exit code {result.code}: {result.lines[-2:]}"]
    faults = wrong_files(case, result, with_old)
    if result.code == 0:
        faults += [f"exit code 0 without {name}" for name in case.outputs
                   if result.files.get(name) != case.expected[name]]
    else:
        faults += wrong_message(case, result, told)
    for name in leftovers(case, result.files):
        if not may_leave or not is_named_as_unfinished(case, name):
            faults.append(f"{name} is left over")
    return faults


@dataclasses.dataclass
class Row:
    """A row of the table."""

    part: str
    command: str
    call: str
    runs: int = 0
    failed: int = 0
    completed: int = 0
    faults: list = dataclasses.field(default_factory=list)

    def add(self, code, faults, where):
        self.runs += 1
        self.failed += code != 0
        self.completed += code == 0
        self.faults += [f"{where}: {fault}" for fault in faults]


HEADING = f"{'part':<8} {'command':<24} {'call':<24} {'runs':>6} {'failed':>7} {'done':>6} {'faults':>7}"


def show(row):
    print(f"{row.part:<8} {row.command:<24} {row.call:<24} {row.runs:>6} {row.failed:>7} {row.completed:>6}"
          f" {len(row.faults):>7}", flush=True)
    for fault in row.faults[:6]:
        print(f"    FAULT {fault}", flush=True)


def in_parallel(function, items, jobs):
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        yield from pool.map(function, items)


# Inputs -------------------------------------------------------------------------------------------------------------

FASTA = (b">sp|P1|ONE_HUMAN A GN=ONE\nMKWVTFISLLFLFSSAYSRGVFRRDAHKSEVAHR\n"
         b">sp|P2|TWO_HUMAN B GN=TWO\nMAAGGISSLEDAKLLGWQKXPEPTIDEK\n")


def chromatograms():
    rows = ["id\trt\tintensity"]
    for trace, apex in (("one", 30), ("two", 40)):
        for i in range(60):
            rows.append(f"{trace}\t{i * 0.1:.1f}\t{1000 * math.exp(-((i - apex) / 4) ** 2):.3f}")
    return "\n".join(rows).encode() + b"\n"


LIBRARY_ENDINGS = ("tsv", "msp", "mgf", "mzSpecLib.txt", "dlib", "blib", "pqp")


def library_case(ending, options="", name=None):
    library = f"lib.{ending}"
    return Case(name or f"library {ending}",
                f"library {{d}}/p.fasta -o {{d}}/{library} --skipped {{d}}/skipped.txt --threads 1 {options}",
                (library, library + ".json", "skipped.txt"), {"p.fasta": FASTA})


def shards(ending):
    """The files of a library in two shards, made undisturbed."""
    files = {}
    for number in (1, 2):
        shard = f"s{number}.{ending}"
        case = Case(shard, f"library {{d}}/p.fasta -o {{d}}/{shard} --shard {number}/2 --threads 1",
                    (shard, shard + ".json"), {"p.fasta": FASTA})
        learn(case)
        files |= case.expected
    return files


def merge_case(ending):
    library = f"lib.{ending}"
    return Case(f"merge {ending}", f"library merge {{d}}/s1.{ending} {{d}}/s2.{ending} -o {{d}}/{library}",
                (library, library + ".json"), shards(ending))


def resume_case(ending):
    case = library_case(ending, "--resume", f"library --resume {ending}")
    case.keeps_outputs = True
    return case


def spectrum_case():
    return Case("spectrum", "spectrum AAGGISSLEDAK 2 -o {d}/s.tsv --plot {d}/s.svg", ("s.tsv", "s.svg"))


def peptides_case():
    return Case("spectrum --peptides", "spectrum --peptides {d}/list.txt -o {d}/s.msp", ("s.msp",),
                {"list.txt": b"peptide\tcharge\nAAGGISSLEDAK\t2\nLLGWQK\t1\n"})


def limits_case(threads=1):
    return Case("limits --plot" if threads == 1 else f"limits --plot, {threads} threads",
                f"limits {{d}}/t.txt --method walk --threads {threads} -o {{d}}/l.tsv --plot {{d}}/pictures",
                ("l.tsv", "pictures/0001_one.svg", "pictures/0002_two.svg"), {"t.txt": chromatograms()},
                draws_pictures=True)


# The report names its input as the command line does: by a path that is the same in every run.
def report_case():
    return Case("limits --report", "limits d/t.txt --method walk --threads 1 -o {d}/l.tsv --report {d}/l.html",
                ("l.tsv", "l.html"), {"t.txt": chromatograms()})


def compare_case():
    run = b"BEGIN IONS\nTITLE=one\n300.1 5\n500.2 9\nEND IONS\nBEGIN IONS\nTITLE=two\n300.1 5\nEND IONS\n"
    return Case("spectrum --against", "spectrum --peptides {d}/list.txt --against d/run.mgf --scores {d}/s.tsv "
                "--report {d}/s.html -o {d}/s.msp", ("s.tsv", "s.html", "s.msp"),
                {"list.txt": b"peptide\tcharge\tscan\nAAGGISSLEDAK\t2\ttwo\nLLGWQK\t2\tone\n", "run.mgf": run})


def split_case():
    return Case("split --plot", "split {d}/t.txt --threads 1 -o {d}/l.json --plot {d}/pictures --plot-format png",
                ("l.json", "pictures/0001_one.png", "pictures/0002_two.png"), {"t.txt": chromatograms()})
