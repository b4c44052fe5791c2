// SPDX-License-Identifier: Apache-2.0
#include "ModificationRule.h"

#include "PrintableText.h"

#include <QtCore/QStringList>

#include <algorithm>
#include <iterator>

namespace zav {

namespace {

constexpr struct
{
    ModificationSite::Kind kind;
    const char *name;
} TERMINI[] = {{ModificationSite::NTerminus, "N-term"},
               {ModificationSite::ProteinNTerminus, "protein-N-term"},
               {ModificationSite::CTerminus, "C-term"},
               {ModificationSite::ProteinCTerminus, "protein-C-term"}};

QString quoted(const QString &text)
{
    return QLatin1Char('\'') + displayText(text) + QLatin1Char('\'');
}

bool areResidues(const QString &letters)
{
    return !letters.isEmpty() && std::all_of(letters.begin(), letters.end(), [](QChar letter) {
        return QStringLiteral("ACDEFGHIKLMNPQRSTVWY").contains(letter);
    });
}

/// Appends the sites of one part between commas; false where it is none.
bool readSites(const QString &part, QList<ModificationSite> *sites)
{
    ModificationSite site;
    QString letters = part;
    const auto *terminus = std::find_if(std::begin(TERMINI), std::end(TERMINI), [&](const auto &known) {
        return part.section(QLatin1Char(':'), 0, 0).compare(QLatin1String(known.name), Qt::CaseInsensitive) == 0;
    });
    if (terminus != std::end(TERMINI)) {
        site.kind = terminus->kind;
        letters = part.section(QLatin1Char(':'), 1);
        if (!part.contains(QLatin1Char(':'))) {
            sites->append(site);
            return true;
        }
    }
    if (!areResidues(letters))
        return false;
    for (const QChar letter : letters) {
        site.residue = letter.toLatin1();
        sites->append(site);
    }
    return true;
}

bool isBefore(const ModificationSite &a, const ModificationSite &b)
{
    return a.kind != b.kind ? a.kind < b.kind : a.residue < b.residue;
}

QString siteText(const ModificationSite &site)
{
    if (site.kind == ModificationSite::Residue)
        return QString(QLatin1Char(site.residue));
    const auto *terminus = std::find_if(std::begin(TERMINI), std::end(TERMINI),
                                        [&](const auto &known) { return known.kind == site.kind; });
    const QString name = QString::fromLatin1(terminus->name);
    return site.residue == 0 ? name : name + QLatin1Char(':') + QLatin1Char(site.residue);
}

enum class Place { Residue, NTerminus, CTerminus };

Place placeOf(ModificationSite::Kind kind)
{
    switch (kind) {
    case ModificationSite::NTerminus:
    case ModificationSite::ProteinNTerminus:
        return Place::NTerminus;
    case ModificationSite::CTerminus:
    case ModificationSite::ProteinCTerminus:
        return Place::CTerminus;
    case ModificationSite::Residue:
        break;
    }
    return Place::Residue;
}

bool servesTerminus(const ModificationSite &site, ModificationSite::Kind ofPeptide, ModificationSite::Kind ofProtein,
                    bool isProteinEnd, char residue)
{
    return (site.kind == ofPeptide || (site.kind == ofProtein && isProteinEnd)) &&
           (site.residue == 0 || site.residue == residue);
}

} // namespace

ProteinEnds &ProteinEnds::operator|=(ProteinEnds other)
{
    start = start || other.start;
    end = end || other.end;
    return *this;
}

bool ModificationSite::overlaps(const ModificationSite &other) const
{
    return placeOf(kind) == placeOf(other.kind) && (residue == other.residue || residue == 0 || other.residue == 0);
}

Result<ModificationRule> ModificationRule::parse(const QString &text)
{
    const qsizetype at = text.lastIndexOf(QLatin1Char('@'));
    if (at < 0)
        return Error(InvalidInput, QStringLiteral("%1 is not NAME@SITES, such as Oxidation@M").arg(quoted(text)));
    const Result<Modification> modification = modifications::fromText(text.left(at));
    if (modification.hasError())
        return modification.error();
    ModificationRule rule{modification.value(), {}};
    for (const QString &part : text.mid(at + 1).split(QLatin1Char(','))) {
        if (!readSites(part.trimmed(), &rule.sites))
            return Error(InvalidInput, QStringLiteral("%1 is no site; sites are residues such as STY, N-term, C-term, "
                                                      "protein-N-term, protein-C-term, or N-term:Q")
                                           .arg(quoted(part)));
    }
    std::sort(rule.sites.begin(), rule.sites.end(), isBefore);
    rule.sites.erase(std::unique(rule.sites.begin(), rule.sites.end()), rule.sites.end());
    return rule;
}

QString ModificationRule::text() const
{
    QStringList parts;
    for (const ModificationSite &site : sites)
        parts.append(siteText(site));
    return modification.name + QLatin1Char('@') + parts.join(QLatin1Char(','));
}

bool ModificationRule::servesNTerminus(QByteArrayView sequence, ProteinEnds ends) const
{
    return std::any_of(sites.begin(), sites.end(), [&](const ModificationSite &site) {
        return servesTerminus(site, ModificationSite::NTerminus, ModificationSite::ProteinNTerminus, ends.start,
                              sequence.front());
    });
}

bool ModificationRule::servesCTerminus(QByteArrayView sequence, ProteinEnds ends) const
{
    return std::any_of(sites.begin(), sites.end(), [&](const ModificationSite &site) {
        return servesTerminus(site, ModificationSite::CTerminus, ModificationSite::ProteinCTerminus, ends.end,
                              sequence.back());
    });
}

bool ModificationRule::servesResidue(char residue) const
{
    return sites.contains(ModificationSite{ModificationSite::Residue, residue});
}

bool ModificationRule::overlaps(const ModificationRule &other) const
{
    return std::any_of(sites.begin(), sites.end(), [&](const ModificationSite &site) {
        return std::any_of(other.sites.begin(), other.sites.end(),
                           [&](const ModificationSite &another) { return site.overlaps(another); });
    });
}

} // namespace zav
