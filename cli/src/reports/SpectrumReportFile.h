// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ReportFile.h"

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <limits>
#include <optional>

namespace zav {

/// A predicted peak, and the measured one that it explains.
struct ReportedIon
{
    QString name;         ///< `y7+`; may be empty
    double mz = 0;        ///< predicted
    double intensity = 0; ///< relative
    std::optional<QPointF> observed;
};

/// One line of the report's table, with its picture: a measured spectrum and the prediction for a peptide.
struct ReportedSpectrum
{
    QString peptide;
    int charge = 0;                                                    ///< of the precursor; 0 where it is unknown
    double collisionEnergy = std::numeric_limits<double>::quiet_NaN(); ///< normalised; NaN: none was asked for
    QString scan;                                                      ///< as it was asked for
    QString title;                                                     ///< what the file calls it
    double precursorMz = 0;                                            ///< the peptide's; 0 where it is unknown
    double observedPrecursorMz = 0;                                    ///< the file's; 0 where it does not say
    QList<QByteArray> values; ///< of the columns, as text; empty where nothing was compared
    QList<QPointF> observed;  ///< (m/z, intensity), ascending m/z
    QList<ReportedIon> ions;
    QString problem; ///< why nothing was compared; mostly empty
};

/// A report of measured spectra with their predictions.
class SpectrumReportFile
{
public:
    /// `path` as `ReportFile` takes it; `run` is the file of the spectra as it is to be shown, `columns` are the names
    /// of the values. The page knows those of `comparisonColumns`.
    SpectrumReportFile(const QString &path, const QString &run, const QList<QByteArray> &columns);

    /// The error is one of writing.
    Error add(const ReportedSpectrum &spectrum);

    /// Completes the file; nothing may be added afterwards.
    Error finish() { return m_file.finish(); }

private:
    ReportFile m_file;
};

} // namespace zav
