// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramTable.h"

#include "NumberText.h"
#include "PrintableText.h"

namespace zav {

namespace {

constexpr qsizetype MAX_LINE_BYTES = 1 << 20;

constexpr char TIME[] = "rt";
constexpr char INTENSITY[] = "intensity";
constexpr char ID[] = "id";

} // namespace

ChromatogramTable::ChromatogramTable(std::unique_ptr<ByteStream> bytes) : m_lines(std::move(bytes), MAX_LINE_BYTES) {}

Result<std::unique_ptr<ChromatogramSource>> ChromatogramTable::open(std::unique_ptr<ByteStream> bytes)
{
    auto table = std::make_unique<ChromatogramTable>(std::move(bytes));
    if (Error error = table->readHeading(); error.hasError())
        return error;
    return std::unique_ptr<ChromatogramSource>(std::move(table));
}

Error ChromatogramTable::readHeading()
{
    if (Error error = m_heading.read(&m_lines, {TIME, INTENSITY}, {ID}); error.hasError())
        return error;
    m_isAtRow = m_lines.nextContent();
    if (m_isAtRow || m_lines.error().hasError())
        return m_lines.error();
    return {Failure, m_lines.name() + QStringLiteral(": holds no chromatogram (a heading without rows)")};
}

Result<std::optional<TraceOutcome>> ChromatogramTable::next()
{
    if (m_error.hasError())
        return m_error;
    if (!m_isAtRow)
        return std::optional<TraceOutcome>();
    if (Error error = beginTrace(); error.hasError())
        return fail(error);
    TraceOutcome outcome;
    outcome.chromatogram.id = QString::fromUtf8(m_id);
    do {
        if (!outcome.problem.hasError())
            outcome.problem = readRow(&outcome.chromatogram.points);
        m_isAtRow = m_lines.nextContent();
    } while (m_isAtRow && belongsToTrace());
    if (m_lines.error().hasError())
        return fail(m_lines.error());
    return std::optional<TraceOutcome>(std::move(outcome));
}

Error ChromatogramTable::beginTrace()
{
    m_id = m_heading.has(ID) ? m_heading.cell(m_lines.line(), ID).toByteArray() : QByteArray("1");
    if (m_id.isEmpty())
        return m_lines.errorHere(QStringLiteral("the row has no id"));
    if (m_ids.contains(m_id))
        return m_lines.errorHere(QStringLiteral("the id '%1' comes back after rows of another one; the rows of an id "
                                                "have to follow each other")
                                     .arg(displayText(QString::fromUtf8(m_id))));
    m_ids.insert(m_id);
    return {};
}

bool ChromatogramTable::belongsToTrace() const
{
    return !m_heading.has(ID) || m_heading.cell(m_lines.line(), ID) == QByteArrayView(m_id);
}

Error ChromatogramTable::readRow(QList<QPointF> *points) const
{
    QPointF point;
    if (Error error = readNumber(TIME, &point.rx()); error.hasError())
        return error;
    if (Error error = readNumber(INTENSITY, &point.ry()); error.hasError())
        return error;
    points->append(point);
    return {};
}

Error ChromatogramTable::readNumber(const char *column, double *out) const
{
    const QByteArrayView cell = m_heading.cell(m_lines.line(), column);
    const std::optional<double> number = finiteNumber(cell);
    if (!number)
        return m_lines.errorHere(QStringLiteral("%1 '%2' is not a finite number")
                                     .arg(QLatin1String(column), displayText(QString::fromUtf8(cell))));
    *out = *number;
    return {};
}

Error ChromatogramTable::fail(const Error &error)
{
    m_error = error;
    return m_error;
}

} // namespace zav
