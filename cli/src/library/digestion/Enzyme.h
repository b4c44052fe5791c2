// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Result.h>

#include <QtCore/QByteArrayView>
#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>

namespace zav {

struct EnzymeRule;

/// Where a protease cuts a protein.
///
/// The known ones go by the names of the PSI-MS ontology (psi-ms.obo 4.1, terms below MS:1001045, "cleavage agent
/// name") and follow the regular expressions that it gives for them, ambiguous residues B and Z included. Two more are
/// `none` (MS:1001955), which cuts nowhere, and `unspecific` (MS:1001956), for which every stretch is a peptide.
class Enzyme
{
public:
    /// By name or synonym, in any case, with or without hyphens, underscores, blanks and slashes (`Trypsin/P`,
    /// `trypsin_p`, `LysC`).
    /// `InvalidInput` for a name that is not known lists those that are.
    static Result<Enzyme> named(const QString &name);

    /// By a regular expression (Perl's, as PCRE2 reads it) that matches between two residues, with look-arounds
    /// alone: `(?<=[KR])(?!P)`. `InvalidInput` for one that is not valid, or that matches residues as `[KR]` does. It
    /// is tried on all pairs of residues; `findSites` reports what those did not show.
    static Result<Enzyme> withPattern(const QString &pattern);

    /// The names that messages and help show.
    static QStringList names();

    QString name() const { return m_name; } ///< empty for a pattern

    /// The regular expression of the sites; empty for `none` and `unspecific`.
    QString pattern() const { return m_pattern; }

    bool isUnspecific() const { return m_isUnspecific; }

    /// Whether peptides begin with the residue that the enzyme recognises (Lys-N, Asp-N) instead of ending with it. A
    /// pattern does not tell, and peptides are taken to end with it.
    bool cutsBeforeItsResidue() const { return m_cutsBefore; }

    /// Puts the sites in an upper-case sequence in place of what `sites` held, ascending: a site i lies between the
    /// residues i - 1 and i. Neither end of the sequence is one.
    ///
    /// `InvalidInput` when a pattern matches a residue instead of a place between two.
    Error findSites(QByteArrayView sequence, QList<int> *sites) const;

private:
    using ResidueSet = std::array<bool, 256>;

    void follow(const EnzymeRule &rule);
    bool isSite(QByteArrayView sequence, qsizetype place) const;
    Error findMatches(QByteArrayView sequence, QList<int> *sites) const;

    QString m_name;
    QString m_pattern;
    bool m_isUnspecific = false;
    bool m_cutsBefore = false;
    bool m_isExpression = false;
    QRegularExpression m_expression; // of a pattern; the known enzymes are looked up, which is faster
    ResidueSet m_before{};           // the residue before a site
    ResidueSet m_after{};            // the residue behind it
    char m_notTwoBefore = 0;         // and what may not stand two before it, 0 for no such rule
};

} // namespace zav
