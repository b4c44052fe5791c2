#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs the commands of the tutorials and compares their output with what the pages show.

tutorials.py [--write] [PAGE...]      with --write, puts the present output and pictures into the pages

A page runs in a fresh folder, which holds copies of the data files that the page links to. All of its blocks run in one
shell, from top to bottom:

    ```sh                  commands; the page fails with the first that fails
    ```text                behind commands: what they printed, `...` for lines that are left out
    <!-- file: NAME -->    the block below is the content of this file
    <!-- not run -->       the block below is not run

Every picture in docs/images/tutorials that the page shows has to be drawn by its commands, under the same name.
Numbers may differ in their last digits, because processors round differently.
"""

import re
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PICTURES = ROOT / "docs/images/tutorials"

BLOCK = re.compile(
    r"(?:^<!-- (?P<note>[^\n]*?) -->\n+)?^```(?P<kind>\w+)\n(?P<content>.*?)^```$", re.MULTILINE | re.DOTALL
)
LINK = re.compile(r"(!?)\[[^\]]*\]\(([^)\s#]+)\)")
NUMBER = re.compile(r"(-?\d+(?:\.\d+)?(?:[eE][+-]?\d+)?)")
LEFT_OUT = "..."
RELATIVE_TOLERANCE = 0.005  # of a number with decimals: networks differ by less than that between processors
LONGEST = 300  # seconds that a page may take
LAST_DIGITS = 2  # or so many units of the last digit shown


@dataclass
class Step:
    """Commands to run, or a file to write where `file` has a name."""

    content: str
    file: str = ""
    shown: re.Match | None = None  # the block of the output


def steps_of(text):
    steps = []
    for block in BLOCK.finditer(text):
        note = block["note"] or ""
        if note.startswith("file: "):
            steps.append(Step(block["content"], file=note.removeprefix("file: ")))
        elif note == "not run":
            continue
        elif block["kind"] == "sh":
            steps.append(Step(block["content"]))
        elif block["kind"] == "text" and steps and not steps[-1].file and steps[-1].shown is None:
            steps[-1].shown = block
    return steps


def script_of(steps, records):
    """One shell script that keeps the output of each step in a file of its own."""
    lines = ["set -euo pipefail"]
    for number, step in enumerate(steps):
        if step.file:
            (records / f"{number}.file").write_text(step.content, encoding="utf-8")
            lines.append(f"cp '{records}/{number}.file' '{step.file}'")
        else:
            lines.append(f"{{\n{step.content}}} >'{records}/{number}.out' 2>&1")
    return "\n".join(lines) + "\n"


def same(expected, actual):
    """Whether two lines are the same up to the rounding of their numbers and the width of their blanks."""
    pieces, others = NUMBER.split(expected), NUMBER.split(actual)
    if len(pieces) != len(others):
        return False
    for place, (piece, other) in enumerate(zip(pieces, others, strict=True)):
        if place % 2 == 0:
            if " ".join(piece.split()) != " ".join(other.split()):
                return False
        elif not same_number(piece, other):
            return False
    return True


def same_number(expected, actual):
    if "." not in expected:
        return expected == actual
    decimals = len(re.split(r"[eE]", expected)[0].partition(".")[2])
    exponent = int(re.split(r"[eE]", expected)[1]) if re.search(r"[eE]", expected) else 0
    digits = LAST_DIGITS * 10.0 ** (exponent - decimals) * 1.000001
    return abs(float(expected) - float(actual)) <= max(digits, RELATIVE_TOLERANCE * abs(float(expected)))


def matches(expected, actual):
    """Whether the lines are those expected, where `...` stands for any number of lines."""
    if not expected:
        return not actual
    if expected[0] == LEFT_OUT:
        return any(matches(expected[1:], actual[skipped:]) for skipped in range(len(actual) + 1))
    return bool(actual) and same(expected[0], actual[0]) and matches(expected[1:], actual[1:])


def shortened(shown, actual):
    """The present output, left out where the page leaves it out: as many lines at both ends of each gap as before."""
    parts = "\n".join(shown).split(LEFT_OUT)
    if len(parts) == 1:
        return actual
    head, tail = len(parts[0].splitlines()), len(parts[-1].splitlines()) - 1
    return [*actual[:head], LEFT_OUT, *(actual[len(actual) - tail :] if tail > 0 else [])]


class Page:
    def __init__(self, path):
        self.path = path
        self.name = path.relative_to(ROOT)
        self.text = path.read_text(encoding="utf-8")
        self.steps = steps_of(self.text)
        links = LINK.findall(self.text)
        self.pictures = [Path(link).name for mark, link in links if mark and "images/tutorials/" in link]
        targets = [(path.parent / link).resolve() for mark, link in links if not mark and ":" not in link]
        self.data = [target for target in targets if target.is_file() and target.suffix not in (".md", ".ipynb")]

    def run(self, write):
        """The problems of the page; with `write`, the page is changed to hold the present output."""
        with tempfile.TemporaryDirectory() as scratch:
            folder, records = Path(scratch, "work"), Path(scratch, "records")
            folder.mkdir()
            records.mkdir()
            for file in self.data:
                shutil.copy(file, folder)
            script = script_of(self.steps, records)
            ended = subprocess.run(
                ["bash", "-c", script], cwd=folder, stdin=subprocess.DEVNULL, check=False, timeout=LONGEST
            )
            outputs = [self.output(records / f"{number}.out") for number in range(len(self.steps))]
            if ended.returncode != 0:
                last = [output for output in outputs if output is not None][-1]
                return [f"{self.name}: a command failed with {ended.returncode}; it printed:\n" + "\n".join(last)]
            if write:
                self.write(outputs, folder)
                return []
            return [*self.differences(outputs), *self.missing_pictures(folder)]

    @staticmethod
    def output(file):
        if not file.exists():
            return None
        return [line.rstrip() for line in file.read_text(encoding="utf-8").splitlines()]

    def differences(self, outputs):
        for step, actual in zip(self.steps, outputs, strict=True):
            if step.shown and not matches([line.rstrip() for line in step.shown["content"].splitlines()], actual):
                line = self.text.count("\n", 0, step.shown.start("content"))
                yield f"{self.name}:{line}: the commands above now print:\n" + "\n".join(actual)

    def missing_pictures(self, folder):
        for picture in self.pictures:
            if not (folder / picture).is_file():
                yield f"{self.name}: no command drew {picture}"

    def write(self, outputs, folder):
        text = self.text
        for step, actual in reversed(list(zip(self.steps, outputs, strict=True))):
            if step.shown:
                new = "".join(line + "\n" for line in shortened(step.shown["content"].splitlines(), actual))
                text = text[: step.shown.start("content")] + new + text[step.shown.end("content") :]
        self.path.write_text(text, encoding="utf-8")
        PICTURES.mkdir(exist_ok=True)
        for picture in self.pictures:
            shutil.copy(folder / picture, PICTURES)


def main():
    arguments = sys.argv[1:]
    write = "--write" in arguments
    named = [Path(argument).resolve() for argument in arguments if argument != "--write"]
    found = []
    for path in named or sorted((ROOT / "docs/tutorials").glob("*.md")):
        page = Page(path)
        print(f"{page.name}: {len(page.steps)} blocks", flush=True)
        found += page.run(write)
    if found:
        sys.exit("\n\n".join(found))


if __name__ == "__main__":
    main()
