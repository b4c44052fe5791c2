# SPDX-License-Identifier: Apache-2.0
"""The folder of the networks."""

import os
from pathlib import Path

from zav._errors import Error

__all__ = ["models_folder"]


def models_folder() -> Path:
    """Return the folder of the networks that the package brings.

    Returns
    -------
    pathlib.Path
        Holds ``msms_charge1.pb`` to ``msms_charge5.pb``, ``xic_limits.pb``, ``xic_split.pb`` and the networks of the
        program, each with its contract, ``.json``.
    """
    return Path(__file__).parent / "share" / "zav" / "models"


def network_paths(models: str | os.PathLike[str] | None, names: list[str]) -> list[str]:
    """Return the paths of some networks within a folder; None stands for that of the package."""
    folder = models_folder() if models is None else Path(models)
    paths = [folder / name for name in names]
    for path in paths:
        if not path.is_file():
            raise Error(f"no network {path.name} in {folder}")
    return [str(path) for path in paths]
