// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "LineStream.h"
#include "TableHeading.h"

#include <QtCore/QByteArray>
#include <QtCore/QSet>

namespace zav {

/// The chromatograms of a tab-separated table, as `openChromatograms` describes it. Keeps one chromatogram and the ids
/// of those before, by which it knows an id that comes back.
class ChromatogramTable : public ChromatogramSource
{
public:
    static Result<std::unique_ptr<ChromatogramSource>> open(std::unique_ptr<ByteStream> bytes);

    explicit ChromatogramTable(std::unique_ptr<ByteStream> bytes);

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;

private:
    Error readHeading();
    Error beginTrace();
    bool belongsToTrace() const;
    Error readRow(QList<QPointF> *points) const;
    Error readNumber(const char *column, double *out) const;
    Error fail(const Error &error);

    LineStream m_lines;
    TableHeading m_heading;
    bool m_isAtRow = false; // the line of `m_lines` is a row that no trace has taken
    QByteArray m_id;        // of the trace that is being read
    QSet<QByteArray> m_ids;
    Error m_error;
};

} // namespace zav
