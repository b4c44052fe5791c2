// SPDX-License-Identifier: Apache-2.0
#include "RecordSorter.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace zav {

namespace {

constexpr qsizetype PREFIX_LETTERS = 12; // of 5 bits each

// A run holds of each record the lengths of key and payload, the key, the payload.
constexpr qsizetype LENGTHS_SIZE = sizeof(quint16) + sizeof(quint32);
constexpr qsizetype WRITTEN_AT_ONCE = 1 << 18;
constexpr qint64 SMALLEST_BUFFER = 1 << 12;
constexpr qint64 LARGEST_BUFFER = 1 << 18;

quint64 prefixOf(QByteArrayView key)
{
    quint64 prefix = 0;
    for (qsizetype i = 0; i < PREFIX_LETTERS; ++i)
        prefix = prefix << 5 | (i < key.size() ? static_cast<quint64>(key[i] - 'A' + 1) : 0);
    return prefix;
}

template <typename Number>
void appendNumber(QByteArray *bytes, Number number)
{
    bytes->append(reinterpret_cast<const char *>(&number), sizeof number);
}

template <typename Number>
Number numberAt(const char *bytes)
{
    Number number = 0;
    std::memcpy(&number, bytes, sizeof number);
    return number;
}

Record recordAt(const QByteArray &records, const RecordSorter::Place &place)
{
    const char *begin = records.constData() + place.offset;
    const auto payloadLength = numberAt<quint32>(begin);
    const char *key = begin + sizeof payloadLength;
    const auto keyLength = static_cast<qsizetype>(place.keyLength);
    return {{key, keyLength}, {key + keyLength, static_cast<qsizetype>(payloadLength)}};
}

void appendToRun(const Record &record, QByteArray *bytes)
{
    appendNumber(bytes, static_cast<quint16>(record.key.size()));
    appendNumber(bytes, static_cast<quint32>(record.payload.size()));
    bytes->append(record.key);
    bytes->append(record.payload);
}

class SortedRecords : public RecordStream
{
public:
    SortedRecords(QByteArray records, QList<RecordSorter::Place> places)
        : m_records(std::move(records)), m_places(std::move(places))
    {}

    bool next() override { return ++m_index < m_places.size(); }
    Record record() const override { return recordAt(m_records, m_places[m_index]); }
    Error error() const override { return {}; }

private:
    QByteArray m_records;
    QList<RecordSorter::Place> m_places;
    qsizetype m_index = -1;
};

// Merges the sorted runs of a temporary file; their buffers share `memoryLimit` bytes.
class RunMerger : public RecordStream
{
public:
    RunMerger(std::unique_ptr<TemporaryStore> file, const QList<RecordSorter::Run> &runs, qint64 memoryLimit);

    bool next() override;
    Record record() const override { return m_cursors[m_heap.front()].record; }
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
    bool isBehind(size_t a, size_t b) const { return m_cursors[b].record < m_cursors[a].record; }

    std::unique_ptr<TemporaryStore> m_file;
    qint64 m_bufferSize;
    std::vector<Cursor> m_cursors;
    std::vector<size_t> m_heap; // the cursors that have a record, the first in order at the front
    bool m_isStarted = false;
    Error m_error;
};

RunMerger::RunMerger(std::unique_ptr<TemporaryStore> file, const QList<RecordSorter::Run> &runs, qint64 memoryLimit)
    : m_file(std::move(file)),
      m_bufferSize(std::clamp(memoryLimit / std::max<qint64>(2 * runs.size(), 1), SMALLEST_BUFFER, LARGEST_BUFFER))
{
    for (const RecordSorter::Run &run : runs)
        m_cursors.push_back({run.begin, run.end, {}, 0, 0, {}});
}

bool RunMerger::next()
{
    const auto behind = [this](size_t a, size_t b) { return isBehind(a, b); };
    if (!m_isStarted) {
        m_isStarted = true;
        for (size_t i = 0; i < m_cursors.size(); ++i) {
            if (advance(&m_cursors[i]))
                m_heap.push_back(i);
        }
        std::make_heap(m_heap.begin(), m_heap.end(), behind);
    } else if (!m_heap.empty()) {
        std::pop_heap(m_heap.begin(), m_heap.end(), behind);
        if (advance(&m_cursors[m_heap.back()]))
            std::push_heap(m_heap.begin(), m_heap.end(), behind);
        else
            m_heap.pop_back();
    }
    return !m_error.hasError() && !m_heap.empty();
}

bool RunMerger::advance(Cursor *cursor)
{
    cursor->begin += cursor->length;
    cursor->length = 0;
    if (!fill(cursor, LENGTHS_SIZE))
        return false;
    const char *lengths = cursor->buffer.constData() + cursor->begin;
    const qsizetype keyLength = numberAt<quint16>(lengths);
    const auto payloadLength = static_cast<qsizetype>(numberAt<quint32>(lengths + sizeof(quint16)));
    cursor->length = LENGTHS_SIZE + keyLength + payloadLength;
    if (!fill(cursor, cursor->length))
        return false;
    const char *key = cursor->buffer.constData() + cursor->begin + LENGTHS_SIZE;
    cursor->record = {{key, keyLength}, {key + keyLength, payloadLength}};
    return true;
}

// Makes the buffer hold `needed` bytes from the current record on; false at the end of the run.
bool RunMerger::fill(Cursor *cursor, qsizetype needed)
{
    const qsizetype held = cursor->buffer.size() - cursor->begin;
    if (held >= needed)
        return true;
    const qint64 wanted = std::min(cursor->end - cursor->offset, std::max<qint64>(m_bufferSize, needed - held));
    if (wanted == 0)
        return false;
    Result<QByteArray> bytes = m_file->read(cursor->offset, wanted);
    if (bytes.hasError()) {
        m_error = bytes.error();
        return false;
    }
    cursor->offset += wanted;
    cursor->buffer.remove(0, std::exchange(cursor->begin, 0));
    cursor->buffer.append(bytes.value());
    return true;
}

} // namespace

int compareBytes(QByteArrayView a, QByteArrayView b)
{
    const auto common = static_cast<size_t>(std::min(a.size(), b.size()));
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0)
        return order;
    return a.size() < b.size() ? -1 : static_cast<int>(a.size() > b.size());
}

bool operator<(const Record &a, const Record &b)
{
    const int order = compareBytes(a.key, b.key);
    return order != 0 ? order < 0 : compareBytes(a.payload, b.payload) < 0;
}

RecordSorter::RecordSorter(const SortingSpace &space) : m_space(space)
{
    if (!m_space.onDisk)
        return;
    m_file = std::make_unique<TemporaryStore>(m_space);
    // Only what is filled becomes resident, and all of it goes back to the system at the end; memory that grows in
    // steps would stay with the heap in pieces.
    m_records.reserve(m_space.memoryLimit);
    m_places.reserve(m_space.memoryLimit / qsizetype(sizeof(Place)));
}

Error RecordSorter::add(const Record &record)
{
    m_places.append(
        {prefixOf(record.key), static_cast<quint64>(m_records.size()), static_cast<quint64>(record.key.size())});
    appendNumber(&m_records, static_cast<quint32>(record.payload.size()));
    m_records.append(record.key);
    m_records.append(record.payload);
    return isFull() ? writeRun() : Error();
}

Result<std::unique_ptr<RecordStream>> RecordSorter::finish()
{
    if (m_runs.isEmpty()) {
        sortPlaces();
        return std::unique_ptr<RecordStream>(
            std::make_unique<SortedRecords>(std::exchange(m_records, {}), std::exchange(m_places, {})));
    }
    if (Error error = writeRun(); error.hasError())
        return error;
    m_records = {};
    m_places = {};
    return std::unique_ptr<RecordStream>(
        std::make_unique<RunMerger>(std::move(m_file), std::exchange(m_runs, {}), m_space.memoryLimit));
}

bool RecordSorter::isFull() const
{
    return m_space.onDisk && m_records.size() + m_places.size() * qsizetype(sizeof(Place)) >= m_space.memoryLimit;
}

void RecordSorter::sortPlaces()
{
    std::sort(m_places.begin(), m_places.end(), [this](const Place &a, const Place &b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        return recordAt(m_records, a) < recordAt(m_records, b);
    });
}

Error RecordSorter::writeRun()
{
    sortPlaces();
    Run run{m_file->size(), 0};
    QByteArray bytes;
    for (const Place &place : std::as_const(m_places)) {
        appendToRun(recordAt(m_records, place), &bytes);
        if (bytes.size() < WRITTEN_AT_ONCE)
            continue;
        if (Error error = m_file->append(std::exchange(bytes, {})); error.hasError())
            return error;
    }
    if (Error error = m_file->append(bytes); error.hasError())
        return error;
    run.end = m_file->size();
    m_runs.append(run);
    // Their capacity stays for the next run.
    m_records.resize(0);
    m_places.resize(0);
    return {};
}

} // namespace zav
