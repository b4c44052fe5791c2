# SPDX-License-Identifier: Apache-2.0
"""Runs the program zav that the package brings."""

import os
import sys
from pathlib import Path

from zav import _runtime

_LIBRARY_PATH = "LD_LIBRARY_PATH"


def program_path() -> Path:
    """Return the path of the program."""
    return Path(__file__).parent / "bin" / "zav"


def environment() -> dict[str, str]:
    """Return the environment in which the program finds the TensorFlow runtime, where there is one."""
    variables = dict(os.environ)
    folder = _runtime.runtime_folder()
    if folder is not None:
        others = variables.get(_LIBRARY_PATH)
        variables[_LIBRARY_PATH] = f"{folder}{os.pathsep}{others}" if others else str(folder)
    return variables


def main() -> None:
    """Become the program, with the arguments of this process. It finds its networks by itself."""
    os.execve(program_path(), ["zav", *sys.argv[1:]], environment())
