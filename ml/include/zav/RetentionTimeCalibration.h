// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>
#include <zav/Peptidoform.h>
#include <zav/Result.h>

#include <QtCore/QList>

#include <memory>

namespace zav {

class RetentionTimePredictor;

/// When a peptidoform eluted in a run.
struct ObservedRetentionTime
{
    Peptidoform peptidoform;
    double time = 0.0; ///< in any unit: that of the calibrated times
};

/// Turns predictions into the times of one chromatography, from peptidoforms whose times there are known.
///
/// Two steps. Columns and solvents differ in which peptides they hold back, so first the outputs of the network, as
/// `RetentionTimePredictor::predictHeads` gives them, are mixed: a straight line of their mean and, pulled towards it
/// by ridge regression (Hoerl and Kennard, Technometrics 12, 55, 1970), of each by itself. How hard it pulls is chosen
/// by cross-validation. The mixture, here called the index, is on about the iRT scale. Then a curve of straight pieces
/// that never falls turns the index into a time: one piece for up to 31 pairs, one more for each 16 pairs up to twelve;
/// beyond its ends it goes on straight.
///
/// Wrong times among the pairs, up to one in five, change little: both steps start from the median of the slopes
/// between pairs (Theil 1950, Sen 1968) and then weigh each pair by its distance from the fit (Huber, and Beaton and
/// Tukey's biweight). The result does not depend on the order of the pairs, and follows their unit and their zero.
///
/// A value: copies share their data, and any number of threads may read one object.
class ZAV_ML_EXPORT RetentionTimeCalibration
{
public:
    static constexpr int FEWEST_PAIRS = 10; ///< that a calibration needs

    /// Fits a calibration with one prediction of the pairs' peptidoforms. Some 200 pairs that span the gradient are
    /// worth having; a second for thousands of them.
    ///
    /// Pairs that cannot be predicted are left out; the warnings of the prediction are on the returned `Result`.
    ///
    /// `InvalidInput`: fewer than 10 pairs, or fewer that can be predicted; a time that is not finite; all times equal,
    /// or so far apart that their distance is not finite; times that do not rise with the prediction; a null predictor.
    /// `Failure`: the prediction failed.
    static Result<RetentionTimeCalibration> fit(RetentionTimePredictor *predictor,
                                                const QList<ObservedRetentionTime> &pairs);

    /// The time of each peptidoform, in their order and in the unit of the pairs. `predictor` has the network that
    /// `fit` used. Otherwise as `RetentionTimePredictor::predict`; `InvalidInput` also for a null predictor and for a
    /// network with another number of outputs.
    Error predict(RetentionTimePredictor *predictor, const QList<Peptidoform> &peptidoforms,
                  QList<double> *times) const;

    /// The index of each row that `RetentionTimePredictor::predictHeads` gave, NaN for an empty one: with `timeAt` what
    /// `predict` does, for those who want the iRT of the same network run too. `InvalidInput`: a row of another number
    /// of outputs.
    Result<QList<double>> indicesOf(const QList<QList<double>> &heads) const;

    /// The curve: the time of an index.
    double timeAt(double index) const;

    /// Width of the window, centred on the predicted time, that holds 95 % of the pairs (delta-t95), each predicted by
    /// a calibration that has not seen it; in the unit of the pairs. Outliers are left out.
    double width95() const;

    int pairCount() const;    ///< that were used
    int outlierCount() const; ///< of these: further from their prediction than six robust standard deviations

private:
    class Private;
    explicit RetentionTimeCalibration(std::shared_ptr<const Private> fitted);

    std::shared_ptr<const Private> d;
};

} // namespace zav
