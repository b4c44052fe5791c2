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
constexpr qsizetype MAX_JSON_LINE_BYTES = 1 << 24; // a whole chromatogram: a million points
constexpr qsizetype MOST_POINTS = 1 << 24;         // of a trace: the longest input that a network can have

constexpr char TIME[] = "rt";
constexpr char INTENSITY[] = "intensity";
constexpr char ID[] = "id";
constexpr char GROUP[] = "group";

class ChromatogramTable : public ChromatogramSource
{
public:
    ChromatogramTable(std::unique_ptr<ByteStream> bytes, bool readsGroups)
        : m_lines(std::move(bytes), MAX_ROW_BYTES), m_readsGroups(readsGroups)
    {}

    Error readHeading();

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;
    Error seek(const TracePlace &place) override;

private:
    bool moveToRow();
    Error beginTrace();
    bool belongsToTrace() const;
    Error readRow(Chromatogram *out) const;
    Error fail(const Error &error);

    LineReader m_lines;
    bool m_readsGroups;
    TableHeading m_heading;
    bool m_isAtRow = false; // the line of `m_lines` is a row that no trace has taken
    LineReader::Place m_rowPlace;
    QByteArray m_id; // of the trace that is being read
    QSet<QByteArray> m_ids;
    Error m_error;
};

Error ChromatogramTable::readHeading()
{
    Error error = m_readsGroups ? m_heading.read(&m_lines, {TIME, INTENSITY}, {ID, GROUP})
                                : m_heading.read(&m_lines, {TIME, INTENSITY}, {ID});
    if (error.hasError())
        return error;
    if (moveToRow() || m_lines.error().hasError())
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
    outcome.chromatogram.origin.group = m_heading.text(m_lines.line(), GROUP);
    outcome.place = {m_rowPlace.offset, m_rowPlace.number, 0};
    do {
        if (!outcome.problem.hasError())
            outcome.problem = readRow(&outcome.chromatogram);
    } while (moveToRow() && belongsToTrace());
    if (m_lines.error().hasError())
        return fail(m_lines.error());
    return std::optional<TraceOutcome>(std::move(outcome));
}

Error ChromatogramTable::seek(const TracePlace &place)
{
    m_ids.clear(); // they were checked on the way to this place
    m_error = m_lines.seek({place.offset, place.line});
    if (!m_error.hasError() && !moveToRow())
        m_error = m_lines.error();
    return m_error;
}

bool ChromatogramTable::moveToRow()
{
    m_rowPlace = m_lines.place();
    m_isAtRow = m_lines.nextContent();
    return m_isAtRow;
}

Error ChromatogramTable::beginTrace()
{
    m_id = m_heading.has(ID) ? m_heading.cell(m_lines.line(), ID).toByteArray() : QByteArray("1");
    const QString id = QString::fromUtf8(m_id);
    if (id.isEmpty()) // also where the cell is a byte order mark only, which is no text
        return m_lines.errorHere(QStringLiteral("the row has no id"));
    if (m_ids.contains(m_id))
        return m_lines.errorHere(QStringLiteral("the rows of id '%1' are not together").arg(displayText(id)));
    m_ids.insert(m_id);
    return {};
}

bool ChromatogramTable::belongsToTrace() const
{
    return !m_heading.has(ID) || m_heading.cell(m_lines.line(), ID) == QByteArrayView(m_id);
}

Error ChromatogramTable::readRow(Chromatogram *out) const
{
    QPointF point;
    if (Error error = m_heading.readNumber(m_lines, TIME, &point.rx()); error.hasError())
        return error;
    if (Error error = m_heading.readNumber(m_lines, INTENSITY, &point.ry()); error.hasError())
        return error;
    if (out->points.size() == MOST_POINTS)
        return m_lines.errorHere(QStringLiteral("the trace has more than %1 points").arg(MOST_POINTS));
    out->points.append(point);
    if (m_readsGroups && m_heading.text(m_lines.line(), GROUP) != out->origin.group)
        return m_lines.errorHere(QStringLiteral("the row names another group than the first of its trace"));
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
    ChromatogramJsonLines(std::unique_ptr<ByteStream> bytes, bool readsGroups)
        : m_lines(std::move(bytes), MAX_JSON_LINE_BYTES), m_readsGroups(readsGroups)
    {}

    qint64 count() const override { return -1; }
    Result<std::optional<TraceOutcome>> next() override;
    Error seek(const TracePlace &place) override;

private:
    LineReader m_lines;
    bool m_readsGroups;
    qint64 m_order = 0; // of the trace, from 1
    Error m_error;
};

/// A text or a number; empty for anything else.
QString nameIn(const json &object, const char *key)
{
    const auto name = object.find(key);
    if (name == object.end())
        return {};
    if (name->is_number())
        return QString::fromStdString(name->dump());
    return name->is_string() ? QString::fromStdString(name->get_ref<const std::string &>()) : QString();
}

QString idOf(const json &object, const QString &otherwise)
{
    const QString id = nameIn(object, ID);
    return id.isEmpty() ? otherwise : id;
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
    const LineReader::Place place = m_lines.place();
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
    outcome.place = {place.offset, place.number, m_order};
    outcome.chromatogram.id = idOf(object, QString::number(++m_order));
    if (m_readsGroups && object.is_object())
        outcome.chromatogram.origin.group = nameIn(object, GROUP);
    const QString problem = object.is_object() ? readChromatogram(object, &outcome.chromatogram)
                                               : QStringLiteral("expected a JSON object on the line");
    if (!problem.isEmpty())
        outcome.problem = m_lines.errorHere(problem);
    return std::optional<TraceOutcome>(std::move(outcome));
}

Error ChromatogramJsonLines::seek(const TracePlace &place)
{
    m_order = place.order;
    m_error = m_lines.seek({place.offset, place.line});
    return m_error;
}

} // namespace

Result<std::unique_ptr<ChromatogramSource>> openChromatogramTable(std::unique_ptr<ByteStream> bytes, bool readsGroups)
{
    auto table = std::make_unique<ChromatogramTable>(std::move(bytes), readsGroups);
    if (Error error = table->readHeading(); error.hasError())
        return error;
    return std::unique_ptr<ChromatogramSource>(std::move(table));
}

std::unique_ptr<ChromatogramSource> openChromatogramJsonLines(std::unique_ptr<ByteStream> bytes, bool readsGroups)
{
    return std::make_unique<ChromatogramJsonLines>(std::move(bytes), readsGroups);
}

} // namespace zav
