// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/XicBaselineLimitsDetector.h>

#include <Eigen/Core>

namespace zav {

/// The lines that the detector's errors carry, each for the step that failed. Hosts read and log them: they stay when
/// the code around them moves.
namespace xicBaselineLimitsDetectorLines {

// init
inline constexpr int OPTIONS = 79;
inline constexpr int NETWORK = 81;

// integrateXIC with the network
inline constexpr int INITIALISED = 135;
inline constexpr int INPUT_VECTOR = 143;
inline constexpr int GRAPH_INPUT = 149;
inline constexpr int GRAPH_OUTPUT = 152;
inline constexpr int FEED = 155;
inline constexpr int RUN = 156;
inline constexpr int READ = 157;
inline constexpr int PREDICTION = 166;
inline constexpr int RETRY = 194;

// integrateXIC without it
inline constexpr int WALK_INITIALISED = 340;
inline constexpr int WALK_INPUT_VECTOR = 348;
inline constexpr int WALK_LIMITS = 373;

// processPrediction and clusterPrediction
inline constexpr int THRESHOLD = 436;
inline constexpr int CLUSTERS = 438;
inline constexpr int CLUSTER_LIMITS = 450;
inline constexpr int PROBABILITIES = 530;

} // namespace xicBaselineLimitsDetectorLines

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
