// SPDX-License-Identifier: Apache-2.0
#include "GzipLineReader.h"

#include "PrintableText.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zav {

namespace {

constexpr qint64 PIECE_BYTES = 1 << 14;

// Far above the longest protein, and far below what a binary file without line ends would take.
constexpr qsizetype MAX_LINE_BYTES = 1 << 24;

constexpr char GZIP_MAGIC[] = "\x1F\x8B";
constexpr char BYTE_ORDER_MARK[] = "\xEF\xBB\xBF";

} // namespace

GzipLineReader::GzipLineReader(const QString &path) : m_path(path) {}

QString GzipLineReader::name() const
{
    return m_path == QLatin1String("-") ? QStringLiteral("standard input") : displayText(m_path, 300);
}

Error GzipLineReader::open()
{
    if (QFileInfo(m_path).isDir())
        return {Failure, QStringLiteral("cannot read %1: it is a folder").arg(name())};
    m_file.setFileName(m_path);
    const bool isOpen = m_path == QLatin1String("-") ? m_file.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered)
                                                     : m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    if (!isOpen)
        return {Failure, QStringLiteral("cannot read %1: %2").arg(name(), m_file.errorString())};
    return {};
}

bool GzipLineReader::next()
{
    m_line = {};
    while (!m_error.hasError()) {
        const qsizetype end = m_text.indexOf('\n', m_begin + m_scanned);
        if (end >= 0) {
            takeLine(end - m_begin, end - m_begin + 1);
            return true;
        }
        m_scanned = m_text.size() - m_begin;
        if (m_scanned > MAX_LINE_BYTES)
            return fail(QStringLiteral("has a line of more than %1 bytes").arg(MAX_LINE_BYTES));
        if (m_isAtEnd) {
            if (m_scanned == 0)
                return false;
            takeLine(m_scanned, m_scanned);
            return true;
        }
        readPiece();
    }
    return false;
}

void GzipLineReader::takeLine(qsizetype length, qsizetype lengthWithEnd)
{
    m_line = QByteArrayView(m_text).sliced(m_begin, length);
    m_begin += lengthWithEnd;
    m_scanned = 0;
    ++m_number;
    if (m_line.endsWith('\r'))
        m_line.chop(1);
    if (m_number == 1 && m_line.startsWith(BYTE_ORDER_MARK))
        m_line = m_line.sliced(3);
}

bool GzipLineReader::readPiece()
{
    QByteArray piece = m_file.read(PIECE_BYTES);
    if (m_bytesRead == 0 && piece.size() == 1) // a pipe may hand over less than the two bytes that tell the kind
        piece += m_file.read(PIECE_BYTES);
    if (m_file.error() != QFileDevice::NoError)
        return fail(m_file.errorString());
    m_isAtEnd = piece.isEmpty();
    if (m_isAtEnd && m_isCompressed && !m_decoder.isComplete())
        return fail(QStringLiteral("ends within its compressed data"));
    if (m_bytesRead == 0)
        m_isCompressed = piece.startsWith(GZIP_MAGIC);
    m_bytesRead += piece.size();
    if (m_isCompressed) {
        QByteArray decoded;
        if (const Error error = m_decoder.decode(piece, &decoded); error.hasError())
            return fail(error.message());
        piece = decoded;
    }
    m_text.remove(0, std::exchange(m_begin, 0));
    m_text.append(piece);
    return true;
}

bool GzipLineReader::fail(const QString &what)
{
    m_error = Error(Failure, QStringLiteral("cannot read %1: %2").arg(name(), what));
    return false;
}

Error GzipLineReader::errorHere(const QString &what) const
{
    return {Failure, QStringLiteral("%1, line %2: %3").arg(name(), QString::number(m_number), what)};
}

double GzipLineReader::fractionRead() const
{
    const qint64 size = m_file.size();
    return size > 0 ? std::min(1.0, double(m_bytesRead) / double(size)) : 0;
}

} // namespace zav
