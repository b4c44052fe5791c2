// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PredictorPool.h"
#include "SplitOptions.h"
#include "TraceAnalysis.h"

#include <zav/XicPeakSplitter.h>

namespace zav {

/// Finds where the peaks of a trace are to be split from each other.
class SplitAnalysis : public TraceAnalysis
{
public:
    SplitAnalysis(const SplitOptions &options, const QString &modelFilePath);

    Error load() override;
    Result<TraceFindings> analyse(const QList<QPointF> &points) override;

private:
    QString m_modelFilePath;
    PredictorPool<XicPeakSplitter, XicPeakSplitterOptions> m_splitters;
};

} // namespace zav
