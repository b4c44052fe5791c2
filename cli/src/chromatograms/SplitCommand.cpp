// SPDX-License-Identifier: Apache-2.0
#include "SplitCommand.h"

#include "PredictorPool.h"

#include <zav/XicPeakSplitter.h>

#include <algorithm>
#include <utility>

namespace zav {

namespace {

constexpr int FEWEST_POINTS = 5; // of XicPeakSplitter

QList<TraceSplit> byTime(const QList<std::pair<double, double>> &pairs)
{
    QList<TraceSplit> splits;
    for (const auto &[time, probability] : pairs)
        splits.append({time, probability});
    std::stable_sort(splits.begin(), splits.end(),
                     [](const TraceSplit &a, const TraceSplit &b) { return a.time < b.time; });
    return splits;
}

/// Finds where the peaks of a trace are to be split from each other.
class SplitAnalysis : public TraceAnalysis
{
public:
    SplitAnalysis(const SplitOptions &options, const QString &modelFilePath)
        : m_splitters(options.splitter, modelFilePath, options.maxPointCount.value_or(0))
    {}

    Error load() override { return m_splitters.load(); }
    Result<TraceFindings> analyse(const QList<QPointF> &points) override;

private:
    PredictorPool<XicPeakSplitter, XicPeakSplitterOptions> m_splitters;
};

Result<TraceFindings> SplitAnalysis::analyse(const QList<QPointF> &points)
{
    TraceFindings findings;
    if (points.size() < FEWEST_POINTS) {
        findings.nothingFound =
            points.isEmpty() ? QStringLiteral("no points")
                             : QStringLiteral("fewer than %1 points, too few for the network").arg(FEWEST_POINTS);
        return findings;
    }
    const int size = m_splitters.sizeFor(points.size());
    const Result<XicPeakSplitter *> splitter = m_splitters.predictor(size);
    if (splitter.hasError())
        return splitter.error();
    const auto splits = splitter.value()->splitXIC(thinnedTo(size, points));
    if (splits.hasError())
        return runError(splits.error(), m_splitters.modelFilePath(), size);

    findings.splits = byTime(splits.value());
    findings.warnings = splits.warnings();
    findings.remark = thinningRemark(points.size(), size);
    if (findings.splits.isEmpty())
        findings.nothingFound = QStringLiteral("no split found");
    return findings;
}

} // namespace

std::unique_ptr<TraceAnalysis> SplitCommand::makeAnalysis(const QString &modelFilePath) const
{
    return std::make_unique<SplitAnalysis>(m_options, modelFilePath);
}

} // namespace zav
