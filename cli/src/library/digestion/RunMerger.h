// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RecordSorter.h"
#include "TemporaryStore.h"

#include <memory>
#include <vector>

namespace zav {

/// Merges the sorted runs of a temporary file into one stream of records.
class RunMerger : public RecordStream
{
public:
    using Run = RecordSorter::Run;

    /// The buffers of the runs share `memoryLimit` bytes; with very many runs they need 4 KiB each.
    RunMerger(std::unique_ptr<TemporaryStore> file, const QList<Run> &runs, qint64 memoryLimit);

    /// Appends a record as runs hold it: the lengths of key and payload, key, payload.
    static void encode(const Record &record, QByteArray *bytes);

    bool next() override;
    Record record() const override;
    Error error() const override { return m_error; }

private:
    // What is left of a run, and the part of it that is in memory.
    struct Cursor
    {
        qint64 offset;
        qint64 end;
        QByteArray buffer;
        qsizetype begin = 0; // of the current record in the buffer
        qsizetype length = 0;
        Record record;
    };

    bool advance(Cursor *cursor);
    bool fill(Cursor *cursor, qsizetype needed);
    bool isBehind(size_t a, size_t b) const;

    std::unique_ptr<TemporaryStore> m_file;
    qint64 m_bufferSize;
    std::vector<Cursor> m_cursors;
    std::vector<size_t> m_heap; // the cursors that have a record, the first in order at the front
    bool m_isStarted = false;
    Error m_error;
};

} // namespace zav
