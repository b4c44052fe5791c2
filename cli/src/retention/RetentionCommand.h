// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "ModelFolder.h"
#include "ObservedTimes.h"
#include "RetentionTable.h"

#include <zav/RetentionTimeCalibration.h>
#include <zav/RetentionTimePredictor.h>

#include <QtCore/QSet>
#include <QtCore/QString>

#include <optional>

namespace zav {

/// What `zav retention` was asked for.
struct RetentionOptions
{
    QString peptideList; ///< path, "-" for standard input
    NetworkChoice networks;
    QString outputPath;   ///< empty: standard output
    QString observedPath; ///< observed times to calibrate with; empty: none
    QString picturePath;  ///< of the calibration; empty: none
    bool verbose = false;

    bool drawsPictures() const { return !picturePath.isEmpty(); }
};

/// `zav retention`: predicts the retention times of a list of peptides, and calibrates them to those of a run.
class RetentionCommand : public Command
{
public:
    explicit RetentionCommand(const RetentionOptions &options);

private:
    Error work() override;
    Error openList();
    Error loadNetwork();
    Error calibrate();
    Error drawCalibration();
    Error predictAll();
    Error predictBlock(const QList<RetentionRow> &rows);
    void addRow(const RetentionRow &row, const QList<double> &heads, double index);
    void reportFailure(const RetentionRow &row, const Error &error, const QString &subject);
    void noteOnce(const QList<QString> &remarks);

    RetentionOptions m_options;
    PeptidoformList m_list;
    RetentionTable m_table;
    RetentionTimePredictor m_predictor;
    ObservedTimes m_observed;
    std::optional<RetentionTimeCalibration> m_calibration;
    QSet<QString> m_noted;
    qint64 m_count = 0; ///< of the rows so far
    qint64 m_failed = 0;
};

} // namespace zav
