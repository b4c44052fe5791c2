// SPDX-License-Identifier: Apache-2.0
#include "LibraryShard.h"

#include "PrintableText.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <optional>

namespace zav {

namespace {

// Far more than anyone needs, and few enough for the product with a number of peptides to fit 64 bits.
constexpr int HIGHEST_COUNT = 1000000;

qint64 boundary(int shards, int count, qint64 peptideCount)
{
    return shards * peptideCount / count;
}

/// Nothing where the variable is not set or no number.
std::optional<int> environmentNumber(const char *variable)
{
    bool isNumber = false;
    const int value = qEnvironmentVariableIntValue(variable, &isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

} // namespace

qint64 LibraryShard::first(qint64 peptideCount) const
{
    return boundary(number - 1, count, peptideCount);
}

qint64 LibraryShard::end(qint64 peptideCount) const
{
    return boundary(number, count, peptideCount);
}

QString LibraryShard::fileNamePart() const
{
    return QStringLiteral("%1-of-%2").arg(number).arg(count);
}

QString LibraryShard::name() const
{
    return QStringLiteral("%1/%2").arg(number).arg(count);
}

Result<LibraryShard> LibraryShard::parse(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char('/'));
    bool isNumber = false;
    bool isCount = false;
    LibraryShard shard;
    shard.number = parts.first().toInt(&isNumber);
    shard.count = parts.last().toInt(&isCount);
    if (parts.size() != 2 || !isNumber || !isCount)
        return Error(InvalidInput, QStringLiteral("'%1' is not a shard such as 2/4").arg(displayText(text)));
    if (shard.count < 1 || shard.count > HIGHEST_COUNT || shard.number < 1 || shard.number > shard.count)
        return Error(InvalidInput,
                     QStringLiteral("%1 is not among the shards 1/%2 to %2/%2, of which there are 1 to %3")
                         .arg(displayText(text), QString::number(shard.count))
                         .arg(HIGHEST_COUNT));
    return shard;
}

Result<LibraryShard> LibraryShard::ofSlurmTask()
{
    const std::optional<int> id = environmentNumber("SLURM_ARRAY_TASK_ID");
    const std::optional<int> count = environmentNumber("SLURM_ARRAY_TASK_COUNT");
    if (!id || !count)
        return LibraryShard();
    const int lowest = environmentNumber("SLURM_ARRAY_TASK_MIN").value_or(1);
    const int step = std::max(1, environmentNumber("SLURM_ARRAY_TASK_STEP").value_or(1));
    const qint64 distance = qint64(*id) - lowest;
    const qint64 number = distance / step + 1;
    if (distance < 0 || distance % step != 0 || number > *count || *count > HIGHEST_COUNT)
        return Error(InvalidInput, QStringLiteral("cannot tell the shard from task %1 of a Slurm array of %2 tasks "
                                                  "starting at %3; use --shard")
                                       .arg(*id)
                                       .arg(*count)
                                       .arg(lowest));
    return LibraryShard{static_cast<int>(number), *count};
}

} // namespace zav
