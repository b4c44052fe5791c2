# SPDX-License-Identifier: Apache-2.0
import json
from pathlib import Path

import numpy as np

from zav_training.xic.picks import write_labelled, write_picked
from zav_training.xic.traces import Trace


def read(path: Path) -> list[dict]:
    return [json.loads(line) for line in path.read_text().splitlines()]


def test_labels_and_picks_of_a_trace_share_a_name_of_its_own(tmp_path: Path) -> None:
    rt = np.arange(10.0)
    traces = [Trace("same", "s", "d", "m", "manual", rt, rt * k, [(2.0, 4.0 + k)]) for k in (1, 2)]
    write_labelled(tmp_path / "a", traces)
    write_picked(tmp_path / "b", traces, lambda _, y: [(1.0, float(y[-1]))])
    labelled, picked = read(tmp_path / "a"), read(tmp_path / "b")
    assert [r["id"] for r in labelled] == [r["id"] for r in picked]
    assert labelled[0]["id"] != labelled[1]["id"]
    assert labelled[1]["rt"] == rt.tolist()
    assert labelled[1]["intensity"] == (2.0 * rt).tolist()
    assert [r["peaks"] for r in labelled] == [[[2.0, 5.0]], [[2.0, 6.0]]]
    assert [r["peaks"] for r in picked] == [[[1.0, 9.0]], [[1.0, 18.0]]]
    assert all(r["us"] >= 0 for r in picked)
