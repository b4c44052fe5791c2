// SPDX-License-Identifier: Apache-2.0
#include "ChromatogramJsonLines.h"

#include "Precursor.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace zav {

namespace {

using nlohmann::json;

constexpr qsizetype MAX_LINE_BYTES = 1 << 30;

constexpr char TIME[] = "rt";
constexpr char INTENSITY[] = "intensity";

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
    if (const QString problem = readValues(object, TIME, &times); !problem.isEmpty())
        return problem;
    if (const QString problem = readValues(object, INTENSITY, &intensities); !problem.isEmpty())
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

} // namespace

ChromatogramJsonLines::ChromatogramJsonLines(std::unique_ptr<ByteStream> bytes)
    : m_lines(std::move(bytes), MAX_LINE_BYTES)
{}

Result<std::optional<TraceOutcome>> ChromatogramJsonLines::next()
{
    if (m_error.hasError())
        return m_error;
    if (!m_lines.nextContent()) {
        m_error = m_lines.error();
        if (!m_error.hasError() && m_order == 0)
            m_error = Error(Failure, m_lines.name() + QStringLiteral(": holds no chromatogram"));
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

} // namespace zav
