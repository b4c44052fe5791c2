// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QString>

namespace zav {

/// One of the parts of equal size that a library is made in: a stretch of its peptides in their order.
struct LibraryShard
{
    int number = 1; ///< from 1 to `count`
    int count = 1;  ///< 1: the whole library

    bool operator==(const LibraryShard &) const = default;

    bool isWhole() const { return count == 1; }

    /// The stretch [first, end) of the peptides 0 to `peptideCount` - 1. Those of all shards lie end to end and differ
    /// in size by one peptide at most.
    qint64 first(qint64 peptideCount) const;
    qint64 end(qint64 peptideCount) const;

    /// `2-of-4`, as it stands in file names.
    QString fileNamePart() const;

    /// `2/4`, as it stands in messages.
    QString name() const;

    /// `2/4`. `InvalidInput` for anything else, and for a number that is not within the count.
    static Result<LibraryShard> parse(const QString &text);

    /// The shard of a task in an array job of Slurm, by SLURM_ARRAY_TASK_ID, _COUNT, _MIN and _STEP; the whole library
    /// where this is no such task. `InvalidInput` when the ids of the array's tasks do not follow one another: then
    /// they do not tell which shard this is.
    static Result<LibraryShard> ofSlurmTask();
};

} // namespace zav
