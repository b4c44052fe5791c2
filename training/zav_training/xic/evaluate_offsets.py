# SPDX-License-Identifier: Apache-2.0
"""How much wider or narrower a picker finds a peak once its trace stands on a constant base."""

from collections.abc import Callable
from dataclasses import dataclass

import numpy as np

from zav_training.xic.classical import Picker
from zav_training.xic.simulate import EVIDENCE, simulate

#: Simulated traces: seeds, how many of each, points.
SEEDS, EACH, POINTS = range(301, 306), 60, (64, 1024)
#: Bases, over the height of the largest peak.
LIFTS = (0.5, 2.0, 10.0, 25.0, 50.0)
#: Counts of the largest peak.
HEIGHT = 1e4
#: First points that stay at 0 where the base is broken.
BEHIND = 2
#: Widths that differ by less are the same.
SAME = 0.2


@dataclass
class OffsetCase:
    """A simulated trace on a base of 0, and the apex of its largest peak, in points."""

    intensity: np.ndarray
    apex: float

    def lifted(self, height: float, broken: bool) -> np.ndarray:
        """The trace on a base; `broken`: its first points stay at 0."""
        result = self.intensity + height * HEIGHT
        result[:BEHIND] = 0.0 if broken else result[:BEHIND]
        return result


def offset_cases(seed: int, count: int = EACH) -> list[OffsetCase]:
    """Traces of one seed that show a peak."""
    rng = np.random.default_rng(seed)
    result = []
    for _ in range(count):
        trace = simulate(rng, int(np.exp(rng.uniform(*np.log(POINTS)))))
        if any(r.evidence >= EVIDENCE[1] for r in trace.regions):
            largest = max(trace.peaks, key=lambda p: p.height)
            result.append(OffsetCase(trace.intensity / largest.height * HEIGHT, largest.apex))
    return result


def width_at_apex(intensity: np.ndarray, apex: float, pick: Picker) -> float:
    """Points between the limits that a picker finds around a place; 0 where it finds none."""
    found = pick(np.arange(len(intensity), dtype=float), intensity)
    return max((end - start for start, end in found if start <= apex <= end), default=0.0)


def width_ratios(
    cases: list[OffsetCase], pick: Picker, height: float, broken: bool = False
) -> np.ndarray:
    """Width on the base over width without it, of the peaks that are found without it."""
    result = []
    for case in cases:
        without = width_at_apex(case.intensity, case.apex, pick)
        if without > 0.0:
            lifted = case.lifted(height, broken)
            result.append(width_at_apex(lifted, case.apex, pick) / without)
    return np.array(result)


def summary(ratios: np.ndarray) -> dict[str, float]:
    """Share of lost peaks and of those of the same width; quantiles of the ratio of the others."""
    kept = ratios[ratios > 0.0]
    low, middle, high = np.quantile(kept, (0.1, 0.5, 0.9)) if len(kept) else (0.0, 0.0, 0.0)
    same = float(np.mean(np.abs(ratios - 1.0) <= SAME))
    lost = 1.0 - len(kept) / max(len(ratios), 1)
    return {"median": middle, "low": low, "high": high, "same": same, "lost": lost}


def report(pick: Picker, say: Callable[[str], None] = print) -> None:
    """Prints a table of the bases."""
    cases = [case for seed in SEEDS for case in offset_cases(seed)]
    say("\n| base | median ratio | 10 % | 90 % | same width | lost |")
    say(f"|{' --- |' * 6}")
    for broken in (False, True):
        for height in LIFTS:
            ratios = width_ratios(cases, pick, height, broken)
            values = " | ".join(f"{v:.3f}" for v in summary(ratios).values())
            say(f"| {height:g}{', broken' if broken else ''} | {values} |")
