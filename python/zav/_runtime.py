# SPDX-License-Identifier: Apache-2.0
"""Finds the TensorFlow C library and opens it for the extension module."""

import ctypes
import importlib.machinery
import os
import threading
from pathlib import Path

from zav._errors import Error

LIBRARY = "libtensorflow_cc.so.2"
FOLDER_VARIABLE = "ZAV_TENSORFLOW_DIR"

_lock = threading.Lock()
_opened: ctypes.CDLL | None = None


def runtime_folder() -> Path | None:
    """Return the folder of the TensorFlow C library, or None where there is none.

    The environment variable ``ZAV_TENSORFLOW_DIR`` names it; otherwise it is that of the installed package
    ``tensorflow``, from whatever wheel. TensorFlow's Python code is not imported.
    """
    named = os.environ.get(FOLDER_VARIABLE)
    if named:
        return Path(named).absolute()
    package = importlib.machinery.PathFinder.find_spec("tensorflow")
    for location in (package.submodule_search_locations or ()) if package else ():
        if (Path(location) / LIBRARY).is_file():
            return Path(location)
    return None


def check_runtime() -> Path:
    """Return the folder of the TensorFlow C library; raise `Error` where there is none."""
    folder = runtime_folder()
    if folder is None or not (folder / LIBRARY).is_file():
        where = f" in {folder}" if folder else ""
        raise Error(
            f"The TensorFlow C library {LIBRARY} was not found{where}: install the package tensorflow-cpu, or name its"
            f" folder in the environment variable {FOLDER_VARIABLE}"
        )
    return folder


def open_runtime() -> None:
    """Open the TensorFlow C library, once in a process.

    The extension module asks the system for the library by its bare name, and gets the one that is open already.

    Raises
    ------
    Error
        The library was not found, or cannot be opened.
    """
    global _opened
    with _lock:
        if _opened is not None:
            return
        folder = check_runtime()
        try:
            _opened = ctypes.CDLL(str(folder / LIBRARY), mode=ctypes.RTLD_LOCAL)
        except OSError as problem:
            raise Error(f"The TensorFlow C library cannot be opened: {problem}") from problem
