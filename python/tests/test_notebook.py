# SPDX-License-Identifier: Apache-2.0
import os
import shutil
from pathlib import Path

import nbformat
import pytest
from nbclient import NotebookClient

NOTEBOOK = Path(os.environ.get("ZAV_EXAMPLES", Path(__file__).resolve().parents[1] / "examples")) / "tour.ipynb"


@pytest.mark.filterwarnings("ignore")  # of Jupyter's own code
def test_notebook_runs(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("IPYTHONDIR", str(tmp_path / "ipython"))
    monkeypatch.setenv("JUPYTER_RUNTIME_DIR", str(tmp_path / "runtime"))
    monkeypatch.setenv("MPLCONFIGDIR", str(tmp_path / "matplotlib"))
    shutil.copy(NOTEBOOK, tmp_path)
    notebook = nbformat.read(NOTEBOOK, as_version=4)
    NotebookClient(notebook, timeout=120, kernel_name="python3", resources={"metadata": {"path": tmp_path}}).execute()
    outputs = [output for cell in notebook.cells if cell.cell_type == "code" for output in cell.outputs]
    pictures = [output for output in outputs if "image/png" in output.get("data", {})]
    assert len(pictures) == 2
    texts = "".join(output.get("text", "") + output.get("data", {}).get("text/plain", "") for output in outputs)
    assert "'X' at position 8 is none of the 20 standard residues" in texts
    assert "TLSDYNIQK" in texts and "ESTLHLVLR" in texts  # tryptic peptides of ubiquitin
