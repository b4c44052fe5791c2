// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Precursor.h"

#include <zav/Result.h>

#include <QtCore/QIODevice>
#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// One row of a peptide list.
struct PeptideListRow
{
    Precursor precursor;
    int line = 0;    ///< in the file, from 1
    QString problem; ///< why the row names no precursor; empty when it does
};

/// Reads a peptide list: one precursor a line, peptide and charge separated by a tab (or, in a line without tabs, by
/// blanks). More columns are ignored, as are empty lines and lines that begin with '#'; lines end with LF or CRLF.
///
/// A first line with the column names `peptide` (or `sequence`) and `charge`, in any case, is a header and says where
/// the two columns stand; without one they are the first two.
///
/// A row that cannot be understood stays in the list with its `problem`. `Failure` when reading stops with an error.
Result<QList<PeptideListRow>> readPeptideList(QIODevice &input);

/// Opens and reads the list at `path`, standard input for "-". The message of an error names the file.
Result<QList<PeptideListRow>> readPeptideList(const QString &path);

} // namespace zav
