#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Lays out the pages of the site in one folder, and checks every link between the Markdown pages of the sources.

stage.py FOLDER

Pages keep their paths within docs/. Pages that stand elsewhere, such as models/README.md, get a place among them; links
are written anew to match. A link to a file that is no page leads to a copy of it.
"""

import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

# Pages that stand outside docs/, and their places in the site.
ELSEWHERE = {
    "CHANGELOG.md": "changelog.md",
    "CONTRIBUTING.md": "contributing.md",
    "cli/tests/data/README.md": "reference/test-data.md",
    "models/README.md": "reference/models.md",
    "python/examples/tour.ipynb": "tutorials/python.ipynb",
    "training/README.md": "explanation/training.md",
    "workflows/README.md": "how-to/workflow.md",
}
FRONT_PAGE = {"README.md": "index.md"}  # README.md is the front page of the sources, docs/index.md that of the site

SECTION = re.compile(r"^<!-- from (\S+): (.*) -->$")  # stands for a section of that page

LINK = re.compile(r"(?<=\]\()([^)\s]+)(?=\))")
FENCE = re.compile(r"^\s*(`{3,}|:{3,})")
CODE_SPAN = re.compile(r"(?<![`}])`([^`]+)`(?!`)")
CLASS = re.compile(r"^(?:class|struct)(?: \[\[nodiscard\]\])?(?: ZAV_\w+)? (\w+)(?: :.*)?$", re.MULTILINE)


def tracked(*patterns):
    listing = ["git", "-C", str(ROOT), "ls-files", "--cached", "--others", "--exclude-standard", "--", *patterns]
    names = subprocess.run(listing, check=True, capture_output=True, text=True).stdout.splitlines()
    return [name for name in names if (ROOT / name).is_file()]


def cpp_classes():
    names = set()
    for header in tracked("common/*/include/zav/*.h", "ml/include/zav/*.h"):
        names.update(CLASS.findall((ROOT / header).read_text(encoding="utf-8")))
    return names - {"Entry", "Private"}


def python_names():
    text = (ROOT / "python/zav/__init__.py").read_text(encoding="utf-8")
    return set(re.findall(r'^    "([A-Za-z]\w*)",$', text, re.MULTILINE))


class Site:
    def __init__(self, folder):
        self.folder = folder
        self.problems = []
        self.classes = cpp_classes()
        self.python_names = python_names()
        self.places = {name: name.removeprefix("docs/") for name in tracked("docs/*.md")} | ELSEWHERE

    def stage(self):
        for page, place in self.places.items():
            text = (ROOT / page).read_text(encoding="utf-8")
            self.write(place, self.rewritten(page, text) if page.endswith(".md") else text)
        for page in tracked("*.md"):  # those that are no pages of the site are checked only
            if page not in self.places:
                self.rewritten(page, (ROOT / page).read_text(encoding="utf-8"))

    def write(self, place, text):
        path = self.folder / place
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def rewritten(self, page, text, place=None):
        """The page with its links as the site needs them, and with the names of classes as links."""
        lines = []
        fence = None
        for number, line in enumerate(text.splitlines(), 1):
            if section := SECTION.match(line):
                line = self.section(*section.groups(), self.places[page])
            mark = FENCE.match(line)
            if fence is None and mark:
                fence = mark[1]
            elif fence is not None:
                if mark and mark[1].startswith(fence) and line.strip() == mark[1]:
                    fence = None
            else:
                line = LINK.sub(lambda found, at=number: self.link(page, found[1], f"{page}:{at}", place), line)
                line = self.with_classes(line)
            lines.append(line)
        return "\n".join(lines) + "\n"

    def section(self, page, title, place):
        """The section of another page, without its heading and with its own headings one level up."""
        text = (ROOT / page).read_text(encoding="utf-8")
        found = re.search(rf"^## {re.escape(title)}\n+(.*?)(?=^## )", text, re.MULTILINE | re.DOTALL)
        if not found:
            self.problems.append(f"{page} has no section '{title}'")
            return ""
        return self.rewritten(page, re.sub(r"^###", "##", found[1], flags=re.MULTILINE), place)

    def link(self, page, target, where, place=None):
        path, mark, anchor = target.partition("#")
        if not path or ":" in path:
            return target
        file = os.path.normpath(os.path.join(os.path.dirname(page), path))
        if not (ROOT / file).exists():
            self.problems.append(f"{where}: there is no {path}")
            return target
        at = place or self.places.get(page)
        if at is None:
            return target
        if (ROOT / file).is_dir():
            file = os.path.join(file, "README.md")
        to = (self.places | FRONT_PAGE).get(file) or self.copy(file, where)
        return os.path.relpath(to, os.path.dirname(at)) + mark + anchor

    def copy(self, file, where):
        if not (ROOT / file).is_file():
            self.problems.append(f"{where}: {file} is neither a file nor a page")
            return file
        place = file.removeprefix("docs/") if file.startswith("docs/") else f"files/{file}"
        (self.folder / place).parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(ROOT / file, self.folder / place)
        return place

    def with_classes(self, line):
        if line.startswith("#") or "](" in line:
            return line
        return CODE_SPAN.sub(self.class_link, line)

    def class_link(self, found):
        name = found[1].removeprefix("zav::")
        if name in self.classes:
            return f"{{cpp:any}}`{found[1]} <zav::{name}>`"
        return f"{{py:obj}}{found[0]}" if name.removeprefix("zav.") in self.python_names and "." in name else found[0]


def main():
    site = Site(Path(sys.argv[1]))
    site.stage()
    if site.problems:
        sys.exit("\n".join(site.problems))


if __name__ == "__main__":
    main()
