# SPDX-License-Identifier: Apache-2.0
"""How well found peaks agree with labelled ones."""

from collections.abc import Sequence
from dataclasses import dataclass, field

import numpy as np

Interval = tuple[float, float]
#: Overlap over union from which a found peak is a labelled one.
LEAST_OVERLAP = 0.5


def overlap(a: Interval, b: Interval) -> float:
    """Length that two intervals share."""
    return max(0.0, min(a[1], b[1]) - max(a[0], b[0]))


def overlap_over_union(a: Interval, b: Interval) -> float:
    """Shared length over the length of both together."""
    common = overlap(a, b)
    return common / ((a[1] - a[0]) + (b[1] - b[0]) - common) if common > 0 else 0.0


def match(labels: Sequence[Interval], found: Sequence[Interval]) -> list[tuple[int, int]]:
    """Pairs of indices (label, found), one to one, best overlap first."""
    pairs = [
        (overlap_over_union(a, b), i, j) for i, a in enumerate(labels) for j, b in enumerate(found)
    ]
    used_labels: set[int] = set()
    used_found: set[int] = set()
    result = []
    for value, i, j in sorted(pairs, reverse=True):
        if value >= LEAST_OVERLAP and i not in used_labels and j not in used_found:
            used_labels.add(i)
            used_found.add(j)
            result.append((i, j))
    return result


def area(rt: np.ndarray, y: np.ndarray, limits: Interval, baseline: bool) -> float:
    """Trapezoid between limits that need not fall on points; to zero, or to the chord."""
    start, end = max(limits[0], rt[0]), min(limits[1], rt[-1])
    if end <= start:
        return 0.0
    t = np.concatenate(([start], rt[(rt > start) & (rt < end)], [end]))
    values = np.interp(t, rt, y)
    under = float(np.trapezoid(values, t))
    return under - 0.5 * float(values[0] + values[-1]) * (end - start) if baseline else under


@dataclass
class Figures:
    """Sums over traces, from which the figures of a set are taken."""

    traces: int = 0
    labels: int = 0
    matched: int = 0
    found: int = 0
    touching: int = 0
    touched: int = 0
    overlaps: list[float] = field(default_factory=list)
    edges: list[float] = field(default_factory=list)
    areas: list[tuple[float, float, float, float]] = field(default_factory=list)

    def add(
        self, rt: np.ndarray, y: np.ndarray, labels: Sequence[Interval], found: Sequence[Interval]
    ) -> None:
        """Counts one trace."""
        self.traces += 1
        self.labels += len(labels)
        self.found += len(found)
        self.matched += len(match(labels, found))
        self.touching += sum(any(overlap(f, label) > 0 for label in labels) for f in found)
        step = float(np.median(np.diff(rt)))
        for label in labels:
            self._add_label(rt, y, label, found, step)

    def _add_label(
        self, rt: np.ndarray, y: np.ndarray, label: Interval, found: Sequence[Interval], step: float
    ) -> None:
        best = max(
            found, key=lambda f: (overlap(f, label), overlap_over_union(f, label)), default=None
        )
        if best is None or overlap(best, label) <= 0:
            self.overlaps.append(0.0)
            return
        self.touched += 1
        self.overlaps.append(overlap_over_union(label, best))
        self.edges += [abs(best[0] - label[0]) / step, abs(best[1] - label[1]) / step]
        raw = area(rt, y, label, False), area(rt, y, best, False)
        self.areas.append((*raw, area(rt, y, label, True), area(rt, y, best, True)))

    def summary(self) -> dict[str, float]:
        """Figures of the set.

        In `f1` a found peak that touches no label does not count, in `precision` and `f1_all` it
        does. Areas: of labels and what overlaps them, raw and above the chord; errors are medians
        relative to the label's area.
        """
        areas = np.array(self.areas).reshape(-1, 4)
        return {
            "traces": self.traces,
            "labels": self.labels,
            "per_trace": self.found / max(self.traces, 1),
            "touched": self.touched / max(self.labels, 1),
            "recall": self.matched / max(self.labels, 1),
            "precision": self.matched / max(self.found, 1),
            "f1": 2 * self.matched / max(self.labels + self.touching, 1),
            "f1_all": 2 * self.matched / max(self.labels + self.found, 1),
            "overlap": float(np.median(self.overlaps)) if self.overlaps else 0.0,
            "edge_points": float(np.median(self.edges)) if self.edges else 0.0,
            "r_raw": _correlation(areas[:, 0], areas[:, 1]),
            "error_raw": _median_error(areas[:, 0], areas[:, 1]),
            "r_above": _correlation(areas[:, 2], areas[:, 3]),
            "error_above": _median_error(areas[:, 2], areas[:, 3]),
        }


def _correlation(a: np.ndarray, b: np.ndarray) -> float:
    return float(np.corrcoef(a, b)[0, 1]) if len(a) > 2 and np.ptp(a) > 0 and np.ptp(b) > 0 else 0.0


def _median_error(truth: np.ndarray, found: np.ndarray) -> float:
    good = truth > 0
    return float(np.median(np.abs(found[good] - truth[good]) / truth[good])) if good.any() else 0.0
