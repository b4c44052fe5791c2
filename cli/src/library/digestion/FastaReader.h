// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LineReader.h"
#include "PrintableText.h"
#include "ProteinTable.h"

namespace zav {

/// Reads what a header line of a FASTA file says, without its '>'.
///
/// UniProtKB's form (https://www.uniprot.org/help/fasta-headers), `sp|P02768|ALBU_HUMAN Albumin OS=... GN=ALB PE=1`,
/// gives accession and entry name. Of every other header the first word is the accession. ` GN=` names the gene in
/// either; it ends before the next field (two capital letters and '='). The accession is empty where the header has no
/// word.
Protein readFastaHeader(QByteArrayView header);

/// The same for an identifier alone, `sp|P02768|ALBU_HUMAN` or `P02768`, which is not split at blanks.
Protein readProteinIdentifier(const QString &identifier);

/// Reads a FASTA file protein by protein, plain or gzipped; "-" is standard input.
///
/// Sequences are turned into upper case; blanks in them, empty lines and lines that begin with ';' or '#' are passed
/// over, and the stop signs '*' at a sequence's end are dropped. What is neither a letter nor '*' nor '-' in a
/// sequence, text before the first header, a header without a word and a sequence of more than 16 MiB are failures:
/// such a file holds no protein sequences.
class FastaReader
{
public:
    explicit FastaReader(const QString &path) : m_path(path) {}

    /// Has to come first and succeed.
    Error open();

    /// Moves to the next protein; false at the end of the file and after a failure, which `error` tells apart.
    bool next();

    const Protein &protein() const { return m_protein; }
    QByteArrayView sequence() const { return m_sequence; } ///< valid until the next call of `next`; may be empty
    Error error() const { return m_error; }                ///< why `next` stopped; no error at the end of the file
    QString name() const { return inputName(m_path); }     ///< what messages call the file
    double fractionRead() const { return m_lines->fractionRead(); }

private:
    bool findHeader();
    bool readHeader();
    bool appendResidues(QByteArrayView line);
    bool fail(const Error &error);

    QString m_path;
    std::unique_ptr<LineReader> m_lines; // from `open` on
    bool m_isAtHeader = false;           // the reader stands on the header of the next protein
    Protein m_protein;
    QByteArray m_sequence;
    Error m_error;
};

} // namespace zav
