// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>
#include <zav/RetentionTimeCalibration.h>
#include <zav/RetentionTimePredictor.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// Peptides and when they eluted in a run.
struct ObservedTimes
{
    QList<ObservedRetentionTime> pairs; ///< in the order of the rows
    QStringList problems;               ///< "FILE:LINE: PEPTIDE: ..." for each row whose peptide cannot be read
};

/// Reads a table of observed retention times, plain or gzipped, standard input for "-". Columns are separated by tabs;
/// a heading names `peptide` (as `readPeptidoform` takes it) and `rt`, in any unit. More columns are ignored, as are
/// blank lines and comments (`#`).
///
/// `Failure`, which names the file, when it cannot be read to its end, lacks a column or has no number where a time
/// should stand.
Result<ObservedTimes> readObservedTimes(const QString &path);

/// A calibration, and what is to be said of it.
struct FittedTimes
{
    RetentionTimeCalibration calibration;
    QStringList remarks; ///< problems of the rows, what the network has not seen, and how well the calibration fits
};

/// Fits a calibration to what `readObservedTimes` read from `path`. The error names the file, and the first of the rows
/// that cannot be read.
Result<FittedTimes> fitTimes(const ObservedTimes &observed, const QString &path, RetentionTimePredictor *predictor);

} // namespace zav
