// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/XicPeakSplitter.h>

#include <Eigen/Core>

namespace zav {

/// The lines that the splitter's errors and its log carry, each for the step that failed. Hosts read and log them: they
/// stay when the code around them moves.
namespace xicPeakSplitterLines {

// init
inline constexpr int OPTIONS = 62;
inline constexpr int NETWORK = 63;
inline constexpr int PRIVATE_INIT = 253;

// splitXIC
inline constexpr int INITIALISED = 184;
inline constexpr int SURPLUS_POINTS = 104; // a debug message, no error
inline constexpr int GRAPH_INPUT = 204;
inline constexpr int GRAPH_OUTPUT = 210;
inline constexpr int FEED = 213;
inline constexpr int RUN = 214;
inline constexpr int READ = 215;
inline constexpr int OUTPUT_LENGTH = 218;
inline constexpr int PREDICTION = 229;

// processPrediction
inline constexpr int EQUAL_LENGTHS = 140;

} // namespace xicPeakSplitterLines

class XicPeakSplitter::Private
{
public:
    Error init(const XicPeakSplitterOptions &newOptions);
    Result<QList<std::pair<double, double>>> splitXIC(const QList<QPointF> &points);

    Model model;
    XicPeakSplitterOptions options;
    bool initialised = false;
    Eigen::VectorXd smoothingKernel;
};

/// From one probability a point to the split points (retention time, probability), the most probable first.
/// `InvalidInput` "xic and prediction not equal" unless there are as many probabilities as points; no points have no
/// splits, whatever the prediction.
Result<QList<std::pair<double, double>>> processPrediction(const Eigen::VectorXf &prediction,
                                                           const XicPeakSplitterOptions &options,
                                                           const QList<QPointF> &points);

} // namespace zav
