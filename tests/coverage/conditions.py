# SPDX-License-Identifier: Apache-2.0
"""Counts the outcomes of conditions that the tests saw, from a build with clang's coverage and its merged profile.

A template or an inline function stands in several programs; an outcome counts as seen when any of them saw it."""

import collections
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LIBRARIES = 95.0  # per cent
PARTS = {
    "common/": ("common/stable/", "common/core_mini/"),
    "ml/": ("ml/src/", "ml/include/"),
    "the program": ("cli/src/",),
}


def is_program(path):
    """Or a shared library."""
    if path.is_symlink() or not path.is_file() or path.suffix == ".o":
        return False
    with path.open("rb") as file:
        return file.read(4) == b"\x7fELF"


def part_of(path):
    relative = str(path.relative_to(ROOT)) if path.is_relative_to(ROOT) else ""
    if "/tests/" in relative:
        return None
    return next((part for part, folders in PARTS.items() if relative.startswith(folders)), None)


def exported(build):
    """What llvm-cov says of each file, program by program: of several at once it would take functions of one name for
    one function."""
    for program in filter(is_program, sorted(build.rglob("*"))):
        command = ["llvm-cov-14", "export", "--instr-profile", build / "all.profdata", program]
        run = subprocess.run(command, capture_output=True, text=True, check=False)
        if run.returncode == 0:
            yield from json.loads(run.stdout)["data"][0]["files"]
        elif "no coverage data found" not in run.stderr.lower():
            sys.exit(f"{program}: {run.stderr}")


def outcomes(build):
    """Of each file: place of a condition -> whether it was seen to hold, and not to."""
    seen = collections.defaultdict(dict)
    for file in exported(build):
        path = pathlib.Path(file["filename"]).resolve()
        if part_of(path) is None:
            continue
        for line, column, last_line, last_column, held, failed, *_ in file["branches"]:
            outcome = seen[path].setdefault((line, column, last_line, last_column), [False, False])
            outcome[0] |= held > 0
            outcome[1] |= failed > 0
    return seen


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    totals = {part: [0, 0] for part in PARTS}
    missed = []
    for path, conditions in sorted(outcomes(build).items()):
        total = totals[part_of(path)]
        for (line, column, *_), outcome in sorted(conditions.items()):
            total[1] += 2
            total[0] += sum(outcome)
            missing = [what for what, is_seen in zip(("true", "false"), outcome) if not is_seen]
            if missing:
                missed.append(f"{path.relative_to(ROOT)}:{line}:{column}: never {' nor '.join(missing)}")
    (build / "missed.txt").write_text("\n".join(missed) + "\n", encoding="utf-8")
    for part, (found, all_) in totals.items():
        print(f"{part:12} {100 * found / max(1, all_):5.1f} % of {all_} outcomes")
    found, all_ = (sum(totals[part][i] for part in ("common/", "ml/")) for i in (0, 1))
    if not all_ or 100 * found / all_ < LIBRARIES:
        sys.exit(f"conditions: below {LIBRARIES} % of the libraries")


if __name__ == "__main__":
    main()
