# SPDX-License-Identifier: Apache-2.0
"""Labels that a trace may be held to: those it shows, alone or together with its group.

A group is one precursor in one run. Its transitions share their labels, rise and fall together, and
differ in height: where one shows the peak, a weaker one can be believed to hold it, too.
"""

from collections import defaultdict
from dataclasses import replace

import numpy as np

from zav_training.xic.traces import Trace
from zav_training.xic.visible import Shape, shape_of

Labelled = tuple[Trace, Shape]
#: A weak transition counts from this signal to noise and this correlation with its group on.
LEAST_SIGNAL_TO_NOISE, LEAST_AGREEMENT = 2.0, 0.6
#: Points that the limits of two transitions may differ by and still be one label.
SAME = 1


def agreed(traces: list[Trace]) -> list[Labelled]:
    """Labelled peaks that their traces show, and weak ones that other transitions vouch for."""
    groups: dict[str, list[Labelled]] = defaultdict(list)
    for trace in traces:
        for peak in trace.peaks:
            shape = shape_of(trace, peak)
            if shape is not None:
                groups[trace.group or trace.id].append((trace, shape))
    return [item for members in groups.values() for item in _of_group(members)]


def _of_group(members: list[Labelled]) -> list[Labelled]:
    shown = [m for m in members if m[1].visible]
    result = list(shown)
    for trace, shape in members:
        witnesses = [m for m in shown if _same(m[1], shape) and len(m[0].rt) == len(trace.rt)]
        if not shape.visible and witnesses and _vouched_for(trace, shape, witnesses):
            half = float(np.median([s.half_width for _, s in witnesses]))
            result.append((trace, replace(shape, half_width=half)))
    return result


def _same(a: Shape, b: Shape) -> bool:
    return abs(a.start - b.start) <= SAME and abs(a.end - b.end) <= SAME


def _vouched_for(trace: Trace, shape: Shape, witnesses: list[Labelled]) -> bool:
    """Whether a weak transition follows the others within the limits and around them."""
    room = (shape.end - shape.start) // 2
    window = slice(max(shape.start - room, 0), shape.end + room + 1)
    y = trace.intensity[window]
    together = np.mean(
        [t.intensity[window] / max(float(t.intensity[window].max()), 1e-12) for t, _ in witnesses],
        axis=0,
    )
    if shape.signal_to_noise < LEAST_SIGNAL_TO_NOISE or np.ptp(y) <= 0 or np.ptp(together) <= 0:
        return False
    return float(np.corrcoef(y, together)[0, 1]) >= LEAST_AGREEMENT
