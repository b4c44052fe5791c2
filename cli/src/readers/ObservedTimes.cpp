// SPDX-License-Identifier: Apache-2.0
#include "ObservedTimes.h"

#include "LineReader.h"
#include "Messages.h"
#include "PeptidoformText.h"
#include "PrintableText.h"
#include "TableHeading.h"

namespace zav {

namespace {

// Other columns may be long, such as a list of proteins.
constexpr qsizetype MAX_LINE_BYTES = 1 << 24;

constexpr char PEPTIDE[] = "peptide";
constexpr char TIME[] = "rt";

} // namespace

Result<ObservedTimes> readObservedTimes(const QString &path)
{
    const Result<std::unique_ptr<LineReader>> opened = LineReader::open(path, MAX_LINE_BYTES);
    if (opened.hasError())
        return opened.error();
    LineReader &lines = *opened.value();
    TableHeading heading;
    if (Error error = heading.read(&lines, {PEPTIDE, TIME}, {}); error.hasError())
        return error;
    ObservedTimes observed;
    while (lines.nextContent()) {
        ObservedRetentionTime pair;
        if (Error error = heading.readNumber(lines, TIME, &pair.time); error.hasError())
            return error;
        const QString text = heading.text(lines.line(), PEPTIDE);
        const Result<Peptidoform> peptidoform = readPeptidoform(text);
        if (peptidoform.hasError()) {
            observed.problems.append(QStringLiteral("%1:%2: %3: %4")
                                         .arg(inputName(path), QString::number(lines.number()), displayText(text),
                                              peptidoform.error().message()));
            continue;
        }
        pair.peptidoform = peptidoform.value();
        observed.pairs.append(pair);
    }
    if (lines.error().hasError())
        return lines.error();
    return observed;
}

Result<FittedTimes> fitTimes(const ObservedTimes &observed, const QString &path, RetentionTimePredictor *predictor)
{
    const Result<RetentionTimeCalibration> fitted = RetentionTimeCalibration::fit(predictor, observed.pairs);
    throwIfOutOfMemory(fitted.error());
    if (fitted.hasError()) {
        // The library fails without a message where the network does not run.
        QString reason =
            fitted.error().message().isEmpty() ? QStringLiteral("the network fails") : fitted.error().message();
        if (!observed.problems.isEmpty())
            reason += QStringLiteral("; rows that cannot be read: %1, the first is %2")
                          .arg(QString::number(observed.problems.size()), observed.problems.first());
        return explainedError(fitted.error(),
                              QStringLiteral("cannot calibrate with %1: %2").arg(inputName(path), reason));
    }
    const RetentionTimeCalibration &calibration = fitted.value();
    QStringList remarks = observed.problems;
    for (const QString &warning : fitted.warnings())
        remarks.append(displayText(warning, 200));
    remarks.append(QStringLiteral("calibrated with %1 pairs, %2 of them outliers; 95 % of the others lie within ±%3 of "
                                  "their prediction")
                       .arg(QString::number(calibration.pairCount()), QString::number(calibration.outlierCount()),
                            QString::number(calibration.width95() / 2, 'g', 3)));
    return FittedTimes{calibration, remarks};
}

} // namespace zav
