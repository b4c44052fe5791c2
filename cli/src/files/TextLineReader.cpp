// SPDX-License-Identifier: Apache-2.0
#include "TextLineReader.h"

#include <QtCore/QFileInfo>

namespace zav {

namespace {

// No peak list has lines of this length; a binary file may, and is not to be read into memory.
constexpr qint64 MAX_LINE_BYTES = 1 << 16;

constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

} // namespace

TextLineReader::TextLineReader(const QString &path) : m_file(path) {}

Error TextLineReader::open()
{
    if (QFileInfo(path()).isDir())
        return {Failure, path() + QStringLiteral(": is a folder")};
    if (!m_file.open(QIODevice::ReadOnly))
        return {Failure, path() + QStringLiteral(": cannot be read: ") + m_file.errorString()};
    return {};
}

bool TextLineReader::next()
{
    const QByteArray raw = m_file.readLine(MAX_LINE_BYTES);
    if (raw.isEmpty()) {
        if (m_file.error() != QFileDevice::NoError)
            m_error = Error(Failure, path() + QStringLiteral(": cannot be read: ") + m_file.errorString());
        return false;
    }
    ++m_number;
    if (raw.size() >= MAX_LINE_BYTES - 1 && !raw.endsWith('\n')) {
        m_error = errorHere(QStringLiteral("the line is too long for a text file of peaks"));
        return false;
    }
    m_line = (m_number == 1 && raw.startsWith(BYTE_ORDER_MARK) ? raw.mid(3) : raw).trimmed();
    return true;
}

Error TextLineReader::seek(qint64 offset, int number)
{
    m_number = number;
    m_error = {};
    return m_file.seek(offset) ? Error() : errorHere(QStringLiteral("cannot be read again"));
}

Error TextLineReader::errorHere(const QString &what) const
{
    return {Failure, QStringLiteral("%1, line %2: ").arg(path(), QString::number(m_number)) + what};
}

} // namespace zav
