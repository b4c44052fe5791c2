// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Modifications.h>
#include <zav/Result.h>

#include <QtCore/QByteArrayView>
#include <QtCore/QChar>
#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// At which ends of a protein a peptide stands, at one of its places at least.
struct ProteinEnds
{
    bool start = false; ///< behind the initial methionine too, where that is removed
    bool end = false;

    ProteinEnds &operator|=(ProteinEnds other);
    bool operator==(const ProteinEnds &) const = default;
};

/// Where a modification may be: at a residue wherever it stands, or at a terminus.
struct ModificationSite
{
    enum Kind { Residue, NTerminus, ProteinNTerminus, CTerminus, ProteinCTerminus };

    Kind kind = Residue;
    char residue = 0; ///< upper-case letter; 0: any, of a terminus

    /// Whether some peptide has a place that is both sites.
    bool overlaps(const ModificationSite &other) const;

    bool operator==(const ModificationSite &) const = default;
};

/// A modification and the sites at which it is, or may be.
struct ModificationRule
{
    Modification modification;
    QList<ModificationSite> sites; ///< in the order of kind and letter, each once

    /// Reads NAME@SITES. NAME is what `modifications::fromText` takes. SITES are parted by commas: residues, `STY`, or
    /// one of `N-term`, `C-term`, `protein-N-term`, `protein-C-term`, with `:QE` behind it where the residue at that
    /// terminus has to be one of these. `InvalidInput` says what is wrong.
    static Result<ModificationRule> parse(const QString &text);

    /// The rule with Unimod's name and its sites in order, however it was written: `Phospho@S,T,Y`.
    QString text() const;

    /// Whether it serves a terminus of a peptide: the first or the last place, 0 or n + 1, of its n residues.
    bool servesNTerminus(QByteArrayView sequence, ProteinEnds ends) const;
    bool servesCTerminus(QByteArrayView sequence, ProteinEnds ends) const;
    bool servesResidue(char residue) const;

    /// Whether some place can be served by both.
    bool overlaps(const ModificationRule &other) const;
};

} // namespace zav
