# SPDX-License-Identifier: Apache-2.0
"""The contract that travels with a graph file: one flat JSON object beside it, <network>.json."""

import hashlib
import json
from pathlib import Path

FORMAT_VERSION = 1

Value = str | int | float | list[str] | list[int] | list[float]


def write_contract(graph: Path, fields: dict[str, Value]) -> None:
    """Writes the contract of a graph file, its SHA-256 and size included."""
    data = graph.read_bytes()
    contract: dict[str, Value] = {"formatVersion": FORMAT_VERSION, "network": graph.stem}
    contract |= fields
    contract |= {"bytes": len(data), "sha256": hashlib.sha256(data).hexdigest()}
    text = json.dumps(contract, indent=2, ensure_ascii=False)
    graph.with_suffix(".json").write_text(text + "\n", encoding="utf-8")


def read_contract(graph: Path) -> dict[str, Value]:
    """The contract of a graph file; raises ValueError where it is not of this very file."""
    contract = json.loads(graph.with_suffix(".json").read_text(encoding="utf-8"))
    if contract["sha256"] != hashlib.sha256(graph.read_bytes()).hexdigest():
        raise ValueError(f"{graph.name} is not the file that its contract describes")
    return contract
