// SPDX-License-Identifier: Apache-2.0
#include "PeakMeasures.h"

#include "ConsensusTrace.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace zav {

namespace {

QList<QPointF> pointsWithin(const QList<QPointF> &points, const Interval<double> &limits)
{
    QList<QPointF> within;
    std::copy_if(points.begin(), points.end(), std::back_inserter(within),
                 [&](const QPointF &point) { return limits.contains(point.x()); });
    return within;
}

double trapezoid(const QPointF &left, const QPointF &right)
{
    return (right.x() - left.x()) * (left.y() + right.y()) / 2;
}

double areaUnder(const QList<QPointF> &points)
{
    double area = 0;
    for (qsizetype i = 1; i < points.size(); ++i)
        area += trapezoid(points[i - 1], points[i]);
    return area;
}

/// Areas of huge intensities can be infinite, and then there is no area above the line.
double orderedArea(const TracePeak &peak)
{
    return std::isnan(peak.areaAboveLine) ? -std::numeric_limits<double>::infinity() : peak.areaAboveLine;
}

TracePeak withoutSignal(const TracePeak &peak)
{
    constexpr double NONE = std::numeric_limits<double>::quiet_NaN();
    return {peak.start, peak.end, NONE, 0, 0, 0, peak.points, NONE};
}

QString silenceRemark(qsizetype silent, qsizetype peaks)
{
    if (silent == 0)
        return {};
    return peaks == 1 ? QStringLiteral("no signal within the limits of the peak")
                      : QStringLiteral("no signal within the limits of %1 of %2 peaks").arg(silent).arg(peaks);
}

} // namespace

TracePeak measurePeak(const QList<QPointF> &points, const Interval<double> &limits)
{
    TracePeak peak;
    peak.start = limits.start;
    peak.end = limits.end;
    const QList<QPointF> within = pointsWithin(points, limits);
    if (within.isEmpty())
        return peak;
    const auto highest = std::max_element(within.begin(), within.end(),
                                          [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    peak.apex = highest->x();
    peak.height = highest->y();
    peak.area = areaUnder(within);
    peak.areaAboveLine = peak.area - trapezoid(within.first(), within.last());
    peak.points = within.size();
    return peak;
}

void keepBest(qsizetype count, TraceFindings *findings)
{
    QList<TracePeak> &peaks = findings->peaks;
    if (peaks.size() <= count)
        return;
    std::stable_sort(peaks.begin(), peaks.end(),
                     [](const TracePeak &a, const TracePeak &b) { return orderedArea(a) > orderedArea(b); });
    findings->leftOut += peaks.size() - count;
    peaks.resize(count);
    std::stable_sort(peaks.begin(), peaks.end(),
                     [](const TracePeak &a, const TracePeak &b) { return a.start < b.start; });
}

TraceFindings memberFindings(const TraceFindings &ofConsensus, const QList<QPointF> &points,
                             const QList<QPointF> &consensus)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    TraceFindings findings;
    qsizetype silent = 0;
    for (const TracePeak &common : ofConsensus.peaks) {
        const Interval<double> limits{common.start, common.end};
        TracePeak peak = measurePeak(points, limits);
        peak.shape = shapeAgreement(points, consensus, limits);
        silent += peak.height > 0 ? 0 : 1;
        findings.peaks.append(peak.height > 0 ? peak : withoutSignal(peak));
    }
    findings.leftOut = ofConsensus.leftOut;
    findings.splits = ofConsensus.splits;
    findings.shape = shapeAgreement(points, consensus, {-INFINITE, INFINITE});
    findings.remark = silenceRemark(silent, ofConsensus.peaks.size());
    return findings;
}

} // namespace zav
