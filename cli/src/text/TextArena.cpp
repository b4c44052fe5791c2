// SPDX-License-Identifier: Apache-2.0
#include "TextArena.h"

#include <algorithm>

namespace zav {

namespace {

constexpr qsizetype CHUNK_SIZE = 1 << 20;

} // namespace

QByteArray TextArena::keep(const QByteArray &text)
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

} // namespace zav
