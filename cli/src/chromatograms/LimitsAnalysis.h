// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LimitsOptions.h"
#include "PredictorPool.h"
#include "TraceAnalysis.h"

#include <zav/Interval.h>
#include <zav/XicBaselineLimitsDetector.h>

namespace zav {

/// Finds the peaks of a trace and measures them.
class LimitsAnalysis : public TraceAnalysis
{
public:
    LimitsAnalysis(const LimitsOptions &options, const QString &modelFilePath);

    Error load() override;
    Result<TraceFindings> analyse(const QList<QPointF> &points) override;

private:
    bool isTooShort(qsizetype pointCount) const;
    Result<QList<Interval<double>>> findLimits(const QList<QPointF> &points, int size);

    LimitsOptions m_options;
    PredictorPool<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions> m_detectors;
};

} // namespace zav
