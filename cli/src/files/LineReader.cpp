// SPDX-License-Identifier: Apache-2.0
#include "LineReader.h"

#include <utility>

namespace zav {

namespace {

constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

} // namespace

Result<std::unique_ptr<LineReader>> LineReader::open(const QString &path, qsizetype maxLineBytes)
{
    Result<std::unique_ptr<ByteStream>> bytes = ByteStream::open(path);
    if (bytes.hasError())
        return bytes.error();
    return std::make_unique<LineReader>(std::move(bytes).value(), maxLineBytes);
}

LineReader::LineReader(std::unique_ptr<ByteStream> bytes, qsizetype maxLineBytes)
    : m_bytes(std::move(bytes)), m_maxLineBytes(maxLineBytes)
{}

bool LineReader::next()
{
    if (m_error.hasError())
        return false;
    const qsizetype end = findEnd();
    if (m_error.hasError())
        return false;
    if (end >= 0)
        return takeLine(end - m_begin, 1);
    return m_begin < m_buffer.size() && takeLine(m_buffer.size() - m_begin, 0);
}

bool LineReader::nextContent()
{
    while (next()) {
        if (const QByteArrayView text = m_line.trimmed(); !text.isEmpty() && text.front() != '#')
            return true;
    }
    return false;
}

// Where the line's LF stands in the buffer, which it fills as far as needed; -1 where the text ends without one.
qsizetype LineReader::findEnd()
{
    qsizetype searched = m_begin;
    for (;;) {
        if (const qsizetype end = m_buffer.indexOf('\n', searched); end >= 0)
            return end;
        if (m_buffer.size() - m_begin > m_maxLineBytes) {
            failTooLong();
            return -1;
        }
        QByteArray piece;
        m_error = m_bytes->read(&piece);
        if (piece.isEmpty())
            return -1;
        m_buffer.remove(0, m_begin);
        m_offset += std::exchange(m_begin, 0);
        searched = m_buffer.size();
        m_buffer += piece;
    }
}

bool LineReader::takeLine(qsizetype size, qsizetype endSize)
{
    if (size > m_maxLineBytes)
        return failTooLong();
    m_line = QByteArrayView(m_buffer).sliced(m_begin, size);
    m_begin += size + endSize;
    if (m_line.endsWith('\r'))
        m_line.chop(1);
    if (++m_number == 1 && m_line.startsWith(QByteArrayView(BYTE_ORDER_MARK)))
        m_line = m_line.sliced(3);
    return true;
}

bool LineReader::failTooLong()
{
    ++m_number;
    m_error = errorHere(QStringLiteral("the line is longer than %1 bytes").arg(m_maxLineBytes));
    return false;
}

Error LineReader::errorHere(const QString &what) const
{
    return {Failure, QStringLiteral("%1, line %2: ").arg(name(), QString::number(m_number)) + what};
}

Error LineReader::seek(const Place &place)
{
    m_buffer.clear();
    m_offset = place.offset;
    m_begin = 0;
    m_number = place.number;
    m_line = {};
    m_error = m_bytes->seek(place.offset);
    return m_error;
}

} // namespace zav
