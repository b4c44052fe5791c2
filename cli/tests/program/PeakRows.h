// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ProgramRun.h"
#include "SimulatedTraces.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zav {

/// The values of one line that `zav limits` writes.
struct PeakRow
{
    double start = 0;
    double end = 0;
    double apex = 0;
    double height = 0;
    double area = 0;
    double areaAboveLine = 0;
    int points = 0;
};

/// The rows of TSV output of one file.
inline QList<PeakRow> peakRowsOf(const std::string &output)
{
    QList<PeakRow> rows;
    for (const QString &line : linesOf(output).mid(1)) {
        const QStringList cells = line.split('\t').mid(1);
        EXPECT_EQ(cells.size(), 7) << line.toStdString();
        if (cells.size() == 7)
            rows.append({cells[0].toDouble(), cells[1].toDouble(), cells[2].toDouble(), cells[3].toDouble(),
                         cells[4].toDouble(), cells[5].toDouble(), cells[6].toInt()});
    }
    return rows;
}

/// Shared part of the found and the true interval over their union, the truth being 2.5 sigma to both sides.
inline double overlap(const PeakRow &row, const SimulatedPeak &peak)
{
    const double start = peak.apex - 2.5 * peak.sigma;
    const double end = peak.apex + 2.5 * peak.sigma;
    const double shared = std::min(row.end, end) - std::max(row.start, start);
    return shared / (std::max(row.end, end) - std::min(row.start, start));
}

} // namespace zav
