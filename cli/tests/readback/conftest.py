# SPDX-License-Identifier: Apache-2.0
"""The library files that the tests read, written once by the program that ZAV_LIBRARY_FIXTURE names."""

import json
import os
import pathlib
import subprocess

import pytest

ENTRIES_FILE = pathlib.Path(__file__).parent / "entries.json"
SETS = json.loads(ENTRIES_FILE.read_text())


@pytest.fixture(scope="session")
def library_folder(tmp_path_factory):
    folder = tmp_path_factory.mktemp("libraries")
    subprocess.run([os.environ["ZAV_LIBRARY_FIXTURE"], ENTRIES_FILE, folder], check=True)
    return folder


@pytest.fixture(params=list(SETS))
def set_name(request):
    return request.param


@pytest.fixture
def entries(set_name):
    return SETS[set_name]


@pytest.fixture
def library(library_folder, set_name):
    """The path of a set's library by its ending."""
    return lambda ending: str(library_folder / f"{set_name}.{ending}")
