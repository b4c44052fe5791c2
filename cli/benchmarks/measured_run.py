# SPDX-License-Identifier: Apache-2.0
"""A command whose cost is measured, for the benchmarks of the program."""

import os
import subprocess
import sys
import time


class Run:
    """One run of a command: seconds by the wall clock, seconds computed by all its threads, MiB resident at most.

    With `core` it stays on that core. A command that fails ends the benchmark.
    """

    def __init__(self, command, core=None, **streams):
        start = time.monotonic()
        pinned = command if core is None else ["taskset", "-c", str(core), *command]
        process = subprocess.Popen(pinned, **streams)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            sys.exit(f"{command[0]} ended with {process.returncode}: nothing is measured")
        self.wall = time.monotonic() - start
        self.computed = usage.ru_utime + usage.ru_stime
        self.memory = usage.ru_maxrss / 1024
