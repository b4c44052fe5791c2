// SPDX-License-Identifier: Apache-2.0
#include "RecordSorter.h"

#include "RunMerger.h"
#include "TemporaryStore.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace zav {

namespace {

constexpr qsizetype PREFIX_LETTERS = 12; // of 5 bits each
constexpr qsizetype WRITTEN_AT_ONCE = 1 << 18;

quint64 prefixOf(QByteArrayView key)
{
    quint64 prefix = 0;
    for (qsizetype i = 0; i < PREFIX_LETTERS; ++i)
        prefix = prefix << 5 | (i < key.size() ? static_cast<quint64>(key[i] - 'A' + 1) : 0);
    return prefix;
}

Record recordAt(const QByteArray &records, const RecordSorter::Place &place)
{
    const char *begin = records.constData() + place.offset;
    quint32 payloadLength = 0;
    std::memcpy(&payloadLength, begin, sizeof payloadLength);
    const char *key = begin + sizeof payloadLength;
    const qsizetype keyLength = place.keyLength;
    return {{key, keyLength}, {key + keyLength, static_cast<qsizetype>(payloadLength)}};
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

} // namespace

RecordSorter::RecordSorter(const SortingSpace &space) : m_space(space)
{
    if (!m_space.onDisk)
        return;
    // Only what is filled becomes resident, and all of it goes back to the system at the end; memory that grows in
    // steps would stay with the heap in pieces.
    m_records.reserve(m_space.memoryLimit);
    m_places.reserve(m_space.memoryLimit / qsizetype(sizeof(Place)));
}

RecordSorter::~RecordSorter() = default;
RecordSorter::RecordSorter(RecordSorter &&) noexcept = default;
RecordSorter &RecordSorter::operator=(RecordSorter &&) noexcept = default;

Error RecordSorter::add(const Record &record)
{
    const auto payloadLength = static_cast<quint32>(record.payload.size());
    m_places.append(
        {prefixOf(record.key), static_cast<quint64>(m_records.size()), static_cast<quint64>(record.key.size())});
    m_records.append(reinterpret_cast<const char *>(&payloadLength), sizeof payloadLength);
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
    if (!m_file) {
        m_file = std::make_unique<TemporaryStore>(m_space.temporaryFolder);
        if (Error error = m_file->open(); error.hasError())
            return error;
    }
    Run run{m_file->size(), 0};
    QByteArray bytes;
    for (const Place &place : std::as_const(m_places)) {
        RunMerger::encode(recordAt(m_records, place), &bytes);
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
