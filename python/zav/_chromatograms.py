# SPDX-License-Identifier: Apache-2.0
"""Finds the peaks of extracted-ion chromatograms."""

import math
import os
from typing import Literal, NamedTuple

import numpy as np
import numpy.typing as npt

from zav import _core, _models, _runtime
from zav._errors import InvalidInput

__all__ = ["Limits", "LimitsDetector", "Splits", "Splitter"]

_LARGEST_INT = 2**31 - 1


class Limits(NamedTuple):
    """Where the peaks of a chromatogram start and end, one element per peak.

    Attributes
    ----------
    start, end
        Retention times in the unit of the chromatogram, float64.
    """

    start: npt.NDArray[np.float64]
    end: npt.NDArray[np.float64]


class Splits(NamedTuple):
    """Where a chromatogram is to be split, one element per split.

    Attributes
    ----------
    time
        Retention times in the unit of the chromatogram, float64.
    probability
        How sure the network is, 0 to 1, float64.
    """

    time: npt.NDArray[np.float64]
    probability: npt.NDArray[np.float64]


class LimitsDetector:
    """Finds where the peaks of an extracted-ion chromatogram start and end.

    One object may be used from several threads: they take turns, a chromatogram at a time, and other threads of the
    interpreter run meanwhile. For chromatograms side by side make one object per thread.

    Parameters
    ----------
    models
        Folder of the network ``xic_limits.pb``; None for that of the package. Load only networks that you trust: a
        network is a program.
    max_point_count
        Length of the network's input in points; above 200, at most 16,777,216. A longer chromatogram is thinned to 200
        points less. A run of the network costs what this number asks, whatever the length of the chromatogram.
    probability_tolerance
        A point belongs to a peak where the network gives a probability of 1 - this or more. Within 0 to 1: the higher,
        the more and the wider the peaks.
    dbscan_epsilon
        Peak points that are at most this many points apart belong together. Above 0.
    dbscan_min_points
        Points within `dbscan_epsilon` of a point, itself included, that make it the core of a peak. 1 to 1,048,576.
    min_point_count
        A chromatogram of this many points or fewer has no peaks for the network. 0 or more.
    smoothing_pass_count
        How often the intensities are smoothed by the Gaussian filter. 0 or more.
    gaussian_filter_size
        Taps of the Gaussian filter (sigma 4 points), an even number rounded up. 1 to 1,048,576.
    limit_threshold
        For the method ``"walk"``, a peak ends where it falls to this share of its apex. From 0 to less than 1.

    Raises
    ------
    Error
        The network is missing or is none, or the TensorFlow runtime is missing.
    InvalidInput
        An option is out of its range.

    Examples
    --------
    >>> start, end = zav.LimitsDetector().detect(rt, intensity)
    """

    def __init__(
        self,
        models: str | os.PathLike[str] | None = None,
        *,
        max_point_count: int = 8192,
        probability_tolerance: float = 0.8,
        dbscan_epsilon: float = 1.5,
        dbscan_min_points: int = 2,
        min_point_count: int = 5,
        smoothing_pass_count: int = 1,
        gaussian_filter_size: int = 5,
        limit_threshold: float = 0.05,
    ) -> None:
        options = _core.LimitsOptions()
        options.max_point_count = _count("max_point_count", max_point_count)
        options.probability_tolerance = probability_tolerance
        options.dbscan_epsilon = dbscan_epsilon
        options.dbscan_min_points = _count("dbscan_min_points", dbscan_min_points)
        options.min_point_count = _count("min_point_count", min_point_count)
        options.smoothing_pass_count = _count("smoothing_pass_count", smoothing_pass_count)
        options.gaussian_filter_size = _count("gaussian_filter_size", gaussian_filter_size)
        options.limit_threshold = limit_threshold
        [options.model_file_path] = _models.network_paths(models, ["xic_limits.pb"])
        _runtime.open_runtime()
        self._limits = _core.Limits(options)

    def detect(
        self,
        rt: npt.ArrayLike,
        intensity: npt.ArrayLike,
        hint: float | None = None,
        method: Literal["network", "walk"] = "network",
    ) -> Limits:
        """Find the limits of the peaks.

        Arrays of float64 are read where they are, also those with strides; others are converted first. One chromatogram
        is one run of the network, and up to three more with a `hint`: Ctrl-C ends the call after them.

        Parameters
        ----------
        rt
            Retention times in any unit, in the order of acquisition. They must be finite, and must not descend within
            a peak.
        intensity
            Of each time. NaN and infinite values are taken; +infinity hides the others.
        hint
            A retention time above -1 at which a peak is known to be: where none is found there, the network looks
            again, with faint peaks amplified. For the method ``"network"`` only.
        method
            ``"network"``, or ``"walk"``: outward from each local maximum, without the network.

        Returns
        -------
        Limits
            The arrays `start` and `end`. The network's peaks are in the order of acquisition; those of the walk may
            overlap, and the highest apex comes first.

        Raises
        ------
        InvalidInput
            `rt` and `intensity` are not one-dimensional or not of equal length, a time is not finite, the times descend
            within a peak, `hint` is not above -1, or `method` is unknown or takes no hint.
        TypeError
            `rt` or `intensity` do not hold real numbers.
        Error
            The network failed.
        """
        times, intensities = _chromatogram(rt, intensity)
        if method == "network":
            return Limits(*self._limits.by_network(times, intensities, _hint(hint)))
        if method != "walk":
            raise InvalidInput(f"method {method!r} is neither 'network' nor 'walk'")
        if hint is not None:
            raise InvalidInput("hint needs the method 'network'")
        return Limits(*self._limits.by_walk(times, intensities))


class Splitter:
    """Finds where an extracted-ion chromatogram of peaks that overlap is to be split.

    One object may be used from several threads: they take turns, a chromatogram at a time, and other threads of the
    interpreter run meanwhile. For chromatograms side by side make one object per thread.

    Parameters
    ----------
    models
        Folder of the network ``xic_split.pb``; None for that of the package. Load only networks that you trust: a
        network is a program.
    max_point_count
        Length of the network's input in points; above 200, at most 16,777,216. A longer chromatogram is thinned to it.
    probability_tolerance
        A split needs a probability of 1 - this or more. Within 0 to 1: the higher, the more splits.
    gaussian_filter_size
        Taps of the Gaussian filter (sigma 4 points), an even number rounded up. 1 to 1,048,576.
    smoothing_pass_count
        How often the intensities are smoothed by the Gaussian filter. 0 or more.

    Raises
    ------
    Error
        The network is missing or is none, or the TensorFlow runtime is missing.
    InvalidInput
        An option is out of its range.

    Examples
    --------
    >>> time, probability = zav.Splitter().split(rt, intensity)
    """

    def __init__(
        self,
        models: str | os.PathLike[str] | None = None,
        *,
        max_point_count: int = 1024,
        probability_tolerance: float = 0.5,
        gaussian_filter_size: int = 5,
        smoothing_pass_count: int = 0,
    ) -> None:
        options = _core.SplitterOptions()
        options.max_point_count = _count("max_point_count", max_point_count)
        options.probability_tolerance = probability_tolerance
        options.gaussian_filter_size = _count("gaussian_filter_size", gaussian_filter_size)
        options.smoothing_pass_count = _count("smoothing_pass_count", smoothing_pass_count)
        [options.model_file_path] = _models.network_paths(models, ["xic_split.pb"])
        _runtime.open_runtime()
        self._splits = _core.Splits(options)

    def split(self, rt: npt.ArrayLike, intensity: npt.ArrayLike) -> Splits:
        """Find the splits of a chromatogram of one peak or a few that overlap.

        Arrays of float64 are read where they are, also those with strides; others are converted first.

        Parameters
        ----------
        rt
            Retention times in any unit, in the order of acquisition. They must be finite.
        intensity
            Of each time. NaN and infinite values are taken; +infinity hides the others.

        Returns
        -------
        Splits
            The arrays `time` and `probability`: at most four splits, the most probable first. A chromatogram of fewer
            than 5 points has none.

        Raises
        ------
        InvalidInput
            `rt` and `intensity` are not one-dimensional or not of equal length, or a time is not finite.
        TypeError
            `rt` or `intensity` do not hold real numbers.
        Error
            The network failed.
        """
        times, intensities = _chromatogram(rt, intensity)
        return Splits(*self._splits.find(times, intensities))


def _count(name: str, value: int) -> int:
    """Refuse a number that the library's fields cannot hold; the library checks their ranges."""
    if not -_LARGEST_INT <= value <= _LARGEST_INT:
        raise InvalidInput(f"{name} is {value}, which is no count of points")
    return value


def _hint(hint: float | None) -> float:
    """Return the library's hint: -1 stands for none."""
    if hint is None:
        return -1.0
    if not (math.isfinite(hint) and hint > -1.0):
        raise InvalidInput(f"hint is {hint}, must be finite and above -1")
    return float(hint)


def _chromatogram(
    rt: npt.ArrayLike, intensity: npt.ArrayLike
) -> tuple[npt.NDArray[np.float64], npt.NDArray[np.float64]]:
    times = _values("rt", rt)
    intensities = _values("intensity", intensity)
    if times.size != intensities.size:
        raise InvalidInput(f"rt has {times.size} values and intensity {intensities.size}")
    if not np.isfinite(times).all():
        raise InvalidInput("rt holds a value that is not finite")
    return times, intensities


def _values(name: str, values: npt.ArrayLike) -> npt.NDArray[np.float64]:
    """Return the values as an array of float64: the array that was given, where it is one."""
    array = np.asarray(values)
    if array.ndim != 1:
        raise InvalidInput(f"{name} has {array.ndim} dimensions, must have 1")
    if array.size and array.dtype.kind not in "fiub":
        raise TypeError(f"{name} is of type {array.dtype}, must be of real numbers")
    return np.asarray(array, dtype=np.float64)
