// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SortingSpace.h"

#include <zav/Result.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QList>

#include <memory>

namespace zav {

/// Bytes to sort by, and what belongs to them.
struct Record
{
    QByteArrayView key;     ///< 65535 bytes or fewer
    QByteArrayView payload; ///< compared where the keys are equal

    /// By keys as `memcmp` compares them, a key before those that it begins; then by payloads likewise.
    friend bool operator<(const Record &a, const Record &b);
};

/// Less than, equal to or greater than 0, in the order of keys.
int compareBytes(QByteArrayView a, QByteArrayView b);

/// Records in ascending order, one after the other.
class RecordStream
{
public:
    RecordStream() = default;
    virtual ~RecordStream() = default;
    RecordStream(const RecordStream &) = delete;
    RecordStream &operator=(const RecordStream &) = delete;

    /// Moves to the next record; false at the end and after a failure, which `error` tells apart.
    virtual bool next() = 0;

    /// Valid until the next call of `next`.
    virtual Record record() const = 0;

    virtual Error error() const = 0;
};

/// Sorts any number of records in memory, or on disk: then a bounded part of them is in memory at a time, and sorted
/// runs of them in a temporary file. The order is the same. Keys consist of the letters A to Z.
///
/// In memory a record needs its bytes and 20 more. On disk the memory limit holds for the run being filled, and again
/// for the buffers that the runs are merged through; with very many runs those need 4 KiB each.
class RecordSorter
{
public:
    explicit RecordSorter(const SortingSpace &space);

    /// `Failure` when a run cannot be written.
    Error add(const Record &record);

    bool isEmpty() const { return m_places.isEmpty() && m_runs.isEmpty(); }

    /// All records in order. Nothing may be added afterwards.
    Result<std::unique_ptr<RecordStream>> finish();

    /// Where a run begins and ends in the temporary file.
    struct Run
    {
        qint64 begin;
        qint64 end;
    };

    /// A record in memory: the first letters of its key, which settle most comparisons, and where it stands.
    struct Place
    {
        quint64 prefix;
        quint64 offset : 48;
        quint64 keyLength : 16;
    };

private:
    bool isFull() const;
    void sortPlaces();
    Error writeRun();

    SortingSpace m_space;
    QByteArray m_records; // of each record the payload's length, the key, the payload
    QList<Place> m_places;
    std::unique_ptr<TemporaryStore> m_file;
    QList<Run> m_runs;
};

} // namespace zav
