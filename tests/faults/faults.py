# SPDX-License-Identifier: Apache-2.0
"""Lets calls of the program fail and looks at what is left. Started by scripts/faults, which says how."""

import argparse
import importlib
import sys

import workbench

PARTS = ("calls", "death", "memory", "surroundings")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("parts", nargs="*", default=list(PARTS))
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    print(workbench.HEADING, flush=True)
    runs = faults = 0
    for part in options.parts or PARTS:
        for row in importlib.import_module(part).rows(options.short, options.jobs, options.only):
            workbench.show(row)
            runs += row.runs
            faults += len(row.faults)
    print(f"{runs} runs, {faults} faults")
    return 1 if faults or not runs else 0


if __name__ == "__main__":
    sys.exit(main())
