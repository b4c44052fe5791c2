// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Precursor.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// One row of a peptide list.
struct PeptideListRow
{
    Precursor precursor;
    QString scan;    ///< the measured spectrum that is held to be the precursor's; empty where the list does not say
    int line = 0;    ///< in the file, from 1
    QString problem; ///< why the row names no precursor; empty when it does
};

/// Reads a peptide list, plain or gzipped, standard input for "-": one precursor a line, peptide and charge separated
/// by a tab (or, in a line without tabs, by blanks). More columns are ignored, as are blank lines and comments (`#`).
///
/// A first line with the column names `peptide` (or `sequence`) and `charge`, in any case, is a header and says where
/// the two columns stand, and where a column `energy` stands, the normalised collision energy, and a column `scan`,
/// both of which may be empty; without a header the two are the first ones and there is no energy and no scan.
///
/// A row that cannot be understood stays in the list with its `problem`. `Failure`, which names the file, when it
/// cannot be read to its end.
Result<QList<PeptideListRow>> readPeptideList(const QString &path);

} // namespace zav
