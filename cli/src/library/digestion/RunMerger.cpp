// SPDX-License-Identifier: Apache-2.0
#include "RunMerger.h"

#include <algorithm>
#include <cstring>

namespace zav {

namespace {

constexpr qint64 SMALLEST_BUFFER = 1 << 12;
constexpr qint64 LARGEST_BUFFER = 1 << 18;
constexpr qsizetype LENGTHS_SIZE = sizeof(quint16) + sizeof(quint32);

} // namespace

RunMerger::RunMerger(std::unique_ptr<TemporaryStore> file, const QList<Run> &runs, qint64 memoryLimit)
    : m_file(std::move(file)),
      m_bufferSize(std::clamp(memoryLimit / std::max<qint64>(2 * runs.size(), 1), SMALLEST_BUFFER, LARGEST_BUFFER))
{
    for (const Run &run : runs)
        m_cursors.push_back({run.begin, run.end, {}, 0, 0, {}});
}

void RunMerger::encode(const Record &record, QByteArray *bytes)
{
    const auto keyLength = static_cast<quint16>(record.key.size());
    const auto payloadLength = static_cast<quint32>(record.payload.size());
    bytes->append(reinterpret_cast<const char *>(&keyLength), sizeof keyLength);
    bytes->append(reinterpret_cast<const char *>(&payloadLength), sizeof payloadLength);
    bytes->append(record.key);
    bytes->append(record.payload);
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

Record RunMerger::record() const
{
    return m_cursors[m_heap.front()].record;
}

bool RunMerger::advance(Cursor *cursor)
{
    cursor->begin += cursor->length;
    cursor->length = 0;
    if (!fill(cursor, LENGTHS_SIZE))
        return false;
    quint16 keyLength = 0;
    quint32 payloadLength = 0;
    std::memcpy(&keyLength, cursor->buffer.constData() + cursor->begin, sizeof keyLength);
    std::memcpy(&payloadLength, cursor->buffer.constData() + cursor->begin + sizeof keyLength, sizeof payloadLength);
    cursor->length = LENGTHS_SIZE + keyLength + static_cast<qsizetype>(payloadLength);
    if (!fill(cursor, cursor->length))
        return false;
    const char *key = cursor->buffer.constData() + cursor->begin + LENGTHS_SIZE;
    cursor->record = {{key, keyLength}, {key + keyLength, static_cast<qsizetype>(payloadLength)}};
    return true;
}

// Sees to it that the buffer holds so many bytes from the current record on; false at the end of the run.
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

bool RunMerger::isBehind(size_t a, size_t b) const
{
    return m_cursors[b].record < m_cursors[a].record;
}

} // namespace zav
