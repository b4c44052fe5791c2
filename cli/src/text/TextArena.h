// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TextBuffer.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace zav {

/// Keeps many short texts in few large pieces of memory. The entries of a library are made in one thread and freed in
/// another, ten thousands at a time; allocating and freeing each text by itself costs more than making it.
///
/// The pieces of an arena that goes are used by later ones of any thread: the system would clear new ones page by page,
/// which takes a third of the time that writing the text does. They are never more than were in use at once.
class TextArena
{
public:
    TextArena() = default;
    TextArena(TextArena &&other) noexcept = default;
    TextArena &operator=(TextArena &&other) noexcept
    {
        m_chunks.swap(other.m_chunks);
        std::swap(m_draft, other.m_draft);
        return *this;
    }
    TextArena(const TextArena &) = delete;
    TextArena &operator=(const TextArena &) = delete;
    ~TextArena() { spareChunks().add(&m_chunks); }

    /// An empty buffer for a text to `keep`, the same each time.
    TextBuffer *draft()
    {
        m_draft.clear();
        return &m_draft;
    }

    /// A copy of the text, which is valid as long as the arena, also after that was moved.
    QByteArray keep(QByteArrayView text)
    {
        if (m_chunks.empty() || m_chunks.back().capacity() - m_chunks.back().size() < text.size())
            m_chunks.push_back(spareChunks().take(text.size()));
        QByteArray &chunk = m_chunks.back();
        const qsizetype place = chunk.size();
        chunk.append(text);
        return QByteArray::fromRawData(chunk.constData() + place, text.size());
    }

private:
    static constexpr qsizetype CHUNK_SIZE = 1 << 20;

    /// Empty pieces of memory that no arena uses.
    class SpareChunks
    {
    public:
        void add(std::vector<QByteArray> *chunks)
        {
            const std::lock_guard lock(m_mutex);
            for (QByteArray &chunk : *chunks) {
                chunk.resize(0);
                if (chunk.capacity() < 2 * CHUNK_SIZE) // not one that was made for a single large text
                    m_chunks.push_back(std::move(chunk));
            }
            chunks->clear();
        }

        /// With room for that many bytes.
        QByteArray take(qsizetype size)
        {
            if (size <= CHUNK_SIZE) {
                const std::lock_guard lock(m_mutex);
                if (!m_chunks.empty()) {
                    QByteArray chunk = std::move(m_chunks.back());
                    m_chunks.pop_back();
                    return chunk;
                }
            }
            QByteArray chunk;
            chunk.reserve(std::max(CHUNK_SIZE, size));
            return chunk;
        }

    private:
        std::mutex m_mutex;
        std::vector<QByteArray> m_chunks;
    };

    static SpareChunks &spareChunks()
    {
        static SpareChunks chunks;
        return chunks;
    }

    std::vector<QByteArray> m_chunks;
    TextBuffer m_draft;
};

} // namespace zav
