// SPDX-License-Identifier: Apache-2.0
#include "TraceWriter.h"

#include "PrintableText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace zav {

namespace {

using Json = nlohmann::ordered_json;

constexpr int NUMBER_WIDTH = 12; // of a column for people
constexpr int ID_LENGTH = 120;   // likewise

/// Null where the file does not say.
Json known(const QString &text)
{
    return text.isEmpty() ? Json() : Json(text.toStdString());
}

/// In a group, a measure that the trace does not have.
bool isMissing(const TraceTable &table, double value)
{
    return table.isGrouped && std::isnan(value);
}

class TraceJsonWriter : public TraceWriter
{
public:
    TraceJsonWriter(const TraceTable &table, bool namesFile) : m_table(table), m_namesFile(namesFile) {}

    Result<QByteArray> text(const Trace &trace) override
    {
        const Chromatogram &chromatogram = trace.chromatogram;
        Json object;
        if (m_namesFile)
            object["file"] = trace.file.toStdString();
        object["id"] = chromatogram.id.toStdString();
        if (m_table.isGrouped) {
            object["group"] = trace.group.toStdString();
            object["members"] = trace.members;
        }
        object["time_unit"] = known(chromatogram.timeUnit);
        object["intensity_unit"] = known(chromatogram.intensityUnit);
        object["points"] = chromatogram.points.size();
        Json rows = Json::array();
        for (const QList<double> &values : m_table.rows(trace.findings))
            rows.push_back(rowObject(values));
        object[m_table.rowsName] = std::move(rows);
        const char *before =
            std::exchange(m_isEmpty, false) ? "{\"generator\": \"zav " ZAV_VERSION "\", \"traces\": [\n" : ",\n";
        return before + QByteArray::fromStdString(object.dump());
    }

    QByteArray closing() const override { return m_isEmpty ? QByteArray() : QByteArray("\n]}\n"); }

private:
    Json rowObject(const QList<double> &values) const
    {
        Json row;
        for (int i = 0; i < values.size(); ++i) {
            const TraceColumn &column = m_table.columns[i];
            if (isMissing(m_table, values[i]))
                row[column.name] = nullptr;
            else if (column.kind == TraceColumn::Count)
                row[column.name] = static_cast<qint64>(values[i]);
            else
                row[column.name] = valueText(column, values[i]).toDouble();
        }
        return row;
    }

    const TraceTable &m_table;
    bool m_namesFile = false;
    bool m_isEmpty = true;
};

QString unitName(const QString &timeUnit)
{
    return timeUnit.isEmpty() ? QStringLiteral("an unknown unit") : timeUnit;
}

/// A format of a header line and one line a row.
class TraceRowWriter : public TraceWriter
{
public:
    explicit TraceRowWriter(const TraceTable &table) : m_table(table) {}

    Result<QByteArray> text(const Trace &trace) final
    {
        const QString &timeUnit = trace.chromatogram.timeUnit;
        const bool isFirst = !m_timeUnit;
        if (isFirst)
            m_timeUnit = timeUnit;
        const std::optional<double> factor = timeFactor(timeUnit, *m_timeUnit);
        if (!factor)
            return Error(InvalidInput, QStringLiteral("times are in %1, but the header says %2")
                                           .arg(unitName(timeUnit), unitName(*m_timeUnit)));
        QByteArray text = isFirst ? header(*m_timeUnit) : QByteArray();
        if (m_table.isGrouped)
            text += groupHeading(trace);
        for (const QList<double> &values : scaled(m_table.rows(trace.findings), m_table, *factor))
            text += line(trace, values);
        return text;
    }

protected:
    const TraceTable &table() const { return m_table; }

private:
    virtual QByteArray header(const QString &timeUnit) const = 0;
    virtual QByteArray line(const Trace &trace, const QList<double> &values) const = 0;
    virtual QByteArray groupHeading(const Trace & /*trace*/) { return {}; }

    const TraceTable &m_table;
    std::optional<QString> m_timeUnit; ///< set by the first trace
};

/// Without the tabs and line ends that would break a row.
QByteArray cell(const QString &text)
{
    return displayText(text, std::numeric_limits<int>::max()).toUtf8();
}

class TraceTsvWriter : public TraceRowWriter
{
public:
    TraceTsvWriter(const TraceTable &table, bool namesFile) : TraceRowWriter(table), m_namesFile(namesFile) {}

private:
    QByteArray header(const QString &timeUnit) const override
    {
        QByteArray text = m_namesFile ? "file\tid" : "id";
        if (table().isGrouped)
            text += "\tgroup\tmembers";
        for (const TraceColumn &column : table().columns)
            text += '\t' + columnTitle(column, timeUnit);
        return text + '\n';
    }

    QByteArray line(const Trace &trace, const QList<double> &values) const override
    {
        QByteArray text = (m_namesFile ? cell(trace.file) + '\t' : QByteArray()) + cell(trace.chromatogram.id);
        if (table().isGrouped)
            text += '\t' + cell(trace.group) + '\t' + QByteArray::number(trace.members);
        for (int i = 0; i < values.size(); ++i) {
            text += '\t';
            if (!isMissing(table(), values[i]))
                text += valueText(table().columns[i], values[i]);
        }
        return text + '\n';
    }

    bool m_namesFile = false;
};

QByteArray shortText(const TraceColumn &column, double value)
{
    const bool isAmount = column.kind == TraceColumn::Intensity || column.kind == TraceColumn::Area;
    return isAmount ? QByteArray::number(value, 'g', 5) : valueText(column, value);
}

class TraceTableWriter : public TraceRowWriter
{
public:
    TraceTableWriter(const TraceTable &table, int fileWidth) : TraceRowWriter(table), m_fileWidth(fileWidth) {}

private:
    QByteArray header(const QString &timeUnit) const override
    {
        QList<QByteArray> titles;
        for (const TraceColumn &column : table().columns)
            titles.append(columnTitle(column, timeUnit));
        return fullLine(titles, QStringLiteral("file"), QStringLiteral("id"));
    }

    QByteArray line(const Trace &trace, const QList<double> &values) const override
    {
        QList<QByteArray> numbers;
        for (int i = 0; i < values.size(); ++i)
            numbers.append(isMissing(table(), values[i]) ? "-" : shortText(table().columns[i], values[i]));
        return fullLine(numbers, trace.file, displayText(trace.chromatogram.id, ID_LENGTH));
    }

    /// Only above rows; the first member has as many as the others.
    QByteArray groupHeading(const Trace &trace) override
    {
        const std::pair<QString, QString> group(trace.file, trace.group);
        if (group == m_group || table().rows(trace.findings).isEmpty())
            return {};
        m_group = group;
        return "\ngroup " + displayText(trace.group, ID_LENGTH).toUtf8() + ", " + QByteArray::number(trace.members) +
               (trace.members == 1 ? " member\n" : " members\n");
    }

    QByteArray fullLine(const QList<QByteArray> &numbers, const QString &file, const QString &id) const
    {
        QByteArray text;
        for (int i = 0; i < numbers.size(); ++i) {
            const qsizetype titleWidth = QByteArray(table().columns[i].name).size() + 2;
            text += numbers[i].rightJustified(std::max<qsizetype>(NUMBER_WIDTH, titleWidth));
        }
        if (m_fileWidth > 0)
            text += QByteArray("  ") + file.leftJustified(m_fileWidth).toUtf8();
        return text + "  " + id.toUtf8() + '\n';
    }

    int m_fileWidth = 0;                 ///< characters; 0: no such column
    std::pair<QString, QString> m_group; ///< file and name of the last
};

} // namespace

std::unique_ptr<TraceWriter> makeTraceWriter(TraceFormat format, const TraceTable &table, int fileWidth)
{
    switch (format) {
    case TraceFormat::Json:
        return std::make_unique<TraceJsonWriter>(table, fileWidth > 0);
    case TraceFormat::Tsv:
        return std::make_unique<TraceTsvWriter>(table, fileWidth > 0);
    case TraceFormat::Table:
        break;
    }
    return std::make_unique<TraceTableWriter>(table, fileWidth);
}

TraceOutput::TraceOutput(const QString &path, std::unique_ptr<TraceWriter> writer)
    : m_writer(std::move(writer)), m_file(path)
{}

Error TraceOutput::write(const QByteArray &text)
{
    if (!m_isOpen) {
        if (Error error = m_file.open(); error.hasError())
            return error;
        m_isOpen = true;
    }
    return m_file.write(text);
}

Error TraceOutput::finish()
{
    if (!m_isOpen)
        return {};
    if (Error error = m_file.write(m_writer->closing()); error.hasError())
        return error;
    return m_file.commit();
}

} // namespace zav
