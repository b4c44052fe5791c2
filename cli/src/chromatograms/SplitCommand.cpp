// SPDX-License-Identifier: Apache-2.0
#include "SplitCommand.h"

#include "PredictorPool.h"
#include "SplitSearch.h"

#include <zav/XicPeakSplitter.h>

#include <utility>

namespace zav {

namespace {

/// How much of the tolerance a split of a finer view may use: from 0.8 on, with the default of 0.5.
constexpr double SURER = 0.4;

/// Finds where the peaks of a trace are to be split from each other.
class SplitAnalysis : public TraceAnalysis
{
public:
    SplitAnalysis(const SplitOptions &options, const QString &modelFilePath)
        : m_coarsest(options.maxPointCount.value_or(NETWORK_SIZES.front())),
          m_largest(options.maxPointCount.value_or(NETWORK_SIZES.back())),
          m_leastSure(1 - SURER * options.splitter.probabilityTolerance),
          m_splitters(options.splitter, modelFilePath, options.maxPointCount.value_or(0))
    {}

    Error load() override { return m_splitters.load(); }
    Result<TraceFindings> analyse(const QList<QPointF> &points) override;

private:
    Result<QList<std::pair<double, double>>> splitOnce(const QList<QPointF> &points, QList<QString> *warnings);

    int m_coarsest, m_largest; // numbers of points
    double m_leastSure;
    PredictorPool<XicPeakSplitter, XicPeakSplitterOptions> m_splitters;
};

Result<TraceFindings> SplitAnalysis::analyse(const QList<QPointF> &points)
{
    TraceFindings findings;
    if (points.size() < SplitSearch::FEWEST_POINTS) {
        findings.nothingFound =
            points.isEmpty()
                ? QStringLiteral("no points")
                : QStringLiteral("fewer than %1 points, too few for the network").arg(SplitSearch::FEWEST_POINTS);
        return findings;
    }
    const SplitSearch search(m_coarsest, m_largest, m_leastSure, [this, &findings](const QList<QPointF> &view) {
        return splitOnce(view, &findings.warnings);
    });
    Result<QList<TraceSplit>> splits = search.splitsOf(points);
    if (splits.hasError())
        return splits.error();
    findings.splits = std::move(splits).value();
    if (findings.splits.isEmpty())
        findings.nothingFound = QStringLiteral("no split found");
    return findings;
}

Result<QList<std::pair<double, double>>> SplitAnalysis::splitOnce(const QList<QPointF> &points,
                                                                  QList<QString> *warnings)
{
    const int size = m_splitters.sizeFor(points.size());
    const Result<XicPeakSplitter *> splitter = m_splitters.predictor(size);
    if (splitter.hasError())
        return splitter.error();
    auto splits = splitter.value()->splitXIC(points);
    if (splits.hasError())
        return runError(splits.error(), m_splitters.modelFilePath(), size);
    for (const QString &warning : splits.warnings()) {
        if (!warnings->contains(warning))
            warnings->append(warning);
    }
    return splits;
}

} // namespace

std::unique_ptr<TraceAnalysis> SplitCommand::makeAnalysis(const QString &modelFilePath) const
{
    return std::make_unique<SplitAnalysis>(m_options, modelFilePath);
}

} // namespace zav
