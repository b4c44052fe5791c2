// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LineReader.h"
#include "OutputFile.h"
#include "TableHeading.h"
#include "TextBuffer.h"

#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// One row of a list of peptides.
struct RetentionRow
{
    QString text; ///< the peptide as the list has it
    qint64 line = 0;
    Result<Peptidoform> peptidoform;
};

/// A list of peptides, block by block: plain or gzipped, standard input for "-". A peptide a line, as `readPeptidoform`
/// takes it, in the column that a first line names `peptide` (or `sequence`), else in the first one. Columns are
/// separated by tabs (in a line without tabs, by blanks). More columns are ignored, as are blank lines and comments
/// (`#`).
class PeptidoformList
{
public:
    /// `Failure`, which names the file, when it cannot be opened.
    Error open(const QString &path);

    /// The next rows, at most `count`; none at the end. `Failure` when the file cannot be read on.
    Result<QList<RetentionRow>> next(qsizetype count);

private:
    bool readHeading();

    std::unique_ptr<LineReader> m_lines;
    TableHeading m_heading{TableHeading::TabOrBlanks};
    const char *m_column = nullptr; // of the peptides; null before the first line
};

/// Writes times as tab-separated text: a heading, then the columns `peptide`, `irt` (3 decimals) and, with a
/// calibration, `rt` (4 decimals). No file appears before the first row.
class RetentionTable
{
public:
    /// `path` empty or "-": standard output.
    RetentionTable(const QString &path, bool isCalibrated) : m_file(path), m_isCalibrated(isCalibrated) {}

    /// `rt` is not looked at without a calibration.
    void add(const QString &peptide, double irt, double rt);

    /// Writes what was added.
    Error flush();

    /// Completes the file; nothing may be added afterwards.
    Error finish();

private:
    OutputFile m_file;
    bool m_isCalibrated;
    bool m_isOpen = false;
    TextBuffer m_rows;
};

} // namespace zav
