// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TextBuffer.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <vector>

namespace zav {

/// Keeps many short texts in few large pieces of memory. The entries of a library are made in one thread and freed in
/// another, ten thousands at a time; allocating and freeing each text by itself costs more than making it.
class TextArena
{
public:
    /// An empty buffer for a text to `keep`, the same each time.
    TextBuffer *draft()
    {
        m_draft.clear();
        return &m_draft;
    }

    /// A copy of the text, which is valid as long as the arena, also after that was moved.
    QByteArray keep(QByteArrayView text)
    {
        if (m_chunks.empty() || m_chunks.back().capacity() - m_chunks.back().size() < text.size()) {
            m_chunks.emplace_back();
            m_chunks.back().reserve(std::max(CHUNK_SIZE, text.size()));
        }
        QByteArray &chunk = m_chunks.back();
        const qsizetype place = chunk.size();
        chunk.append(text);
        return QByteArray::fromRawData(chunk.constData() + place, text.size());
    }

private:
    static constexpr qsizetype CHUNK_SIZE = 1 << 20;

    std::vector<QByteArray> m_chunks;
    TextBuffer m_draft;
};

} // namespace zav
