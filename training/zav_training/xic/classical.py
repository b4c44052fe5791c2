# SPDX-License-Identifier: Apache-2.0
"""Peak pickers without a network, to compare with: limits in the unit of the times."""

from collections.abc import Callable

import numpy as np
from scipy.signal import find_peaks, peak_widths, savgol_filter

from zav_training.xic.pipeline import LimitsOptions, convolve, gaussian_filter, limits_input

Limits = list[tuple[float, float]]
Picker = Callable[[np.ndarray, np.ndarray], Limits]

#: Least prominence relative to the largest value, and share of the prominence at which the width
#: is taken.
PROMINENCE, FOOT = 0.05, 0.95


def pick_by_prominence(rt: np.ndarray, intensity: np.ndarray) -> Limits:
    """scipy's find_peaks with peak_widths on the trace as it is."""
    top = float(intensity.max(initial=0.0))
    if top <= 0.0:
        return []
    apexes, _ = find_peaks(intensity, prominence=PROMINENCE * top)
    _, _, left, right = peak_widths(intensity, apexes, rel_height=FOOT)
    points = np.arange(len(rt))
    starts, ends = np.interp(left, points, rt), np.interp(right, points, rt)
    return list(zip(starts.tolist(), ends.tolist(), strict=True))


def pick_smoothed(rt: np.ndarray, intensity: np.ndarray) -> Limits:
    """The same on a trace smoothed by nine taps, twice."""
    kernel = gaussian_filter(9)
    smoothed = convolve(convolve(intensity[None].astype(float), kernel), kernel)[0]
    return pick_by_prominence(rt, smoothed)


def pick_by_walk(options: LimitsOptions) -> Picker:
    """The library's path without a network: from each maximum down to a share of its height."""

    def pick(rt: np.ndarray, intensity: np.ndarray) -> Limits:
        x = limits_input(intensity, options)
        last = len(rt) - 1
        found = []
        for start, end in walk(x, options.limitThreshold):
            if start <= last:
                found.append((float(rt[start]), float(rt[min(end, last)])))
        return found

    return pick


def local_maxima(x: np.ndarray, scale: float = 10000.0) -> np.ndarray:
    """Indices that rise above the left and not below the right neighbour, on a coarse scale."""
    with np.errstate(over="ignore", invalid="ignore"):
        a = np.trunc(x.astype(np.float32) * np.float32(scale))
    return 1 + np.flatnonzero((a[1:-1] > a[:-2]) & (a[1:-1] >= a[2:]))


def walk(x: np.ndarray, threshold: float) -> list[tuple[int, int]]:
    """Intervals of points, highest apex first; an apex inside an earlier interval is skipped."""
    result: list[tuple[int, int]] = []
    maxima = local_maxima(x)
    covered = np.zeros(len(x), bool)
    for index in maxima[np.argsort(-x[maxima], kind="stable")]:
        if not covered[index]:
            start, end = walk_limits(x, int(index), threshold)
            covered[start : end + 1] = True
            covered[index] = True
            result.append((start, end))
    return result


def walk_limits(x: np.ndarray, index: int, threshold: float) -> tuple[int, int]:
    """First point on each side at or under the threshold or above the apex.

    The start of the trace gives 0, its end the last but two.
    """
    n, value = len(x), np.float32(x[index])
    if abs(float(value)) <= 1e-12 or n <= 1:
        return 0, 0
    relative = x / value
    stop = (threshold >= relative) | (relative > 1.0)
    left = np.flatnonzero(stop[:index])
    right = np.flatnonzero(stop[index + 1 : n - 1])
    start = int(left[-1]) if len(left) else 0
    return start, index + 1 + int(right[0]) if len(right) else n - 3


def openms_picker(**settings: float | str) -> Picker:
    """OpenMS's PeakPickerChromatogram with the given parameters in place of its defaults."""
    import pyopenms

    picker = pyopenms.PeakPickerChromatogram()
    parameters = picker.getParameters()
    for name, value in settings.items():
        parameters.setValue(name, value)
    picker.setParameters(parameters)

    def pick(rt: np.ndarray, intensity: np.ndarray) -> Limits:
        trace, picked = pyopenms.MSChromatogram(), pyopenms.MSChromatogram()
        trace.set_peaks((rt, intensity.astype(np.float32)))
        picker.pickChromatogram(trace, picked)
        arrays = {a.getName(): np.array(a.get_data()) for a in picked.getFloatDataArrays()}
        if "leftWidth" not in arrays:
            return []
        pairs = zip(arrays["leftWidth"], arrays["rightWidth"], strict=True)
        return [(float(a), float(b)) for a, b in pairs]

    return pick


def pick_by_derivative(rt: np.ndarray, intensity: np.ndarray) -> Limits:
    """Zero crossings of a Savitzky-Golay derivative around tops above 5 % of the largest."""
    width = min(11, len(rt) - (1 - len(rt) % 2))
    if width < 5:
        return []
    smoothed = savgol_filter(intensity.astype(float), width, 2)
    slope = savgol_filter(intensity.astype(float), width, 2, deriv=1)
    top, found = float(smoothed.max()), []
    for apex in np.flatnonzero((slope[:-1] > 0) & (slope[1:] <= 0)):
        if smoothed[apex] < PROMINENCE * top:
            continue
        flat = 0.005 * smoothed[apex]
        left, right = int(apex), int(apex) + 1
        while left > 0 and slope[left] > flat:
            left -= 1
        while right < len(rt) - 1 and slope[right] < -flat:
            right += 1
        found.append((float(rt[left]), float(rt[right])))
    return found
