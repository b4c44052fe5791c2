// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "XicBaselineLimitsDetector_p.h"
#include "XicPeakSplitter_p.h"

namespace zav {

/// The benchmarks' views of the predictors: their networks, to be run without them.
class XicBaselineLimitsDetectorInspector
{
public:
    static XicBaselineLimitsDetector::Private &of(const XicBaselineLimitsDetector &detector) { return *detector.d; }
};

class XicPeakSplitterInspector
{
public:
    static XicPeakSplitter::Private &of(const XicPeakSplitter &splitter) { return *splitter.d; }
};

/// Chromatograms that the benchmarks of the two predictors share, the same ones everywhere.
namespace xicBenchmarkTraces {

constexpr double SECONDS_PER_POINT = 0.5;

/// Where the peaks of `twoPeaks` have their tips, and the valley between them, as shares of the trace.
constexpr double FIRST_APEX = 0.42;
constexpr double VALLEY = 0.5;
constexpr double SECOND_APEX = 0.58;

/// Two peaks of 10,000 and 7,000 counts that touch, on a little noise; then noise alone up to `fullCount` points.
QList<QPointF> twoPeaks(int pointCount, int fullCount);

/// As a triple quadrupole counts: zeros and a few ions between a handful of tailing peaks of any height.
QList<QPointF> countedTrace(int pointCount, unsigned seed);

/// Loads the shipped network for chromatograms of up to `maxPointCount` points; ends the program where it fails.
void load(XicBaselineLimitsDetector *detector, const QString &folder, int maxPointCount);
void load(XicPeakSplitter *splitter, const QString &folder, int maxPointCount);

} // namespace xicBenchmarkTraces

} // namespace zav
