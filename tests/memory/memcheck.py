# SPDX-License-Identifier: Apache-2.0
"""One real prediction of each predictor under valgrind's memcheck, by the program.

    memcheck.py ZAV

A finding is ours when the first function on its stack that is neither the C library's, the compiler's nor Qt's belongs
to the program or one of its libraries: the address read, the memory lost or the value used was there. What TensorFlow
does inside itself (its protobuf uses some values before they are set, in memcheck's view) is counted and left.
"""

import math
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

OURS = ("zav", "libzav_")
BELOW = ("libc.so", "libc-", "libstdc++", "libgcc_s", "libm.so", "ld-linux", "libQt6", "vgpreload", "libpthread")


def gauss(x: float, apex: float) -> float:
    return math.exp(-0.5 * ((x - apex) / 4) ** 2)


def trace() -> str:
    points = (f"{i}\t{1000 * gauss(i, 90) + 800 * gauss(i, 105) + i % 3}\n" for i in range(200))
    return "rt\tintensity\n" + "".join(points)


def owner(error: ElementTree.Element) -> str:
    """The object of the first function that is not of a library below us."""
    stack = error.find("stack")
    objects = (
        [pathlib.PurePath(f.findtext("obj", "")).name for f in stack if f.tag == "frame"] if stack is not None else []
    )
    if objects and objects[0].startswith("ld-linux"):
        return objects[0]  # it compares strings word by word
    return next((name for name in objects if not name.startswith(BELOW)), "")


def place(error: ElementTree.Element) -> str:
    frames = error.iter("frame")
    return " < ".join(f"{f.findtext('fn', '?')} ({f.findtext('file', '')}:{f.findtext('line', '')})" for f in frames)


def check(program: str, arguments: list[str], folder: pathlib.Path) -> int:
    """The number of findings of ours, each of them printed."""
    report = folder / "report.xml"
    command = ["valgrind", "--tool=memcheck", "--leak-check=full", "--show-leak-kinds=definite", "--error-limit=no"]
    command += ["--num-callers=40", "--xml=yes", f"--xml-file={report}", program, *arguments]
    subprocess.run(command, cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    errors = ElementTree.parse(report).getroot().findall("error")
    ours = [e for e in errors if owner(e).startswith(OURS)]
    print(f"| `zav {' '.join(arguments)}` | {len(ours)} | {len(errors) - len(ours)} |", flush=True)
    for error in ours:
        print(f"{error.findtext('kind')}: {place(error)}", file=sys.stderr)
    return len(ours)


def main() -> int:
    program = str(pathlib.Path(sys.argv[1]).resolve())
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "trace.tsv").write_text(trace())
        (folder / "peptides.tsv").write_text("peptide\nAVM[Oxidation]DDFAAFVEK\nGAGSSEPVTGLDAK\n")
        print("| command | findings of ours | inside other libraries |\n| --- | --- | --- |")
        commands = (
            ["spectrum", "LQSRPAAPPAPGPGQLTLR", "3"],
            ["spectrum", "AVM[Oxidation]DDFAAFVEK", "2"],
            ["retention", "--peptides", "peptides.tsv"],
            ["limits", "trace.tsv"],
            ["limits", "--method", "walk", "trace.tsv"],
            ["split", "trace.tsv"],
        )
        return 1 if sum(check(program, c, folder) for c in commands) else 0


if __name__ == "__main__":
    sys.exit(main())
