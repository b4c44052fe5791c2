# SPDX-License-Identifier: Apache-2.0
"""The sets of labelled traces on which the figures are taken."""

from dataclasses import replace

from zav_training.xic.traces import LEAST_POINTS, Trace
from zav_training.xic.visible import shape_of


def evaluation_sets(parts: dict[str, list[Trace]]) -> dict[str, list[Trace]]:
    """Sets by name, of documents that the networks never met.

    "window": the surroundings of limits drawn by people, three times their width; "whole": whole
    traces. "validation" helped to choose when to stop and which options fit, "test" did not.
    """
    test = parts["test"]
    manual = [t for t in test if t.annotation == "manual"]
    software = [t for t in test if t.annotation == "software"]
    validation = [t for t in parts["validation"] if t.annotation == "software"]
    windows = [window(t) for t in manual if t.source == "skyline_labkey"]
    return {
        "skyline_manual_window": [t for t in windows if len(t.rt) >= LEAST_POINTS],
        "smartpeak_manual_whole": [t for t in manual if t.source == "smartpeak_multiquant"],
        "manual_visible": visible(manual),
        "manual_all": manual,
        "software_visible": visible(software),
        "software_all": software,
        "smartpeak_multiquant_software": [
            t for t in software if t.source == "smartpeak_multiquant"
        ],
        "validation_visible": visible(validation),
        "validation_all": validation,
    }


def window(trace: Trace) -> Trace:
    """The first labelled peak with its own width on both sides."""
    start, end = trace.peaks[0]
    width = end - start
    inside = (trace.rt >= start - width) & (trace.rt <= end + width)
    return replace(trace, rt=trace.rt[inside], intensity=trace.intensity[inside])


def visible(traces: list[Trace]) -> list[Trace]:
    """Traces that show all of their labelled peaks."""
    return [
        t for t in traces if all((s := shape_of(t, p)) is not None and s.visible for p in t.peaks)
    ]
