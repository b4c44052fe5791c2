# SPDX-License-Identifier: Apache-2.0
"""Simulated chromatograms whose peaks, limits and valleys are known.

Two conventions differ between people and programs, and are drawn anew for each trace so that a
network can be told which one to follow: how wide a peak is drawn (limits over width at half
height) and how deep a valley must be to part two peaks.
"""

from dataclasses import dataclass
from itertools import pairwise

import numpy as np

from zav_training.xic.shapes import Peak, draw_peak

#: Limits over width at half height: programs draw about 3, people about 4.7.
DRAWN_WIDTH = (2.2, 5.5)
#: Share of the lower apex by which the signal must fall between two peaks that are parted.
VALLEY_DEPTH = (0.05, 0.6)
#: Width at 1 % of the apex over the width at half height, for a Gaussian.
GAUSSIAN_FOOT = 2.5776
#: Width at half height over sigma, for a Gaussian.
SIGMAS_AT_HALF = 2.3548
#: Evidence of a peak: height over noise times the root of its half width. Below the first it counts
#: as noise, from the second on it has to be found, between them neither answer is held against.
EVIDENCE = (3.0, 6.0)


#: A border whose signal falls by less than this is a shoulder.
SHOULDER = 0.02
#: Width (sigma) of the narrowest peaks in short traces, where no spikes are, and in others; of the
#: widest; and the points from which on a trace is not short.
NARROWEST, WIDEST, SHORT = (0.6, 0.9), 45.0, 40
#: Distance of the apexes of a cluster, in sigma.
APART = (2.0, 7.5)
#: A small neighbour on flat ground: distance of the apexes in sigma of the large peak, beyond the
#: feet of both; its height and its width over those of the large peak.
BESIDE, BESIDE_HEIGHT, BESIDE_WIDTH = (6.0, 18.0), (0.03, 0.5), (0.5, 1.2)
#: A calm detector: largest drift and noise over the largest peak.
CALM_DRIFT, CALM_SIGNAL_TO_NOISE = (1e-3, 0.4), (30.0, 3e6)
#: What lies this little (of the lower top) over the lowest point between two apexes is its ground.
GROUND = 0.01
#: Share of traces in which single counts are seen one by one, between zeros.
SPARSE_SHARE = 0.18


@dataclass
class Region:
    """One interval that is to be found; points as real numbers."""

    start: float
    end: float
    apexes: list[float]
    evidence: float
    height: float


@dataclass
class Border:
    """Where one peak passes into the next.

    The place is the lowest point between the apexes, the middle of the ground where that is flat,
    or where the two curves cross when the signal does not fall between them (a shoulder). `fall` is
    relative to the lower top, `resolution` the distance of the apexes over the mean width at half
    height, `height` that of the lower peak, `share` what the peak that is more covered by others
    has of the signal at its own apex, `left` the place of the earlier apex.
    """

    place: float
    distance: float
    fall: float
    resolution: float
    height: float
    share: float = 1.0
    left: float = 0.0

    def apexes(self) -> tuple[float, float]:
        """Places of the two apexes."""
        return self.left, self.left + self.distance


@dataclass
class Simulated:
    """A simulated trace: intensities, and what is to be found in it."""

    intensity: np.ndarray
    regions: list[Region]
    borders: list[Border]
    drawn_width: float
    valley_depth: float
    peaks: list[Peak]
    #: Noise beside the peaks, in units of the intensities.
    noise: float

    def valleys(self) -> list[float]:
        """Places of the valleys that part two peaks."""
        return [b.place for b in self.borders if b.fall >= self.valley_depth]


def simulate(
    rng: np.random.Generator,
    length: int,
    background: np.ndarray | None = None,
    crowded: float = 0.35,
    apart: tuple[float, float] = APART,
    neighbours: float = 0.0,
) -> Simulated:
    """A trace of the given number of points; background: a peak-free stretch of a real trace.

    `crowded` is the share of clusters with more than one peak, whose apexes lie `apart` sigma.
    `neighbours` is the share of traces with a small peak on flat ground beside their first one.
    """
    drawn = float(rng.uniform(*DRAWN_WIDTH))
    depth = float(np.exp(rng.uniform(*np.log(VALLEY_DEPTH))))
    peaks = _draw_peaks(rng, length, crowded, apart)
    if neighbours and peaks and rng.random() < neighbours:
        peaks.append(draw_neighbour(rng, peaks[0]))
    return observe(rng, peaks, length, background, (drawn, depth))


def observe(
    rng: np.random.Generator,
    peaks: list[Peak],
    length: int,
    background: np.ndarray | None,
    conventions: tuple[float, float],
    calm: float = 0.0,
) -> Simulated:
    """What an instrument would report of the peaks; limits by the width and depth that are drawn.

    `calm` is the share of traces as of a detector whose noise is low and does not grow with the
    signal, as in ultraviolet light; they may stand on a base and fall below 0.
    """
    drawn, depth = conventions
    t = np.arange(length, dtype=np.float64)
    curves = [p.height * p.curve(t) for p in peaks]
    clean = np.sum(curves, axis=0) if curves else np.zeros(length)
    top = max((p.height for p in peaks), default=1.0)
    if calm and rng.random() < calm:
        signal, clean, noise = _measure_calm(rng, clean, top)
        count = 1e9 / max(top, 1e-12)
    elif rng.random() < SPARSE_SHARE:
        signal, noise, count = _measure_sparse(rng, clean, top)
    else:
        signal, noise, count = _measure(rng, clean, background, top)
    order = np.argsort([p.apex for p in peaks])
    peaks = [peaks[i] for i in order]
    borders = find_borders(peaks, clean, [curves[i] for i in order])
    evidence = [_evidence(p, noise, count) for p in peaks]
    result = Simulated(signal, [], borders, drawn, depth, peaks, noise)
    result.regions = _regions(peaks, evidence, result.valleys(), drawn, length)
    return result


def _draw_peaks(
    rng: np.random.Generator, length: int, crowded: float, apart: tuple[float, float]
) -> list[Peak]:
    """Clusters of one to four peaks; half of all traces have a single cluster."""
    if rng.random() < 0.04:
        return []
    peaks: list[Peak] = []
    widest = min((0.08 if rng.random() < 0.85 else 0.2) * length, WIDEST)
    narrowest = NARROWEST[int(length >= SHORT and rng.random() < 0.9)]
    for _ in range(1 + int(rng.random() < 0.5) * int(rng.integers(0, 4))):
        sigma = float(np.exp(rng.uniform(np.log(narrowest), np.log(max(widest, 1.5)))))
        count = 1 if rng.random() > crowded else int(rng.integers(2, 5))
        scale = 1.0 if not peaks else float(np.exp(rng.uniform(np.log(0.01), 0.0)))
        at = float(rng.uniform(-0.01, 1.01) * length)
        peaks += _draw_cluster(rng, at, sigma, count, scale, apart)
    return peaks


def _draw_cluster(
    rng: np.random.Generator,
    at: float,
    sigma: float,
    count: int,
    scale: float,
    apart: tuple[float, float],
) -> list[Peak]:
    peaks = []
    for i in range(count):
        if i:
            at += sigma * float(rng.uniform(*apart))
            sigma *= float(rng.uniform(0.8, 1.25))
        height = scale * float(np.exp(rng.uniform(np.log(0.12), 0.0)) if count > 1 else 1.0)
        peaks.append(draw_peak(rng, at, sigma, height))
    return peaks


def draw_neighbour(rng: np.random.Generator, peak: Peak) -> Peak:
    """A smaller peak so far from another that the trace is flat between them."""
    sigma = peak.half_width / SIGMAS_AT_HALF
    side = 1.0 if rng.random() < 0.5 else -1.0
    at = peak.apex + side * sigma * float(rng.uniform(*BESIDE))
    height = peak.height * float(np.exp(rng.uniform(*np.log(BESIDE_HEIGHT))))
    return draw_peak(rng, at, sigma * float(rng.uniform(*BESIDE_WIDTH)), height)


def find_borders(peaks: list[Peak], clean: np.ndarray, curves: list[np.ndarray]) -> list[Border]:
    """Borders between neighbours whose apexes lie in the trace, at least three points apart."""
    borders = []
    for i, (a, b) in enumerate(pairwise(peaks)):
        left, right = round(a.apex), round(b.apex)
        if left < 0 or right >= len(clean) or right - left < 3:
            continue
        between = clean[left : right + 1]
        low = int(np.argmin(between))
        top = min(between[: low + 1].max(), between[low:].max())
        fall = 1.0 - between[low] / max(top, 1e-12)
        span = slice(left, right + 1)
        cross = int(np.argmin(np.abs(curves[i][span] - curves[i + 1][span])))
        ground = np.flatnonzero(between <= between[low] + GROUND * top)
        middle = 0.5 * float(ground[0] + ground[-1])
        place = left + (middle if fall > SHOULDER else cross)
        width = 0.5 * (a.half_width + b.half_width)
        resolution = (b.apex - a.apex) / max(width, 1e-9)
        lower = min(a.height, b.height)
        share = min(a.height / max(clean[left], 1e-12), b.height / max(clean[right], 1e-12))
        apart = b.apex - a.apex
        borders.append(Border(float(place), apart, fall, resolution, lower, share, a.apex))
    return borders


def _regions(
    peaks: list[Peak],
    evidence: list[float],
    valleys: list[float],
    drawn: float,
    length: int,
) -> list[Region]:
    """Peaks that no valley parts share a region; touching regions meet at the valley."""
    regions: list[Region] = []
    for peak, sure in zip(peaks, evidence, strict=True):
        left, right = peak.limits(drawn, GAUSSIAN_FOOT)
        region = Region(left, right, [peak.apex], sure, peak.height)
        if regions and region.start <= regions[-1].end + 2.0:
            _join(regions, region, valleys)
        else:
            regions.append(region)
    return [r for r in regions if r.end > 1.0 and r.start < length - 2.0]


def _evidence(peak: Peak, noise: float, count: float) -> float:
    """How far a peak stands out; of a peak of few counts (per unit of height) a dozen suffice."""
    width = max(peak.half_width, 1.0)
    return min(peak.height / max(noise, 1e-12) * np.sqrt(width), 0.6 * peak.height * width * count)


def _join(regions: list[Region], region: Region, valleys: list[float]) -> None:
    last = regions[-1]
    between = [v for v in valleys if last.apexes[-1] < v < region.apexes[0]]
    if between:
        last.end, region.start = between[0], between[0]
        regions.append(region)
        return
    free = regions[-2].end if len(regions) > 1 else -np.inf
    last.start, last.end = max(min(last.start, region.start), free), max(last.end, region.end)
    last.apexes += region.apexes
    last.evidence = max(last.evidence, region.evidence)
    last.height = max(last.height, region.height)


def _measure(
    rng: np.random.Generator, clean: np.ndarray, background: np.ndarray | None, top: float
) -> tuple[np.ndarray, float, float]:
    """Signal as an instrument would report it, noise beside the peaks, counts per intensity."""
    level = top / float(np.exp(rng.uniform(np.log(3.0), np.log(3000.0))))
    if background is not None:
        base = background - background.min()
        base = base * (level / max(background.std(), 1e-12))
    else:
        base = (
            _drift(rng, len(clean)) * level * float(np.exp(rng.uniform(np.log(0.1), np.log(20.0))))
        )
        base = base + level * _white(rng, len(clean))
    signal = np.maximum(clean + base, 0.0)
    signal = signal * np.exp(_jitter(rng) * rng.standard_normal(len(clean)))
    signal, count = _count(rng, signal, top)
    noise = level**2 + max(float(base.mean()), 0.0) / count + (0.3 / count) ** 2
    return _spoil(rng, signal, top, level), float(np.sqrt(noise)), count


def _measure_sparse(
    rng: np.random.Generator, clean: np.ndarray, top: float
) -> tuple[np.ndarray, float, float]:
    """A few counts a point at most, many points lost, little else in the trace.

    Each count has a height of its own, as behind an electron multiplier.
    """
    count = float(np.exp(rng.uniform(np.log(0.4), np.log(12.0)))) / max(top, 1e-12)
    stray = float(np.exp(rng.uniform(np.log(1e-4), np.log(0.05))))
    counts = rng.poisson(clean * count + stray)
    kept = 1.0 - rng.uniform(0.0, 0.8)
    counts = counts * (rng.random(len(clean)) < kept)
    heights = rng.lognormal(0.0, rng.uniform(0.1, 0.8), len(clean))
    noise = np.sqrt(stray * kept) / (count * kept)
    return counts * heights / count, float(noise), count * kept


def _measure_calm(
    rng: np.random.Generator, clean: np.ndarray, top: float
) -> tuple[np.ndarray, np.ndarray, float]:
    """Signal, signal without its noise and its base, and the noise.

    Neighbouring points hang together, as behind the filter of a detector.
    """
    n = len(clean)
    drift = _drift(rng, n) * top * float(np.exp(rng.uniform(*np.log(CALM_DRIFT))))
    risen = clean + (drift - drift.min() if rng.random() < 0.6 else 0.0)
    noise = top / float(np.exp(rng.uniform(*np.log(CALM_SIGNAL_TO_NOISE))))
    taps = int(rng.integers(1, 8))
    white = rng.standard_normal(n + taps - 1)
    filtered = np.convolve(white, np.full(taps, taps**-0.5), "valid")
    base = top * float(rng.choice((0.0, 1.0, -0.05), p=(0.6, 0.3, 0.1)))
    signal = risen + noise * filtered + base * float(np.exp(rng.uniform(np.log(0.01), 0.0)))
    if rng.random() < 0.4:
        signal = np.maximum(signal, 0.0)
    return signal, risen, noise


def _drift(rng: np.random.Generator, n: int) -> np.ndarray:
    t = np.linspace(0.0, 1.0, n)
    kind = rng.integers(0, 4)
    if kind == 0:
        return np.full(n, float(rng.uniform(0.0, 1.0)))
    if kind == 1:
        return np.interp(t, [0.0, 1.0], rng.uniform(0.0, 1.0, 2))
    if kind == 2:
        return 0.5 + 0.5 * np.sin(2 * np.pi * (t * rng.uniform(0.2, 1.5) + rng.random()))
    return np.exp(-t * rng.uniform(0.5, 6.0)) if rng.random() < 0.5 else t ** rng.uniform(1, 4)


def _white(rng: np.random.Generator, n: int) -> np.ndarray:
    """White noise, or noise whose neighbours hang together a little."""
    white = rng.standard_normal(n)
    if rng.random() < 0.3:
        rho = rng.uniform(0.1, 0.5)
        white[1:] = rho * white[:-1] + np.sqrt(1 - rho**2) * white[1:]
    return white


def _jitter(rng: np.random.Generator) -> float:
    """Spread of the error that grows with the signal."""
    kind = rng.random()
    if kind < 0.65:
        return float(rng.uniform(0.0, 0.08))
    return float(rng.uniform(0.08, 0.25) if kind < 0.9 else rng.uniform(0.25, 0.7))


def _count(rng: np.random.Generator, signal: np.ndarray, top: float) -> tuple[np.ndarray, float]:
    """Counting statistics for a part of the traces: an apex of 3 to 100,000 counts."""
    if rng.random() < 0.35:
        return signal, 1e9 / max(top, 1e-12)
    counts = float(np.exp(rng.uniform(np.log(3.0), np.log(1e5))))
    count = counts / max(top, 1e-12)
    return rng.poisson(np.minimum(signal * count, 1e9)) / count, count


def _spoil(rng: np.random.Generator, signal: np.ndarray, top: float, level: float) -> np.ndarray:
    """Spikes, dropouts, a threshold below which nothing is reported, a clipped detector."""
    n = len(signal)
    if rng.random() < 0.25 and n >= SHORT:
        places = rng.integers(0, n, rng.integers(1, 4))
        signal[places] += top * np.exp(rng.uniform(np.log(0.02), np.log(0.8), len(places)))
    if rng.random() < 0.15:
        signal[rng.random(n) < rng.uniform(0.02, 0.35)] = 0.0
    if rng.random() < 0.3:
        signal[signal < level * rng.uniform(0.5, 4.0)] = 0.0
    if rng.random() < 0.04:
        signal = np.minimum(signal, top * rng.uniform(0.3, 0.9))
    return signal
