// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/XicBaselineLimitsDetector.h>

#include <Eigen/Core>

namespace zav {

class XicBaselineLimitsDetector::Private
{
public:
    Error init(const XicBaselineLimitsDetectorOptions &newOptions);
    Result<QList<Interval<double>>> integrateXIC(const QList<QPointF> &points, double retentionTimeHint,
                                                 int retryDepth);
    Result<QList<Interval<double>>> integrateXIC(const QList<QPointF> &points);

    /// The network input, `maxPointCount` values; empty when the points cannot be thinned to that many, which callers
    /// do not learn about otherwise.
    Result<Eigen::VectorXf> buildInputVector(const QList<QPointF> &points, const Eigen::VectorXd &kernel) const;

    /// From one probability a point to intervals of retention time.
    Result<QList<Interval<double>>> processPrediction(const Eigen::VectorXf &prediction,
                                                      const QList<QPointF> &points) const;

    /// From one probability a point to intervals of point indices, in the order of their clusters. An interval can
    /// name indices beyond the last point: callers check.
    Result<QList<Interval<int>>> clusterPrediction(const Eigen::VectorXf &probabilities) const;

    Model model;
    XicBaselineLimitsDetectorOptions options;
    bool initialised = false;
    Eigen::VectorXd smoothingKernel;
};

} // namespace zav
