// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// How proteins are cut into peptides.
struct DigestionOptions
{
    /// A name that `Enzyme::named` knows.
    QString enzyme = QStringLiteral("Trypsin");

    /// A regular expression for `Enzyme::withPattern`; where it is set it takes the place of `enzyme`.
    QString cleavagePattern;

    /// How many sites a peptide may contain uncut. 0 or more; without meaning for the enzyme `unspecific`.
    int missedCleavages = 1;

    /// Residues in a peptide. `minimumLength` within 1 to 65535, `maximumLength` from there to 65535.
    int minimumLength = 7;
    int maximumLength = 30;

    /// Whether one end of a peptide may lie anywhere, with the other at a site or an end of the protein.
    bool semiSpecific = false;

    /// Whether a protein that begins with methionine is digested without it too, as cells remove it from many proteins
    /// (Giglione et al., Cell. Mol. Life Sci. 61, 1455, 2004). Both forms of its first peptides are kept; its place is
    /// no cleavage site.
    bool removesMethionine = false;

    /// `InvalidInput`, naming field, value and rule, for the first field out of its range, in the order above.
    Error checkForParameterErrors() const;
};

} // namespace zav
