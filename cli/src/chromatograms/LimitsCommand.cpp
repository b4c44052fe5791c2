// SPDX-License-Identifier: Apache-2.0
#include "LimitsCommand.h"

#include "PeakMeasures.h"
#include "PredictorPool.h"

#include <zav/Interval.h>
#include <zav/XicBaselineLimitsDetector.h>

#include <algorithm>

namespace zav {

namespace {

/// Finds the peaks of a trace and measures them.
class LimitsAnalysis : public TraceAnalysis
{
public:
    LimitsAnalysis(const LimitsOptions &options, const QString &modelFilePath)
        : m_options(options), m_detectors(options.detector, modelFilePath, options.maxPointCount.value_or(0))
    {}

    Error load() override { return m_detectors.load(); }
    Result<TraceFindings> analyse(const QList<QPointF> &points) override;

private:
    bool isTooShort(qsizetype pointCount) const;
    Result<QList<Interval<double>>> findLimits(const QList<QPointF> &points, int size);

    LimitsOptions m_options;
    PredictorPool<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions> m_detectors;
};

Result<TraceFindings> LimitsAnalysis::analyse(const QList<QPointF> &points)
{
    TraceFindings findings;
    if (isTooShort(points.size())) {
        findings.nothingFound =
            points.isEmpty()
                ? QStringLiteral("no points")
                : QStringLiteral("%1 points or fewer, too few for the network").arg(m_options.detector.minPointCount);
        return findings;
    }
    const int size = m_detectors.sizeFor(points.size());
    const Result<QList<Interval<double>>> limits = findLimits(thinnedTo(size, points), size);
    if (limits.hasError())
        return runError(limits.error(), m_detectors.modelFilePath(), size);

    findings.warnings = limits.warnings();
    findings.remark = thinningRemark(points.size(), size);
    for (const Interval<double> &interval : limits.value())
        findings.peaks.append(measurePeak(points, interval));
    std::stable_sort(findings.peaks.begin(), findings.peaks.end(),
                     [](const TracePeak &a, const TracePeak &b) { return a.start < b.start; });
    if (m_options.bestPeaks)
        keepBest(*m_options.bestPeaks, &findings);
    if (findings.peaks.isEmpty())
        findings.nothingFound = QStringLiteral("no peak found");
    return findings;
}

/// Known without a run of the network.
bool LimitsAnalysis::isTooShort(qsizetype pointCount) const
{
    return pointCount == 0 || (m_options.usesNetwork && pointCount <= m_options.detector.minPointCount);
}

Result<QList<Interval<double>>> LimitsAnalysis::findLimits(const QList<QPointF> &points, int size)
{
    const Result<XicBaselineLimitsDetector *> detector = m_detectors.predictor(size);
    if (detector.hasError())
        return detector.error();
    return m_options.usesNetwork ? detector.value()->integrateXIC(points, m_options.retentionTimeHint, 0)
                                 : detector.value()->integrateXIC(points);
}

} // namespace

std::unique_ptr<TraceAnalysis> LimitsCommand::makeAnalysis(const QString &modelFilePath) const
{
    return std::make_unique<LimitsAnalysis>(m_options, modelFilePath);
}

} // namespace zav
