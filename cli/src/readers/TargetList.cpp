// SPDX-License-Identifier: Apache-2.0
#include "TargetList.h"

#include "LineReader.h"
#include "PrintableText.h"
#include "TableHeading.h"

#include <QtCore/QHash>
#include <QtCore/QSet>

namespace zav {

namespace {

constexpr qsizetype MAX_LINE_BYTES = 1 << 16;

constexpr char MZ[] = "mz";
constexpr char ID[] = "id";
constexpr char PPM[] = "ppm";
constexpr char TIME_FROM[] = "rt_from";
constexpr char TIME_TO[] = "rt_to";
constexpr char GROUP[] = "group";

class TargetReader
{
public:
    TargetReader(std::unique_ptr<ByteStream> bytes, double defaultPpm)
        : m_lines(std::move(bytes), MAX_LINE_BYTES), m_defaultPpm(defaultPpm)
    {}

    Result<QList<ExtractionTarget>> read(bool readsGroups)
    {
        if (Error error = readHeading(readsGroups); error.hasError())
            return error;
        QList<ExtractionTarget> targets;
        while (m_lines.nextContent()) {
            ExtractionTarget target;
            target.ppm = m_defaultPpm;
            if (Error error = readRow(&target); error.hasError())
                return error;
            targets.append(target);
        }
        if (m_lines.error().hasError())
            return m_lines.error();
        if (targets.isEmpty())
            return cannotRead(m_lines.name(), QStringLiteral("it holds no target (a heading without rows)"));
        return targets;
    }

private:
    Error readHeading(bool readsGroups)
    {
        return readsGroups ? m_heading.read(&m_lines, {MZ}, {ID, PPM, TIME_FROM, TIME_TO, GROUP})
                           : m_heading.read(&m_lines, {MZ}, {ID, PPM, TIME_FROM, TIME_TO});
    }

    Error readRow(ExtractionTarget *target)
    {
        if (cell(MZ).isEmpty())
            return m_lines.errorHere(QStringLiteral("the row has no mz"));
        for (const auto &[column, out] : {std::pair(MZ, &target->mz), std::pair(PPM, &target->ppm),
                                          std::pair(TIME_FROM, &target->rtFrom), std::pair(TIME_TO, &target->rtTo)}) {
            if (Error error = readNumber(column, out); error.hasError())
                return error;
        }
        if (!(target->mz > 0) || !(target->ppm > 0))
            return m_lines.errorHere(QStringLiteral("mz and ppm have to be above 0"));
        if (target->rtFrom > target->rtTo)
            return m_lines.errorHere(QStringLiteral("rt_from is above rt_to"));
        target->group = m_heading.text(m_lines.line(), GROUP);
        return readId(&target->id);
    }

    // An empty cell leaves `out` as it is.
    Error readNumber(const char *column, double *out) const
    {
        if (cell(column).isEmpty())
            return {};
        return m_heading.readNumber(m_lines, column, out);
    }

    Error readId(QString *id)
    {
        const QString given = QString::fromUtf8(cell(ID));
        *id = given.isEmpty() ? freeIdOfMz() : given;
        if (m_ids.contains(*id))
            return m_lines.errorHere(QStringLiteral("the id '%1' appears twice").arg(displayText(*id)));
        m_ids.insert(*id);
        return {};
    }

    // Targets of one m/z differ in their range of time, but not in this name.
    QString freeIdOfMz()
    {
        const QString mz = QString::fromUtf8(cell(MZ));
        QString id = mz;
        for (int &number = m_numbers[mz]; m_ids.contains(id); ++number)
            id = QStringLiteral("%1#%2").arg(mz, QString::number(number + 2));
        return id;
    }

    QByteArrayView cell(const char *column) const { return m_heading.cell(m_lines.line(), column); }

    LineReader m_lines;
    double m_defaultPpm;
    TableHeading m_heading;
    QSet<QString> m_ids;
    QHash<QString, int> m_numbers; // how many ids of an m/z are known to be taken
};

} // namespace

Result<QList<ExtractionTarget>> readTargetList(const QString &path, double defaultPpm, bool readsGroups)
{
    Result<std::unique_ptr<ByteStream>> opened = ByteStream::open(path);
    if (opened.hasError())
        return opened.error();
    std::unique_ptr<ByteStream> bytes = std::move(opened).value();
    if (bytes->peek().isEmpty())
        return cannotRead(bytes->name(), QStringLiteral("it is empty"));
    return TargetReader(std::move(bytes), defaultPpm).read(readsGroups);
}

} // namespace zav
