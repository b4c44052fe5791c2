// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"

namespace zav {

/// The lines of a text from first to last, with LF or CR LF ends, with or without a byte order mark. Holds one line at
/// a time.
class LineStream
{
public:
    /// Longer lines than `maxLineBytes` are a failure: a file of something else is not to be read into memory.
    LineStream(std::unique_ptr<ByteStream> bytes, qsizetype maxLineBytes);

    /// Moves to the next line; false at the end of the text and after a failure, which `error` tells apart.
    bool next();

    /// Likewise, to the next line that is neither empty nor a comment (`#`).
    bool nextContent();

    QString name() const { return m_bytes->name(); }
    QByteArrayView line() const { return m_line; } ///< without its end; lasts until `next`
    qint64 number() const { return m_number; }     ///< of the line, from 1; 0 before the first
    Error error() const { return m_error; }        ///< why `next` stopped; no error at the end of the text
    Error errorHere(const QString &what) const;    ///< `Failure` with file, line number and `what`

private:
    qsizetype findEnd();
    bool takeLine(qsizetype size, qsizetype endSize);

    std::unique_ptr<ByteStream> m_bytes;
    qsizetype m_maxLineBytes;
    QByteArray m_buffer;
    qsizetype m_begin = 0; // of what is not taken yet
    QByteArrayView m_line;
    qint64 m_number = 0;
    Error m_error;
};

} // namespace zav
