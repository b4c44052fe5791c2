// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ByteStream.h"

namespace zav {

/// The lines of a text from first to last, plain or gzipped, with LF or CR LF ends; the last one may end with the file,
/// and a byte order mark is not part of the first. Holds one line and a piece of the file at a time.
class LineReader
{
public:
    /// A place in the text to come back to.
    struct Place
    {
        qint64 offset = 0; ///< of the next line, in bytes of the text
        qint64 number = 0; ///< of the line before it
    };

    /// "-" is standard input. Longer lines than `maxLineBytes` are a failure: a binary file without line ends is not to
    /// be read into memory.
    static Result<std::unique_ptr<LineReader>> open(const QString &path, qsizetype maxLineBytes);

    /// Likewise, for what is open already.
    LineReader(std::unique_ptr<ByteStream> bytes, qsizetype maxLineBytes);

    /// Moves to the next line; false at the end of the text and after a failure, which `error` tells apart.
    bool next();

    /// Likewise, to the next line that is neither blank nor a comment (`#` is the first character that is no blank).
    bool nextContent();

    QString name() const { return m_bytes->name(); } ///< what messages call the file
    QByteArrayView line() const { return m_line; }   ///< without its end; lasts until `next`
    qint64 number() const { return m_number; }       ///< of the line, from 1; 0 before the first
    Error error() const { return m_error; }          ///< why `next` stopped; no error at the end of the text
    Error errorHere(const QString &what) const;      ///< `Failure` with file, line number and `what`

    /// Where `next` goes on.
    Place place() const { return {m_offset + m_begin, m_number}; }

    /// Goes back to where `place` was called: `next` yields the same line as it did then. Not for a pipe.
    Error seek(const Place &place);

    /// How much of the file was read, within 0 to 1; 0 where its size is unknown.
    double fractionRead() const { return m_bytes->fractionRead(); }

private:
    qsizetype findEnd();
    bool takeLine(qsizetype size, qsizetype endSize);
    bool failTooLong();

    std::unique_ptr<ByteStream> m_bytes;
    qsizetype m_maxLineBytes;
    QByteArray m_buffer;
    qint64 m_offset = 0;   // of the buffer in the text
    qsizetype m_begin = 0; // of what is not taken yet, in the buffer
    QByteArrayView m_line;
    qint64 m_number = 0;
    Error m_error;
};

} // namespace zav
