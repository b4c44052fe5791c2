// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GzipDecoder.h"

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QFile>
#include <QtCore/QString>

namespace zav {

/// Reads a text file line by line, plain or compressed with gzip, which its first two bytes tell whatever its name.
/// Lines end with LF or CR LF, the last one also with the file; a byte order mark is not part of the first. Holds one
/// line and a piece of the file at a time.
class GzipLineReader
{
public:
    /// `path` "-": standard input.
    explicit GzipLineReader(const QString &path);

    /// Has to come first and succeed.
    Error open();

    /// Moves to the next line; false at the end of the file and after a failure, which `error` tells apart.
    bool next();

    QByteArrayView line() const { return m_line; } ///< without its end; valid until the next call of `next`
    int number() const { return m_number; }        ///< of the line, from 1; 0 before the first
    Error error() const { return m_error; }        ///< why `next` stopped; no error at the end of the file
    QString name() const;                          ///< what messages call the file

    /// `Failure` with the file, the number of the line and `what`.
    Error errorHere(const QString &what) const;

    /// How much of the file was read, within 0 to 1; 0 where its size is unknown.
    double fractionRead() const;

private:
    bool readPiece();
    bool fail(const QString &what);
    void takeLine(qsizetype length, qsizetype lengthWithEnd);

    QFile m_file;
    QString m_path;
    GzipDecoder m_decoder;
    bool m_isCompressed = false;
    bool m_isAtEnd = false;
    qint64 m_bytesRead = 0;
    QByteArray m_text;       // decoded and not yet passed
    qsizetype m_begin = 0;   // of the next line in it
    qsizetype m_scanned = 0; // up to where it holds no line end, from m_begin
    QByteArrayView m_line;
    int m_number = 0;
    Error m_error;
};

} // namespace zav
