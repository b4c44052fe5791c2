// SPDX-License-Identifier: Apache-2.0
#include <zav/XicBaselineLimitsDetector.h>

#include "ClusteringDBSCAN.h"
#include "EigenUtilities.h"
#include "ErrorUtils.h"
#include "OutOfMemory.h"
#include "ReturnIfError.h"
#include "Tensor.h"
#include "XicBaselineLimitsDetector_p.h"
#include "XicInputVector.h"
#include "XicPeakWalk.h"
#include "removeLowIntensePoints.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <string>
#include <vector>

namespace zav {

namespace {

namespace lines = xicBaselineLimitsDetectorLines;

constexpr char SOURCE_FILE[] = "ml/src/XicBaselineLimitsDetector";

constexpr double PADDING = -1.0;
constexpr int MAXIMUM_SCALE = 10000;
constexpr double CLUSTERED_ABOVE = 0.9;
constexpr double NO_HINT = -1.0; // retention time
constexpr int MAXIMUM_RETRIES = 3;
constexpr double AMPLIFICATION = 10.0;

/// NaN is the lowest of all: it must not decide where the others are clipped.
bool isLower(const QPointF &a, const QPointF &b)
{
    return a.y() < b.y() || (std::isnan(a.y()) && !std::isnan(b.y()));
}

/// Tenfold, clipped at the highest point, so that a faint peak beside a large one grows into the network's sight.
QList<QPointF> amplified(const QList<QPointF> &points)
{
    const double ceiling = std::max_element(points.cbegin(), points.cend(), isLower)->y();
    QList<QPointF> result;
    result.reserve(points.size());
    for (const QPointF &point : points)
        result.append({point.x(), std::min(point.y() * AMPLIFICATION, ceiling)});
    return result;
}

bool anyContains(const QList<Interval<double>> &intervals, double retentionTime)
{
    return std::any_of(intervals.cbegin(), intervals.cend(),
                       [&](const Interval<double> &interval) { return interval.contains(retentionTime); });
}

Error startAfterEnd()
{
    return {InvalidInput, QStringLiteral("Start is greater than end")};
}

/// A network may return fewer values than there are points.
Error holdsAtLeast(const std::vector<float> &values, qsizetype count)
{
    return static_cast<qsizetype>(values.size()) >= count
               ? Error()
               : Error(Failure,
                       QStringLiteral("The network returned %1 values for %2 points").arg(values.size()).arg(count));
}

std::vector<int> indicesAbove(const Eigen::VectorXf &values, double limit)
{
    std::vector<int> indices;
    for (Eigen::Index i = 0; i < values.size(); ++i) {
        if (static_cast<double>(values[i]) > limit)
            indices.push_back(static_cast<int>(i));
    }
    return indices;
}

/// One row an index: the constant 1 and the index.
Eigen::MatrixXd clusteringRows(const std::vector<int> &indices)
{
    Eigen::MatrixXd rows(static_cast<Eigen::Index>(indices.size()), 2);
    for (Eigen::Index row = 0; row < rows.rows(); ++row)
        rows.row(row) << 1.0, indices[row];
    return rows;
}

/// One interval a cluster, in the order of the labels. It starts one index early, and at 1 where that would be before
/// the list; a last cluster whose final row is noise, or that is opened by the final row, is not emitted.
QList<Interval<int>> intervalsOfClusters(const Eigen::VectorXi &labels, const std::vector<int> &indices)
{
    QList<Interval<int>> intervals;
    int cluster = 0;
    int low = INT_MAX;
    int high = INT_MIN;
    for (Eigen::Index row = 0; row < labels.size(); ++row) {
        const int label = labels[row];
        const int index = indices[row];
        const bool last = row == labels.size() - 1;
        if (label == -1)
            continue;
        if (cluster < label || last) {
            if (last && label == cluster)
                high = index;
            intervals.append({low - 1 >= 0 ? low - 1 : 1, high});
            ++cluster;
            low = INT_MAX;
            high = INT_MIN;
        }
        if (label == cluster) {
            low = std::min(low, index);
            high = std::max(high, index);
        }
    }
    return intervals;
}

} // namespace

Error XicBaselineLimitsDetector::Private::init(const XicBaselineLimitsDetectorOptions &newOptions)
{
    options = newOptions;
    ZAV_RETURN_IF_ERROR(options.checkForParameterErrors(), lines::OPTIONS);
    ZAV_RETURN_IF_ERROR(model.init(options.modelFilePath.toStdString(), {}), lines::NETWORK);
    smoothingKernel = buildSmoothingKernel(options.gaussianFilterSize);
    initialised = true;
    return Error();
}

Result<Eigen::VectorXf> XicBaselineLimitsDetector::Private::buildInputVector(const QList<QPointF> &points,
                                                                             const Eigen::VectorXd &kernel) const
{
    QList<QPointF> thinned = points;
    if (thinned.size() > options.maxPointCount)
        removeLowIntensePoints(thinned, thinningTarget(options.maxPointCount), true);
    const Error tooMany =
        ErrorUtils::belowThreshold<int>(static_cast<int>(thinned.size()), options.maxPointCount, Inclusive,
                                        Error(Failure, QStringLiteral("Points list exceeds Tensor max index limit")));
    // Deliberately not reported: an empty input fails, or finds nothing, further on.
    if (tooMany.hasError())
        return Eigen::VectorXf();
    return buildXicInputVector(thinned, kernel, {options.maxPointCount, PADDING, options.smoothingPassCount});
}

Result<QList<Interval<double>>>
XicBaselineLimitsDetector::Private::integrateXIC(const QList<QPointF> &points, double retentionTimeHint, int retryDepth)
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<bool>(initialised, true, Failure), lines::INITIALISED);
    if (points.isEmpty())
        return QList<Interval<double>>();

    const Result<Eigen::VectorXf> input = buildInputVector(points, smoothingKernel);
    ZAV_RETURN_IF_ERROR(input, lines::INPUT_VECTOR);

    Tensor image;
    ZAV_RETURN_IF_ERROR(image.init(model.getGraph(), model.getStatus(), "import/img"), lines::GRAPH_INPUT);
    Tensor probabilities;
    ZAV_RETURN_IF_ERROR(probabilities.init(model.getGraph(), model.getStatus(), "import/conv2d_19/Sigmoid"),
                        lines::GRAPH_OUTPUT);
    ZAV_RETURN_IF_ERROR(image.setData<float>({input.value().cbegin(), input.value().cend()}), lines::FEED);
    ZAV_RETURN_IF_ERROR(model.run(image, probabilities), lines::RUN);
    std::vector<float> values;
    ZAV_RETURN_IF_ERROR(probabilities.getData<float>(&values), lines::READ);

    // Options that were refused are in force all the same: their count can be below 0.
    const qsizetype used = std::clamp<qsizetype>(options.maxPointCount, 0, points.size());
    if (used <= options.minPointCount)
        return QList<Interval<double>>();
    ZAV_RETURN_IF_ERROR(holdsAtLeast(values, used), __LINE__);
    Result<QList<Interval<double>>> found =
        processPrediction(Eigen::Map<const Eigen::VectorXf>(values.data(), used), points);
    ZAV_RETURN_IF_ERROR(found, lines::PREDICTION);

    const bool retry =
        retentionTimeHint > NO_HINT && retryDepth < MAXIMUM_RETRIES && !anyContains(found.value(), retentionTimeHint);
    if (!retry)
        return found;
    // A depth below 0 is no licence for more retries.
    Result<QList<Interval<double>>> retried =
        integrateXIC(amplified(points), retentionTimeHint, std::max(retryDepth, 0) + 1);
    ZAV_RETURN_IF_ERROR(retried, lines::RETRY);
    return retried;
}

Result<QList<Interval<double>>> XicBaselineLimitsDetector::Private::integrateXIC(const QList<QPointF> &points)
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<bool>(initialised, true, Failure), lines::WALK_INITIALISED);
    if (points.isEmpty())
        return QList<Interval<double>>();

    const Result<Eigen::VectorXf> input = buildInputVector(points, smoothingKernel);
    ZAV_RETURN_IF_ERROR(input, lines::WALK_INPUT_VECTOR);
    QList<LocalMaximum> maxima = findLocalMaxima(input.value(), MAXIMUM_SCALE);

    QList<Interval<double>> intervals;
    for (const Interval<int> &limits : walkAllPeakLimits(input.value(), std::move(maxima), options.limitThreshold)) {
        // A thinned or smoothed vector can rise where the list has ended: such a walk describes no part of it.
        if (limits.start >= points.size() || limits.end < 0)
            continue;
        const double start = points.at(limits.start).x();
        const double end = points.at(std::min<qsizetype>(limits.end, points.size() - 1)).x();
        ZAV_RETURN_IF_ERROR(ErrorUtils::belowThreshold<double>(start, end, Inclusive, startAfterEnd()),
                            lines::WALK_LIMITS);
        intervals.append({start, end});
    }
    return intervals;
}

Result<QList<Interval<double>>>
XicBaselineLimitsDetector::Private::processPrediction(const Eigen::VectorXf &prediction,
                                                      const QList<QPointF> &points) const
{
    const Result<Eigen::VectorXf> floored =
        EigenUtilities::floorAndCeilingVector(prediction, 1.0 - options.probabilityTolerance, options.minPointCount);
    ZAV_RETURN_IF_ERROR(floored, lines::THRESHOLD);
    const Result<QList<Interval<int>>> clusters = clusterPrediction(floored.value());
    ZAV_RETURN_IF_ERROR(clusters, lines::CLUSTERS);

    QList<Interval<double>> intervals;
    for (const Interval<int> &limits : clusters.value()) {
        // A lone point in the first or last row can yield indices outside the list.
        if (std::max(limits.start, limits.end) >= points.size() || limits.end < 0)
            continue;
        const double start = points.at(limits.start).x();
        const double end = points.at(limits.end).x();
        ZAV_RETURN_IF_ERROR(ErrorUtils::belowThreshold<double>(start, end, Inclusive, startAfterEnd()),
                            lines::CLUSTER_LIMITS);
        intervals.append({start, end});
    }
    return intervals;
}

Result<QList<Interval<int>>>
XicBaselineLimitsDetector::Private::clusterPrediction(const Eigen::VectorXf &probabilities) const
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::aboveThreshold<int>(static_cast<int>(probabilities.size()), 0, Exclusive,
                                                        Error(Failure, QStringLiteral("Empty Probability Vector"))),
                        lines::PROBABILITIES);
    if (1.0 - options.probabilityTolerance > static_cast<double>(probabilities.maxCoeff()))
        return QList<Interval<int>>();
    const std::vector<int> selected = indicesAbove(probabilities, CLUSTERED_ABOVE);
    ClusteringDBSCAN clustering(options.dbscanEpsilon, options.dbscanMinPoints);
    return intervalsOfClusters(clustering.performDBSCAN(clusteringRows(selected)), selected);
}

XicBaselineLimitsDetector::XicBaselineLimitsDetector() : d(std::make_unique<Private>()) {}

XicBaselineLimitsDetector::~XicBaselineLimitsDetector() = default;

Error XicBaselineLimitsDetector::init(const XicBaselineLimitsDetectorOptions &options)
try {
    return d->init(options);
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Result<QList<Interval<double>>> XicBaselineLimitsDetector::integrateXIC(const QList<QPointF> &points)
try {
    return d->integrateXIC(points);
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Result<QList<Interval<double>>> XicBaselineLimitsDetector::integrateXIC(const QList<QPointF> &points,
                                                                        double retentionTimeHint, int retryDepth)
try {
    return d->integrateXIC(points, retentionTimeHint, retryDepth);
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

} // namespace zav
