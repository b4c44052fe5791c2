# SPDX-License-Identifier: Apache-2.0
"""The program is ended at every moment: killed, after which a second run has to bring the same bytes as one that nobody
disturbed; or by a signal that it notices, after which nothing may be left over."""

import os
import pathlib
import random
import subprocess
import tempfile
import time

import workbench
from workbench import Row

SIGNALS = {"TERM": 143, "INT": 130, "HUP": 129}

# What is on the disk changes at these calls only: a kill at each of them is one at every moment.
CHANGING = "open,write,sync,rename,mkdir,truncate,unlink,close"


def shard_case(ending):
    shard = f"s1.{ending}"
    return workbench.Case(f"library --shard {ending}",
                          f"library {{d}}/p.fasta -o {{d}}/{shard} --shard 1/2 --threads 1 --resume",
                          (shard, shard + ".json"), {"p.fasta": workbench.FASTA})


def killed_cases(is_short):
    if is_short:
        return [workbench.library_case("dlib", "--resume --no-retention-times")]
    libraries = [workbench.library_case(ending, "--resume") for ending in workbench.LIBRARY_ENDINGS]
    return [*libraries, shard_case("tsv"), shard_case("pqp"), workbench.merge_case("dlib"), workbench.limits_case()]


def judge_killed(case, killed, second):
    faults = workbench.wrong_files(case, killed, False)
    faults += [f"the kill leaves {name}" for name in workbench.leftovers(case, killed.files)
               if not workbench.is_named_as_unfinished(case, name)]
    if second.code != 0:
        faults.append(f"the second run fails: {second.lines[-1:]}")
    faults += [f"after the second run {name} differs" for name in case.outputs
               if second.files.get(name) != case.expected[name]]
    return faults


def killed_then_again(case, kill):
    """kill(folder, base) -> the run that is killed."""
    with tempfile.TemporaryDirectory(prefix="zav-faults-") as base:
        folder = pathlib.Path(base) / "d"
        folder.mkdir()
        workbench.prepare(case, folder, False)
        killed = kill(folder, pathlib.Path(base))
        second = workbench.run_in(case, folder, None, pathlib.Path(base))
        return killed, judge_killed(case, killed, second)


def killed_at_each_call(case, jobs, at_most=None):
    row = Row("death", case.name, "KILL at each call")
    count = workbench.calls_of(case, ["--calls", CHANGING])
    numbers = range(1, count + 1)
    if at_most and count > at_most:
        numbers = sorted({1 + i * (count - 1) // (at_most - 1) for i in range(at_most)})

    def attempt(number):
        injection = ["--calls", CHANGING, "--do", "KILL", "--nth", str(number)]
        return number, *killed_then_again(case, lambda folder, base: workbench.run_in(case, folder, injection, base))

    for number, killed, faults in workbench.in_parallel(attempt, numbers, jobs):
        row.add(killed.code, faults, f"call {number}")
    return row


def killed_after(case, folder, base, seconds):
    process = subprocess.Popen([workbench.PROGRAM, *workbench.command_line(case, folder)], cwd=base,
                               env=workbench.clean_environment(case, folder), stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        process.wait(seconds)
    except subprocess.TimeoutExpired:
        process.kill()
    code = process.wait()
    return workbench.Run(code, b"", [], workbench.read_files(folder), 0, 0, [])


def killed_at_times(case, moments, jobs):
    """Moments that are spread over the time of a run, by the clock."""
    row = Row("death", case.name, "KILL by the clock")
    start = time.monotonic()
    workbench.run(case)
    duration = time.monotonic() - start
    chance = random.Random(1)
    times = [duration * (i + chance.random()) / moments for i in range(moments)]

    def attempt(seconds):
        return seconds, *killed_then_again(case, lambda folder, base: killed_after(case, folder, base, seconds))

    for seconds, killed, faults in workbench.in_parallel(attempt, times, jobs):
        row.add(killed.code, faults, f"after {seconds:.3f} s")
    return row


def judge_signalled(case, result, code, cleans_up):
    if result.code not in (0, code):
        return [f"exit code {result.code}: {result.lines[-2:]}"]
    faults = workbench.wrong_files(case, result, False)
    if result.code == 0:
        faults += [f"exit code 0 without {name}" for name in case.outputs
                   if result.files.get(name) != case.expected[name]]
    lines = workbench.without_folder(result.lines)
    own = [line for line in lines if line not in case.usual_lines and line != "zav: interrupted"]
    if own:
        faults.append(f"it says {own}")
    faults += [f"{name} is left over" for name in workbench.leftovers(case, result.files)
               if cleans_up or not workbench.is_named_as_unfinished(case, name)]
    return faults


def signalled(case, name, jobs, at_most=None, cleans_up=True):
    row = Row("death", case.name, f"SIG{name} at each call")
    kinds = CHANGING + ",read"
    count = workbench.calls_of(case, ["--calls", kinds])
    step = max(1, count // at_most) if at_most else 1

    def attempt(number):
        result = workbench.run(case, ["--calls", kinds, "--do", name, "--nth", str(number)])
        return number, result, judge_signalled(case, result, SIGNALS[name], cleans_up)

    ended = 0
    for number, result, faults in workbench.in_parallel(attempt, range(1, count + 1, step), jobs):
        row.add(result.code, faults, f"call {number}")
        ended += result.code == SIGNALS[name]
    if not ended:
        row.faults.append("the signal ends no run")
    return row


def order(case):
    """Each file is on the disk before it gets its name, and the name is before the run goes on."""
    row = Row("death", case.name, "sync, rename, sync")
    calls = [line.split(" ", 3)[1:] for line in workbench.run(case, ["--calls", "write,sync,rename"]).calls]
    folder_of = os.path.dirname
    for i, (kind, _, path) in enumerate(calls):
        is_final = kind == "rename" and os.path.basename(path) in [os.path.basename(name) for name in case.outputs]
        if not is_final:
            continue
        before = [call for call in calls[:i] if folder_of(call[2]) == folder_of(path) and call[0] != "rename"]
        after = [call for call in calls[i + 1:] if call[2] == folder_of(path)]
        faults = [] if before and before[-1][0] == "sync" else [f"{path} is not on the disk when it gets its name"]
        if not after or after[0][0] != "sync":
            faults.append(f"the folder of {path} is not synced")
        row.add(0, faults, path)
    if row.runs < len(case.outputs):
        row.faults.append(f"{row.runs} renames for {len(case.outputs)} files")
    return row


def rows(is_short, jobs, only):
    for case in killed_cases(is_short):
        if only in case.name:
            workbench.learn(case)
            yield order(case)
            yield killed_at_each_call(case, jobs, 20 if is_short else None)
    for ending in ("tsv",) if is_short else ("tsv", "dlib", "blib"):
        case = workbench.library_case(ending, "--resume")
        if only in case.name:
            workbench.learn(case)
            yield killed_at_times(case, 10 if is_short else 100, jobs)
    cases = [(workbench.merge_case("blib"), True)]
    if not is_short:
        cases += [(workbench.library_case("tsv"), True), (workbench.library_case("pqp"), True),
                  (workbench.limits_case(), True), (workbench.split_case(), True), (workbench.spectrum_case(), False)]
    for case, cleans_up in cases:
        if only in case.name:
            workbench.learn(case)
            for name in SIGNALS:
                yield signalled(case, name, jobs, 8 if is_short else None, cleans_up)
