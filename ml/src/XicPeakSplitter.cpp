// SPDX-License-Identifier: Apache-2.0
#include <zav/XicPeakSplitter.h>

#include "EigenUtilities.h"
#include "ErrorUtils.h"
#include "LcMl.h"
#include "OutOfMemory.h"
#include "ReturnIfError.h"
#include "Tensor.h"
#include "XicInputVector.h"
#include "XicPeakSplitter_p.h"
#include "removeLowIntensePoints.h"

#include <QtCore/QDebug>

#include <vector>

namespace zav {

namespace {

namespace lines = xicPeakSplitterLines;

constexpr char SOURCE_FILE[] = "ml/src/XicPeakSplitter";

constexpr double PADDING = 0.0;
constexpr int FEWEST_POINTS = 5;
constexpr double HIGHEST_PROBABILITY = 1.0;
constexpr int MOST_SPLITS = 4;

const Error xicPredictionMismatchError(InvalidInput, QStringLiteral("xic and prediction not equal"));

Eigen::VectorXf buildInputVector(const QList<QPointF> &points, const XicPeakSplitterOptions &options,
                                 const Eigen::MatrixXd &kernel)
{
    QList<QPointF> thinned = points;
    if (thinned.size() > options.maxPointCount)
        removeLowIntensePoints(thinned, thinningTarget(options.maxPointCount), true);
    const Error tooMany =
        ErrorUtils::belowThreshold<int>(static_cast<int>(thinned.size()), options.maxPointCount, Inclusive, Failure);
    if (tooMany.hasError()) {
        if (lcMl().isDebugEnabled())
            QMessageLogger(SOURCE_FILE, lines::SURPLUS_POINTS, Q_FUNC_INFO).debug(lcMl())
                << QStringLiteral("Points list exceeds Tensor max index limit");
        return {};
    }
    return buildXicInputVector(thinned, kernel, {options.maxPointCount, PADDING, options.smoothingPassCount});
}

/// Indices of the strict local maxima, the values continued by a 0 on both sides. Those zeros are reported too (-1 and
/// the count) where the value beside them is negative.
std::vector<int> findPeakIndices(const std::vector<float> &values)
{
    std::vector<float> padded = {0.0F};
    padded.insert(padded.end(), values.cbegin(), values.cend());
    padded.push_back(0.0F);
    const int last = static_cast<int>(padded.size()) - 1;
    std::vector<int> indices;
    for (int j = 0; j <= last; ++j) {
        const bool aboveLeft = j == 0 || padded[j] > padded[j - 1];
        const bool aboveRight = j == last || padded[j] > padded[j + 1];
        if (aboveLeft && aboveRight)
            indices.push_back(j - 1);
    }
    return indices;
}

/// The local maxima that reach the threshold at their places, 0 everywhere else.
Eigen::RowVectorXd peaksReaching(double threshold, const Eigen::VectorXf &prediction)
{
    Eigen::RowVectorXd peaks = Eigen::RowVectorXd::Zero(prediction.size());
    for (const int index : findPeakIndices({prediction.cbegin(), prediction.cend()})) {
        // The padding is no point of the chromatogram.
        if (index >= 0 && index < prediction.size() && !(threshold > prediction[index]))
            peaks[index] = prediction[index];
    }
    return peaks;
}

} // namespace

Result<QList<std::pair<double, double>>> processPrediction(const Eigen::VectorXf &prediction,
                                                           const XicPeakSplitterOptions &options,
                                                           const QList<QPointF> &points)
{
    QList<std::pair<double, double>> splits;
    if (points.isEmpty())
        return splits;
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<int>(static_cast<int>(points.size()), static_cast<int>(prediction.size()),
                                               xicPredictionMismatchError),
                        lines::EQUAL_LENGTHS);
    const double threshold = 1.0 - options.probabilityTolerance;
    splits.reserve(MOST_SPLITS);
    const QList<int> nearest = EigenUtilities::returnIndexNearestToCutoffF(peaksReaching(threshold, prediction),
                                                                           HIGHEST_PROBABILITY, MOST_SPLITS);
    for (const int index : nearest) {
        const double probability = prediction[index];
        if (!(threshold > probability))
            splits.append({points.at(index).x(), probability});
    }
    return splits;
}

Error XicPeakSplitter::Private::init(const XicPeakSplitterOptions &newOptions)
{
    options = newOptions;
    ZAV_RETURN_IF_ERROR(options.checkForParameterErrors(), lines::OPTIONS);
    ZAV_RETURN_IF_ERROR(model.init(options.modelFilePath.toStdString(), {}), lines::NETWORK);
    smoothingKernel = buildSmoothingKernel(options.gaussianFilterSize);
    initialised = true;
    return Error();
}

Result<QList<std::pair<double, double>>> XicPeakSplitter::Private::splitXIC(const QList<QPointF> &points)
{
    ZAV_RETURN_IF_ERROR(ErrorUtils::equal<bool>(initialised, true, Failure), lines::INITIALISED);
    QList<QPointF> thinned = points;
    if (thinned.size() < FEWEST_POINTS)
        return QList<std::pair<double, double>>();
    removeLowIntensePoints(thinned, options.maxPointCount, true);
    const Eigen::VectorXf input = buildInputVector(thinned, options, smoothingKernel);

    Tensor image;
    ZAV_RETURN_IF_ERROR(image.init(model.getGraph(), model.getStatus(), "import/img"), lines::GRAPH_INPUT);
    Tensor probabilities;
    ZAV_RETURN_IF_ERROR(probabilities.init(model.getGraph(), model.getStatus(), "import/conv2d_19/Sigmoid"),
                        lines::GRAPH_OUTPUT);
    ZAV_RETURN_IF_ERROR(image.setData<float>({input.cbegin(), input.cend()}), lines::FEED);
    ZAV_RETURN_IF_ERROR(model.run(image, probabilities), lines::RUN);
    std::vector<float> values;
    ZAV_RETURN_IF_ERROR(probabilities.getData<float>(&values), lines::READ);
    ZAV_RETURN_IF_ERROR(ErrorUtils::belowThreshold<int>(static_cast<int>(thinned.size()),
                                                        static_cast<int>(values.size()), Inclusive, Failure),
                        lines::OUTPUT_LENGTH);

    const Eigen::Map<const Eigen::VectorXf> prediction(values.data(), thinned.size());
    Result<QList<std::pair<double, double>>> splits = processPrediction(prediction, options, thinned);
    ZAV_RETURN_IF_ERROR(splits, lines::PREDICTION);
    return splits;
}

XicPeakSplitter::XicPeakSplitter() : d(std::make_unique<Private>()) {}

XicPeakSplitter::~XicPeakSplitter() = default;

Error XicPeakSplitter::init(const XicPeakSplitterOptions &options)
try {
    ZAV_RETURN_IF_ERROR(d->init(options), lines::PRIVATE_INIT);
    return Error();
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

Result<QList<std::pair<double, double>>> XicPeakSplitter::splitXIC(const QList<QPointF> &points)
try {
    return d->splitXIC(points);
} catch (const std::bad_alloc &) {
    return outOfMemory(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

} // namespace zav
