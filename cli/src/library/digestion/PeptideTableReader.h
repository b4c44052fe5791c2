// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LineReader.h"
#include "ProteinTable.h"
#include "TableHeading.h"

#include <QtCore/QList>

namespace zav {

/// Reads a list of peptides for a library, plain or gzipped: one a line, as residues or in ProForma, or a table with
/// tabs whose first line names its columns, in any case: `peptide` (or `sequence`), and where they are there `protein`
/// and `gene`. Without such a line the peptide is what stands before the first tab or blank, and the rest of the line
/// is ignored. A first line `PEPTIDE` in capitals is a peptide, unless it names `protein`, `gene` or `charge` as well.
///
/// Other columns are ignored, `charge` too: a library holds every peptide at each charge that is asked for. Several
/// proteins are parted by ';' and may be UniProt identifiers (`sp|P02768|ALBU_HUMAN`); genes belong to them in their
/// order, a single gene to all of them; a gene without a protein is ignored. Empty lines and lines that begin with '#'
/// are passed over.
class PeptideTableReader
{
public:
    explicit PeptideTableReader(const QString &path) : m_path(path) {}

    /// Has to come first and succeed.
    Error open();

    /// Moves to the next peptide; false at the end of the file and after a failure, which `error` tells apart: a row
    /// whose genes cannot be told to its proteins, a header without a peptide column, a file that cannot be read.
    bool next();

    /// Whatever it consists of, in upper case outside the brackets of ProForma.
    QByteArray peptide() const { return m_peptide; }

    const QList<Protein> &proteins() const { return m_proteins; } ///< in the order of the row
    Error error() const { return m_error; } ///< why `next` stopped; no error at the end of the file
    double fractionRead() const { return m_lines->fractionRead(); }

private:
    bool readHeader(QByteArrayView line);
    bool readRow(QByteArrayView line);
    bool readProteins(const QString &proteins, const QString &genes);
    bool fail(const Error &error);

    QString m_path;
    std::unique_ptr<LineReader> m_lines; // from `open` on
    bool m_isFirstLine = true;
    bool m_isTable = false;
    TableHeading m_heading;
    const char *m_peptideColumn = nullptr; // the name that it has in this table
    QByteArray m_peptide;
    QList<Protein> m_proteins;
    Error m_error;
};

} // namespace zav
