# SPDX-License-Identifier: Apache-2.0
"""The notebook runs, and the outputs that it is shown with are those that it has now.

With ZAV_WRITE_NOTEBOOK=1, and the folder of the notebook in ZAV_EXAMPLES, the present outputs are put into it instead.
"""

import os
import re
import shutil
from pathlib import Path
from typing import Any

import nbformat
import pytest
from nbclient import NotebookClient

NOTEBOOK = Path(os.environ.get("ZAV_EXAMPLES", Path(__file__).resolve().parents[1] / "examples")) / "tour.ipynb"

NUMBER = re.compile(r"-?\d+(?:\.\d+)?")
TOLERANCE = 0.005  # networks differ by less than that between processors


def shown(output: dict[str, Any]) -> str:
    """The text of an output; of a picture its kind."""
    if "image/png" in output.get("data", {}):
        return "image/png"
    return "".join(output.get("text", "")) or "".join(output.get("data", {}).get("text/plain", ""))


def same(stored: str, present: str) -> bool:
    """Whether two texts are the same up to the rounding of their numbers."""
    numbers = [[float(number) for number in NUMBER.findall(text)] for text in (stored, present)]
    words = [NUMBER.sub("0", text).split() for text in (stored, present)]
    return words[0] == words[1] and numbers[0] == pytest.approx(numbers[1], rel=TOLERANCE, abs=TOLERANCE)


def write(notebook: nbformat.NotebookNode) -> None:
    """Store the notebook without what differs from run to run."""
    for cell in notebook.cells:
        cell.metadata.clear()
        for part in [cell, *cell.get("outputs", [])]:
            if "execution_count" in part:
                part.execution_count = None
    nbformat.write(notebook, NOTEBOOK)


@pytest.mark.filterwarnings("ignore")  # of Jupyter's own code
def test_notebook_runs(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("IPYTHONDIR", str(tmp_path / "ipython"))
    monkeypatch.setenv("JUPYTER_RUNTIME_DIR", str(tmp_path / "runtime"))
    monkeypatch.setenv("MPLCONFIGDIR", str(tmp_path / "matplotlib"))
    shutil.copy(NOTEBOOK, tmp_path)
    notebook = nbformat.read(NOTEBOOK, as_version=4)
    NotebookClient(notebook, timeout=120, kernel_name="python3", resources={"metadata": {"path": tmp_path}}).execute()
    if os.environ.get("ZAV_WRITE_NOTEBOOK") == "1":
        write(notebook)
        return
    outputs = [output for cell in notebook.cells if cell.cell_type == "code" for output in cell.outputs]
    stored = [output for cell in nbformat.read(NOTEBOOK, as_version=4).cells for output in cell.get("outputs", [])]
    assert len(stored) == len(outputs)
    for old, new in zip(stored, outputs, strict=True):
        assert same(shown(old), shown(new))
    pictures = [output for output in outputs if "image/png" in output.get("data", {})]
    assert len(pictures) == 2
    texts = "".join(output.get("text", "") + output.get("data", {}).get("text/plain", "") for output in outputs)
    assert "'X' at position 8 is none of the 20 standard residues" in texts
    assert "TLSDYNIQK" in texts and "ESTLHLVLR" in texts  # tryptic peptides of ubiquitin
