// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GzipLineReader.h"
#include "ProteinTable.h"

namespace zav {

/// Reads a FASTA file protein by protein, plain or compressed with gzip.
///
/// Sequences are turned into upper case; blanks in them, empty lines and lines that begin with ';' or '#' are passed
/// over, and the stop signs '*' at a sequence's end are dropped. What is neither a letter nor '*' nor '-' in a
/// sequence, text before the first header, a header without a word and a sequence of more than 16 MiB are failures:
/// such a file holds no protein sequences.
class FastaReader
{
public:
    explicit FastaReader(const QString &path) : m_lines(path) {}

    /// Has to come first and succeed.
    Error open();

    /// Moves to the next protein; false at the end of the file and after a failure, which `error` tells apart.
    bool next();

    const Protein &protein() const { return m_protein; }
    QByteArrayView sequence() const { return m_sequence; } ///< valid until the next call of `next`; may be empty
    Error error() const { return m_error; }                ///< why `next` stopped; no error at the end of the file
    QString name() const { return m_lines.name(); }        ///< what messages call the file
    double fractionRead() const { return m_lines.fractionRead(); }

private:
    bool findHeader();
    bool readHeader();
    bool appendResidues(QByteArrayView line);
    bool fail(const Error &error);

    GzipLineReader m_lines;
    bool m_isAtHeader = false; // the reader stands on the header of the next protein
    Protein m_protein;
    QByteArray m_sequence;
    Error m_error;
};

} // namespace zav
