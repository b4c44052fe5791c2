// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

namespace zav {

/// Reads a text file line by line, with LF or CR LF ends, and knows where it stands, for messages and for coming back.
/// Holds one line at a time.
class TextLineReader
{
public:
    explicit TextLineReader(const QString &path);

    /// Has to come first and succeed.
    Error open();

    /// Moves to the next line; false at the end of the file and after a failure, which `error` tells apart.
    bool next();

    /// Goes back to where an earlier call of `next` stood: `next` will yield the line after it.
    Error seek(qint64 offset, int number);

    QString path() const { return m_file.fileName(); }
    QByteArray line() const { return m_line; }         ///< without white space at its ends
    int number() const { return m_number; }            ///< of the line, from 1; 0 before the first
    qint64 nextOffset() const { return m_file.pos(); } ///< where the next line begins, in bytes
    Error error() const { return m_error; }            ///< why `next` stopped; no error at the end of the file
    Error errorHere(const QString &what) const;        ///< `Failure` with file, line number and `what`

private:
    QFile m_file;
    QByteArray m_line;
    int m_number = 0;
    Error m_error;
};

} // namespace zav
