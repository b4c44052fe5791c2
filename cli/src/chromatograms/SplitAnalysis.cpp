// SPDX-License-Identifier: Apache-2.0
#include "SplitAnalysis.h"

#include <algorithm>

namespace zav {

namespace {

constexpr int FEWEST_POINTS = 5; // of XicPeakSplitter

XicPeakSplitterOptions withModel(XicPeakSplitterOptions options, const QString &modelFilePath)
{
    options.modelFilePath = modelFilePath;
    return options;
}

QList<TraceSplit> byTime(const QList<std::pair<double, double>> &pairs)
{
    QList<TraceSplit> splits;
    for (const auto &[time, probability] : pairs)
        splits.append({time, probability});
    std::stable_sort(splits.begin(), splits.end(),
                     [](const TraceSplit &a, const TraceSplit &b) { return a.time < b.time; });
    return splits;
}

} // namespace

SplitAnalysis::SplitAnalysis(const SplitOptions &options, const QString &modelFilePath)
    : m_modelFilePath(modelFilePath),
      m_splitters(withModel(options.splitter, modelFilePath), options.maxPointCount.value_or(0))
{}

Error SplitAnalysis::load()
{
    return m_splitters.predictor(m_splitters.sizeFor(0)).error();
}

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
        return analysisError(splits.error(), m_modelFilePath, size);

    findings.splits = byTime(splits.value());
    findings.warnings = splits.warnings();
    findings.remark = thinningRemark(points.size(), size);
    if (findings.splits.isEmpty())
        findings.nothingFound = QStringLiteral("no split found");
    return findings;
}

} // namespace zav
