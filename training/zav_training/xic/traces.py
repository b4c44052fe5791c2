# SPDX-License-Identifier: Apache-2.0
"""Chromatograms from files, what is known of them, and who may learn from which."""

import gzip
import hashlib
import json
from collections.abc import Iterator
from dataclasses import dataclass, field
from pathlib import Path

import numpy as np

#: Data files (gzipped JSON lines) that the networks are made of.
LABELLED = (
    "skyline_labkey",
    "skyline_maccosslab",
    "smartpeak_multiquant",
    "smartpeak_mrm",
    "openms",
)
BACKGROUND = ("massdash", "masic")
#: Sources whose identifiers begin with the name of a run, which stands for the document.
RUNS = ("smartpeak_mrm", "openms")
#: A shorter trace shows no peak.
LEAST_POINTS = 8


@dataclass
class Trace:
    """One chromatogram.

    Times ascend, in seconds; intensities are not negative. Peaks and candidates are intervals of
    time.
    """

    id: str
    source: str
    document: str
    molecule: str
    annotation: str
    rt: np.ndarray
    intensity: np.ndarray
    peaks: list[tuple[float, float]]
    candidates: list[tuple[float, float]] = field(default_factory=list)
    #: One precursor in one run: traces of a group share their labels.
    group: str = ""

    def indices(self, interval: tuple[float, float]) -> tuple[int, int]:
        """First and last point inside an interval of time; the nearest points when none is."""
        last = len(self.rt) - 1
        first = min(int(np.searchsorted(self.rt, interval[0], "left")), last)
        final = max(int(np.searchsorted(self.rt, interval[1], "right")) - 1, 0)
        return min(first, final), max(first, final)


def read_traces(folder: Path, source: str) -> Iterator[Trace]:
    """The traces of one file that have enough points."""
    with gzip.open(folder / f"{source}.jsonl.gz", "rt") as lines:
        for line in lines:
            record = json.loads(line)
            if len(record["rt"]) >= LEAST_POINTS:
                yield _trace(record, source)


def _trace(record: dict, source: str) -> Trace:
    unit = 60.0 if record["rt_unit"] == "min" else 1.0
    return Trace(
        id=record["id"],
        source=source,
        document=_document(record, source),
        molecule=_molecule(record["id"]),
        annotation=record["annotation"],
        rt=np.array(record["rt"], np.float64) * unit,
        intensity=np.maximum(np.array(record["intensity"], np.float64), 0.0),
        peaks=[(p[0] * unit, p[1] * unit) for p in record["peaks"]],
        candidates=[_candidate(c, unit) for c in record.get("candidates") or []],
        group=record.get("group") or "",
    )


def _document(record: dict, source: str) -> str:
    """The document, or the run where the file holds runs and no documents."""
    document = record.get("document") or source
    return record["id"].split("|")[0] if document in RUNS else document


def _candidate(record: dict | list, unit: float) -> tuple[float, float]:
    start, end = (record["start"], record["end"]) if isinstance(record, dict) else record[:2]
    return start * unit, end * unit


def _molecule(identifier: str) -> str:
    """Name of the peptide or small molecule, which several documents may hold."""
    parts = identifier.split("|")
    return parts[-1].split("/")[0] if len(parts) > 2 else parts[-1].split(" sample=")[0]


#: Of every twelve documents that no person labelled, this many are held back for validation.
VALIDATION_SHARE, SHARES = 2, 12


def roles(traces: list[Trace]) -> dict[str, str]:
    """Role of each document: "test", "validation" or "training".

    A document that holds a limit drawn by a person is for testing only, so that the networks meet
    neither its peaks nor its instrument before. Of the others a hash of the name decides.
    """
    by_person = {t.document for t in traces if t.annotation == "manual"}
    result = {}
    for document in {t.document for t in traces}:
        place = int(hashlib.md5(document.encode()).hexdigest(), 16) % SHARES
        held_back = place < VALIDATION_SHARE
        result[document] = "validation" if held_back else "training"
        if document in by_person:
            result[document] = "test"
    return result


def split(traces: list[Trace]) -> dict[str, list[Trace]]:
    """Traces by role; a molecule of a held-back document is taken out of the training traces."""
    role = roles(traces)
    parts: dict[str, list[Trace]] = {"training": [], "validation": [], "test": []}
    for trace in traces:
        parts[role[trace.document]].append(trace)
    held_back = {t.molecule for name in ("validation", "test") for t in parts[name] if t.peaks}
    parts["training"] = [t for t in parts["training"] if t.molecule not in held_back]
    return parts
