// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramText.h"

#include "LineReader.h"
#include "PrintableText.h"
#include "TableHeading.h"

#include <QtCore/QSet>

#include <nlohmann/json.hpp>

#include <cmath>

namespace zav {

namespace {

using nlohmann::json;

constexpr qsizetype MAX_ROW_BYTES = 1 << 20;
constexpr qsizetype MAX_JSON_LINE_BYTES = 1 << 30; // a whole chromatogram

constexpr char TIME[] = "rt";
constexpr char INTENSITY[] = "intensity";
constexpr char ID[] = "id";

class ChromatogramTable : public ChromatogramSource
{
public:
    explicit ChromatogramTable(std::unique_ptr<ByteStream> bytes) : m_lines(std::move(bytes), MAX_ROW_BYTES) {}

    Error readHeading();

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;

private:
    Error beginTrace();
    bool belongsToTrace() const;
    Error readRow(QList<QPointF> *points) const;
    Error fail(const Error &error);

    LineReader m_lines;
    TableHeading m_heading;
    bool m_isAtRow = false; // the line of `m_lines` is a row that no trace has taken
    QByteArray m_id;        // of the trace that is being read
    QSet<QByteArray> m_ids;
    Error m_error;
};

Error ChromatogramTable::readHeading()
{
    if (Error error = m_heading.read(&m_lines, {TIME, INTENSITY}, {ID}); error.hasError())
        return error;
    m_isAtRow = m_lines.nextContent();
    if (m_isAtRow || m_lines.error().hasError())
        return m_lines.error();
    return cannotRead(m_lines.name(), QStringLiteral("it holds no chromatogram (a heading without rows)"));
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
        return m_lines.errorHere(
            QStringLiteral("the rows of id '%1' are not together").arg(displayText(QString::fromUtf8(m_id))));
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
    if (Error error = m_heading.readNumber(m_lines, TIME, &point.rx()); error.hasError())
        return error;
    if (Error error = m_heading.readNumber(m_lines, INTENSITY, &point.ry()); error.hasError())
        return error;
    points->append(point);
    return {};
}

Error ChromatogramTable::fail(const Error &error)
{
    m_error = error;
    return m_error;
}

class ChromatogramJsonLines : public ChromatogramSource
{
public:
    explicit ChromatogramJsonLines(std::unique_ptr<ByteStream> bytes) : m_lines(std::move(bytes), MAX_JSON_LINE_BYTES)
    {}

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;

private:
    LineReader m_lines;
    qint64 m_order = 0; // of the trace, from 1
    Error m_error;
};

QString idOf(const json &object, const QString &otherwise)
{
    const auto id = object.find("id");
    if (id == object.end())
        return otherwise;
    if (id->is_number())
        return QString::fromStdString(id->dump());
    const QString text = id->is_string() ? QString::fromStdString(id->get_ref<const std::string &>()) : QString();
    return text.isEmpty() ? otherwise : text;
}

// The readers below return why they failed, an empty text when all went well.

QString readValues(const json &object, const char *key, QList<double> *out)
{
    const QLatin1String shown(key);
    const auto list = object.find(key);
    if (list == object.end())
        return QStringLiteral("has no '%1'").arg(shown);
    if (!list->is_array())
        return QStringLiteral("'%1' is not a list").arg(shown);
    out->reserve(static_cast<qsizetype>(list->size()));
    for (const json &value : *list) {
        out->append(value.is_number() ? value.get<double>() : NAN);
        if (!std::isfinite(out->constLast()))
            return QStringLiteral("'%1', value %2, is not a finite number").arg(shown, QString::number(out->size()));
    }
    return {};
}

QString readPoints(const json &object, QList<QPointF> *out)
{
    QList<double> times;
    QList<double> intensities;
    if (QString problem = readValues(object, TIME, &times); !problem.isEmpty())
        return problem;
    if (QString problem = readValues(object, INTENSITY, &intensities); !problem.isEmpty())
        return problem;
    if (times.size() != intensities.size())
        return QStringLiteral("'rt' has %1 values and 'intensity' %2")
            .arg(QString::number(times.size()), QString::number(intensities.size()));
    out->reserve(times.size());
    for (qsizetype i = 0; i < times.size(); ++i)
        out->append({times[i], intensities[i]});
    return {};
}

QString readTimeUnit(const json &object, QString *out)
{
    const auto unit = object.find("rt_unit");
    if (unit == object.end() || unit->is_null())
        return {};
    *out = unit->is_string() ? QString::fromStdString(unit->get_ref<const std::string &>()) : QString();
    if (*out == QLatin1String("min") || *out == QLatin1String("s"))
        return {};
    return QStringLiteral("'rt_unit' is neither \"min\" nor \"s\"");
}

QString readChromatogram(const json &object, Chromatogram *out)
{
    const QString problem = readPoints(object, &out->points);
    return problem.isEmpty() ? readTimeUnit(object, &out->timeUnit) : problem;
}

Result<std::optional<TraceOutcome>> ChromatogramJsonLines::next()
{
    if (m_error.hasError())
        return m_error;
    if (!m_lines.nextContent()) {
        m_error = m_lines.error();
        if (!m_error.hasError() && m_order == 0)
            m_error = cannotRead(m_lines.name(), QStringLiteral("it holds no chromatogram"));
        return m_error.hasError() ? Result<std::optional<TraceOutcome>>(m_error) : std::optional<TraceOutcome>();
    }
    const json object = json::parse(m_lines.line().begin(), m_lines.line().end(), nullptr, false);
    if (!object.is_object() && m_order == 0) {
        m_error = m_lines.errorHere(QStringLiteral("expected a JSON object on the line"));
        return m_error;
    }
    TraceOutcome outcome;
    outcome.chromatogram.id = idOf(object, QString::number(++m_order));
    const QString problem = object.is_object() ? readChromatogram(object, &outcome.chromatogram)
                                               : QStringLiteral("expected a JSON object on the line");
    if (!problem.isEmpty())
        outcome.problem = m_lines.errorHere(problem);
    return std::optional<TraceOutcome>(std::move(outcome));
}

} // namespace

Result<std::unique_ptr<ChromatogramSource>> openChromatogramTable(std::unique_ptr<ByteStream> bytes)
{
    auto table = std::make_unique<ChromatogramTable>(std::move(bytes));
    if (Error error = table->readHeading(); error.hasError())
        return error;
    return std::unique_ptr<ChromatogramSource>(std::move(table));
}

std::unique_ptr<ChromatogramSource> openChromatogramJsonLines(std::unique_ptr<ByteStream> bytes)
{
    return std::make_unique<ChromatogramJsonLines>(std::move(bytes));
}

} // namespace zav
