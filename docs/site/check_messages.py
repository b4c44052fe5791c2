#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that each message that docs/reference/errors.md quotes exists in the sources.

The first cell of the tables of "Frequent messages" holds a message, with `...` for what differs. Every piece between
must stand in one string of the sources; neighbouring literals are one string, as the compiler reads them.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/reference/errors.md"
SOURCES = ["cli/src/*.cpp", "cli/src/*.h", "common/*/src/*.cpp", "ml/src/*.cpp", "ml/src/*.h", "python/zav/*.py"]

LITERAL = r'[rf]?"((?:[^"\\\n]|\\.)*)"'
ADJACENT = re.compile(rf"{LITERAL}(?:\s*{LITERAL})*")


def strings():
    listing = subprocess.run(["git", "-C", str(ROOT), "ls-files", *SOURCES], check=True, capture_output=True, text=True)
    for name in listing.stdout.splitlines():
        for run in ADJACENT.finditer((ROOT / name).read_text(encoding="utf-8")):
            text = "".join(re.findall(LITERAL, run[0]))
            yield text.replace(r"\"", '"').replace(r"\\", "\\").replace(r"\n", "\n")


def messages():
    text = PAGE.read_text(encoding="utf-8").partition("## Frequent messages")[2]
    return re.findall(r"^\| `([^`]+)` \|", text, re.MULTILINE)


def pieces(message):
    return [piece.strip() for piece in message.split("...") if len(piece.strip()) > 1]


def main():
    known = list(strings())
    quoted = messages()
    if len(quoted) < 10:
        sys.exit(f"{PAGE.name} quotes only {len(quoted)} messages")
    missing = [
        message for message in quoted if not any(all(piece in text for piece in pieces(message)) for text in known)
    ]
    if missing:
        sys.exit("docs/reference/errors.md quotes what no source says: " + "; ".join(missing))


if __name__ == "__main__":
    main()
