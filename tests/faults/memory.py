# SPDX-License-Identifier: Apache-2.0
"""Allocations fail: each of a public call of the libraries (out_of_memory_tests), and those of the program."""

import os
import pathlib
import re
import subprocess
import tempfile

import workbench
from workbench import Row

TESTS = os.environ["ZAV_OUT_OF_MEMORY_TESTS"]
PRELOADED = os.environ["ZAV_FAILING_ALLOCATIONS"]

# The second where the system says so of a file.
OUT_OF_MEMORY = re.compile("zav: (out of memory|.*: Cannot allocate memory)")
UNFINISHED_DATABASE = r".*\.(dlib|blib|pqp)\.[0-9A-Za-z]{6}(-journal)?"
CRASH_OF_QT_GUI = 86  # the exit code that the preloaded library gives it


def disturbed(case, number, later_too):
    """The run, and how many allocations it made and how many failed; None where it ended without counting."""
    with tempfile.TemporaryDirectory(prefix="zav-faults-") as base:
        folder = pathlib.Path(base) / "d"
        counts = pathlib.Path(base) / "counts"
        folder.mkdir()
        workbench.prepare(case, folder, False)
        case.in_folder = {"LD_PRELOAD": PRELOADED, "ZAV_FAIL_ALLOCATION": str(number), "ZAV_ALLOCATIONS_FILE": "counts"}
        if later_too:
            case.in_folder["ZAV_FAIL_LATER_TOO"] = "1"
        result = workbench.run_in(case, folder, None, pathlib.Path(base))
        case.in_folder = {}
        counted = [int(word) for word in counts.read_text().split()] if counts.exists() else None
        return result, counted


def is_whole_picture(content):
    return (content or b"").rstrip().endswith(b"</svg>")


def judge(case, result, later_too):
    # Qt Gui crashes where it gets no memory, and takes another font where it cannot load one.
    if case.draws_pictures:
        if result.code == CRASH_OF_QT_GUI:
            left = [name for name in workbench.leftovers(case, result.files)
                    if not workbench.is_named_as_unfinished(case, name)]
            return workbench.wrong_files(case, result, False) + [f"{name} is left over" for name in left]
        for name in case.outputs:
            if name.endswith(".svg") and is_whole_picture(result.files.get(name)):
                result.files[name] = case.expected[name]
    if result.code not in (0, 1):
        return [f"exit code {result.code}: {result.lines[-2:]}"]
    faults = workbench.wrong_files(case, result, False)
    # The JSON library's destructors take memory: where they get none, the process ends at once.
    faults += [f"{name} is left over" for name in workbench.leftovers(case, result.files)
               if not later_too or not re.fullmatch(UNFINISHED_DATABASE, name)]
    own = [line for line in workbench.without_folder(result.lines) if line not in case.usual_lines]
    if result.code == 0:
        return faults + [f"exit code 0 without {name}" for name in case.outputs
                         if result.files.get(name) != case.expected[name]]
    if len(own) != 1 or not OUT_OF_MEMORY.fullmatch(own[0]):
        faults.append(f"it says {own}")
    return faults


def program_rows(case, most, jobs):
    """Moments spread evenly over the allocations of a run; the reading of the arguments, the same for all, has few."""
    workbench.learn(case)
    usage = workbench.Case("", "limits --no-such-option", ())
    parsed = disturbed(usage, 0, False)[1][0]
    total = disturbed(case, 0, False)[1][0]
    step = max(1, (total - parsed) // most)
    numbers = [*range(1, parsed, max(1, parsed // (most // 5))), *range(parsed, total + 1, step)]
    for later_too in (False, True):
        row = Row("memory", case.name, f"allocation{' for ever' if later_too else ''}")
        copies = [(number, workbench.dataclasses.replace(case)) for number in numbers]

        def attempt(numbered, later_too=later_too):
            number, own_case = numbered
            result, _ = disturbed(own_case, number, later_too)
            return number, result, judge(own_case, result, later_too)

        for number, result, faults in workbench.in_parallel(attempt, copies, jobs):
            row.add(result.code, faults, f"allocation {number}")
        yield row


def library_rows(is_short):
    """The test program prints rows of its own."""
    only = "OutOfMemory.PredictMsMsFragmentation:OutOfMemory.SplitXic" if is_short else "*"
    done = subprocess.run([TESTS, f"--gtest_filter={only}"], capture_output=True, text=True, check=False)
    faults = []
    for line in done.stdout.splitlines():
        if line.startswith("    FAULT "):
            faults.append(line[len("    FAULT "):])
        elif line.startswith("memory "):
            runs, failed, completed, _ = (int(word) for word in line.split()[-4:])
            yield Row("memory", line[9:33].strip(), line[34:58].strip(), runs, failed, completed, faults)
            faults = []
    if done.returncode != 0:
        yield Row("memory", "out_of_memory_tests", "", 1, 1, 0, ["the test program fails: " + done.stdout[-300:]])


def rows(is_short, jobs, only):
    if not only:
        yield from library_rows(is_short)
    if is_short:
        cases = [(workbench.merge_case("dlib"), 20)]
    else:
        cases = [(workbench.merge_case("tsv"), 300), (workbench.merge_case("dlib"), 300),
                 (workbench.limits_case(), 200), (workbench.limits_case(2), 200), (workbench.peptides_case(), 100),
                 (workbench.library_case("tsv"), 100), (workbench.library_case("blib"), 100)]
    for case, most in cases:
        if only in case.name:
            yield from program_rows(case, most, jobs)
