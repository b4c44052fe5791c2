# SPDX-License-Identifier: Apache-2.0
"""The n-th call of a kind fails, for n = 1, 2, 3 ... until the run completes: alone, or with every later one."""

import workbench
from workbench import Row

# Kind of call -> what is done to it. EINTR for ever would be a call that never returns.
ACTIONS = {
    "open": ("EMFILE", "EIO", "EINTR"),
    "read": ("EIO", "EINTR", "short"),
    "write": ("ENOSPC", "EIO", "EINTR", "short"),
    "sync": ("EIO", "ENOSPC", "EINTR"),
    "rename": ("EIO", "ENOSPC"),
    "mkdir": ("EIO", "ENOSPC"),
    "close": ("EIO", "EINTR"),
    "truncate": ("EIO",),
    "unlink": ("EIO",),
    "seek": ("EIO",),
    "stat": ("EIO",),
    "mmap": ("EIO",),
}
SHORT_ACTIONS = {
    "open": ("EMFILE",),
    "read": ("EIO", "short"),
    "write": ("ENOSPC", "EINTR", "short"),
    "sync": ("EIO",),
    "rename": ("EIO",),
    "mkdir": ("ENOSPC",),
}
# Kinds of calls at which a run with a network begins to differ from one without.
OUTPUT_KINDS = ("write", "sync", "rename")
# Of a command that a short run does little with: where it differs from the others.
SHORT_KINDS = {"library blib": OUTPUT_KINDS, "spectrum --against": ("read",)}
FORMATS_ALONE = tuple(f"library {ending}" for ending in ("msp", "mgf", "mzSpecLib.txt", "pqp"))


def must_complete(kind, action):
    return action == "short" or (action == "EINTR" and kind in ("open", "read", "write", "close"))


def must_fail(kind, action, failed_calls):
    """Qt waits for the disk once more after the program has; nothing is lost when that fails."""
    if kind != "sync" or action == "EINTR":
        return False
    return any("fdatasync" not in line or "(deleted)" not in line for line in failed_calls)


def told(case, kind, action, failed_calls):
    """The files whose calls have failed, and the error. Qt does not keep the reason why it could not look at a file."""
    names = set()
    for line in failed_calls:
        names |= workbench.names_of(case, line.split(" ", 3)[3])
    if kind == "stat":
        return workbench.Told(names, ())
    reasons = workbench.REASONS_OF.get(action, ())
    return workbench.Told(names, (*reasons, workbench.OPENED_FOR_READING) if kind == "open" else reasons)


def faults_of(case, kind, action, number, result, with_old):
    failed_calls = result.calls[number - 1:][:result.done]
    # With one call failed, what cannot be removed stays, under a name that nobody takes for a result.
    faults = workbench.judge(case, result, with_old, told(case, kind, action, failed_calls),
                             may_leave=kind in ("unlink", "rename", "close"))
    if result.code != 0 and must_complete(kind, action):
        faults.append(f"{action} ends the run: {result.lines[-1:]}")
    if result.code == 0 and must_fail(kind, action, failed_calls):
        faults.append(f"{action} of {kind} is passed over")
    return faults


def failures(case, kind, action, is_forever, jobs):
    """One row: that call, failed at each place."""
    row = Row("calls", case.name, f"{kind} {action}{' for ever' if is_forever else ''}")
    injection = ["--calls", kind, "--do", action] + (["--every"] if is_forever else [])

    def attempt(number):
        with_old = number % 2 == 0
        result = workbench.run(case, [*injection, "--nth", str(number)], with_old)
        return number, result, faults_of(case, kind, action, number, result, with_old)

    count = workbench.calls_of(case, ["--calls", kind, "--do", action, "--nth", "0"])
    # One more than there are: the run that completes undisturbed.
    for number, result, faults in workbench.in_parallel(attempt, range(1, count + 2), jobs):
        call = next((line for line in result.calls if line.startswith(f"{number} ")), "")
        row.add(result.code, faults, f"call {call or number}")
    return row


def cases(is_short):
    endings = ("tsv", "dlib") if is_short else workbench.LIBRARY_ENDINGS
    yield from (workbench.merge_case(ending) for ending in endings)
    yield workbench.resume_case("dlib")
    yield workbench.limits_case()
    if is_short:
        yield workbench.library_case("blib", "--no-retention-times")
        yield workbench.compare_case()
        return
    yield workbench.report_case()
    yield workbench.split_case()
    yield workbench.spectrum_case()
    yield workbench.peptides_case()
    yield workbench.compare_case()
    yield from (workbench.library_case(ending) for ending in endings)
    yield workbench.library_case("tsv", "--low-memory", "library --low-memory")


def is_left_out(case, kind, action, is_forever, is_short):
    """EINTR for ever is no call that returns. What the formats of libraries share is failed in three of them. A short
    run does little with a network, whose start takes its time."""
    if action == "EINTR" and is_forever:
        return True
    if case.name in FORMATS_ALONE and kind not in OUTPUT_KINDS:
        return True
    if not is_short:
        return False
    return is_forever != (action == "short") or kind not in SHORT_KINDS.get(case.name, SHORT_ACTIONS)


def rows(is_short, jobs, only):
    for case in cases(is_short):
        if only and only not in case.name:
            continue
        workbench.learn(case)
        for kind, actions in (SHORT_ACTIONS if is_short else ACTIONS).items():
            for action in actions:
                for is_forever in (False, True):
                    if is_left_out(case, kind, action, is_forever, is_short):
                        continue
                    row = failures(case, kind, action, is_forever, jobs)
                    if row.runs > 1 or row.faults:  # of one run only there is no such call
                        yield row
