// SPDX-License-Identifier: Apache-2.0
#include <zav/Modifications.h>

#include "QuotedText.h"
#include "kelphysicalConsts.h"

#include <QtCore/QHash>

#include <algorithm>
#include <cmath>

namespace zav {

double ElementalComposition::monoisotopicMass() const
{
    using namespace kelphysicalConsts;
    return carbon * CARBON_MASS + hydrogen * HYDROGEN_MASS + nitrogen * NITROGEN_MASS + oxygen * OXYGEN_MASS +
           phosphorus * PHOSPHORUS_MASS + sulfur * SULFUR_MASS + carbon13 * CARBON13_MASS +
           nitrogen15 * NITROGEN15_MASS + deuterium * DEUTERIUM_MASS + oxygen18 * OXYGEN18_MASS;
}

namespace modifications {

namespace {

struct Row
{
    int accession;
    const char *name;
    ElementalComposition composition;
    const char *sites; // parted by commas
};

// Compositions of Unimod. A site stands here where laboratories meet the modification there daily; Unimod lists more.
constexpr Row ROWS[] = {
    {1, "Acetyl", {.carbon = 2, .hydrogen = 2, .oxygen = 1}, "protein-N-term,K,N-term"},
    {2, "Amidated", {.hydrogen = 1, .nitrogen = 1, .oxygen = -1}, "C-term,protein-C-term"},
    {3, "Biotin", {.carbon = 10, .hydrogen = 14, .nitrogen = 2, .oxygen = 2, .sulfur = 1}, "K,N-term"},
    {4, "Carbamidomethyl", {.carbon = 2, .hydrogen = 3, .nitrogen = 1, .oxygen = 1}, "C"},
    {5, "Carbamyl", {.carbon = 1, .hydrogen = 1, .nitrogen = 1, .oxygen = 1}, "N-term,K"},
    {7, "Deamidated", {.hydrogen = -1, .nitrogen = -1, .oxygen = 1}, "N,Q,R"}, // on R: citrulline
    {21, "Phospho", {.hydrogen = 1, .oxygen = 3, .phosphorus = 1}, "S,T,Y"},
    {24, "Propionamide", {.carbon = 3, .hydrogen = 5, .nitrogen = 1, .oxygen = 1}, "C"},
    {27, "Glu->pyro-Glu", {.hydrogen = -2, .oxygen = -1}, "N-term E"},
    {28, "Gln->pyro-Glu", {.hydrogen = -3, .nitrogen = -1}, "N-term Q"},
    {31, "Pyridylethyl", {.carbon = 7, .hydrogen = 7, .nitrogen = 1}, "C"},
    {34, "Methyl", {.carbon = 1, .hydrogen = 2}, "K,R"},
    {35, "Oxidation", {.oxygen = 1}, "M,W,P,K"}, // on P and K: hydroxylation
    {36, "Dimethyl", {.carbon = 2, .hydrogen = 4}, "K,R,N-term"},
    {37, "Trimethyl", {.carbon = 3, .hydrogen = 6}, "K"},
    {39, "Methylthio", {.carbon = 1, .hydrogen = 2, .sulfur = 1}, "C"},
    {40, "Sulfo", {.oxygen = 3, .sulfur = 1}, "Y,S,T"},
    {43, "HexNAc", {.carbon = 8, .hydrogen = 13, .nitrogen = 1, .oxygen = 5}, "S,T,N"},
    {58, "Propionyl", {.carbon = 3, .hydrogen = 4, .oxygen = 1}, "K,N-term"},
    {64, "Succinyl", {.carbon = 4, .hydrogen = 4, .oxygen = 3}, "K"},
    {108, "Nethylmaleimide", {.carbon = 6, .hydrogen = 7, .nitrogen = 1, .oxygen = 2}, "C"},
    {121, "GG", {.carbon = 4, .hydrogen = 6, .nitrogen = 2, .oxygen = 2}, "K"},
    {122, "Formyl", {.carbon = 1, .oxygen = 1}, "K,N-term,protein-N-term"},
    {188, "Label:13C(6)", {.carbon = -6, .carbon13 = 6}, "K,R"},
    {193, "Label:18O(2)", {.oxygen = -2, .oxygen18 = 2}, "C-term"},
    {214,
     "iTRAQ4plex",
     {.carbon = 4, .hydrogen = 12, .nitrogen = 1, .oxygen = 1, .carbon13 = 3, .nitrogen15 = 1},
     "K,N-term,Y"},
    {258, "Label:18O(1)", {.oxygen = -1, .oxygen18 = 1}, "C-term"},
    {259, "Label:13C(6)15N(2)", {.carbon = -6, .nitrogen = -2, .carbon13 = 6, .nitrogen15 = 2}, "K"},
    {267, "Label:13C(6)15N(4)", {.carbon = -6, .nitrogen = -4, .carbon13 = 6, .nitrogen15 = 4}, "R"},
    {354, "Nitro", {.hydrogen = -1, .nitrogen = 1, .oxygen = 2}, "Y,W"},
    {385, "Ammonia-loss", {.hydrogen = -3, .nitrogen = -1}, "N-term C,N"},
    {425, "Dioxidation", {.oxygen = 2}, "M,W"},
    {481, "Label:2H(4)", {.hydrogen = -4, .deuterium = 4}, "K"},
    {737,
     "TMT6plex",
     {.carbon = 8, .hydrogen = 20, .nitrogen = 1, .oxygen = 2, .carbon13 = 4, .nitrogen15 = 1},
     "K,N-term"},
    {747, "Malonyl", {.carbon = 3, .hydrogen = 2, .oxygen = 3}, "K"},
    {1289, "Butyryl", {.carbon = 4, .hydrogen = 6, .oxygen = 1}, "K"},
    {1363, "Crotonyl", {.carbon = 4, .hydrogen = 4, .oxygen = 1}, "K"},
    {1848, "Gluratylation", {.carbon = 5, .hydrogen = 6, .oxygen = 3}, "K"},
    {1849, "hydroxyisobutyryl", {.carbon = 4, .hydrogen = 6, .oxygen = 2}, "K"},
    {2016,
     "TMTpro",
     {.carbon = 8, .hydrogen = 25, .nitrogen = 1, .oxygen = 3, .carbon13 = 7, .nitrogen15 = 2},
     "K,N-term"},
};

struct LossRow
{
    int accession;
    const char *residues;
    const char *name;
    ElementalComposition composition;
};

constexpr LossRow LOSSES[] = {
    {21, "ST", "-H3PO4", {.hydrogen = 3, .oxygen = 4, .phosphorus = 1}},
    {35, "M", "-CH4OS", {.carbon = 1, .hydrogen = 4, .oxygen = 1, .sulfur = 1}},
    {747, "K", "-CO2", {.carbon = 1, .oxygen = 2}},
};

// Beside Unimod's own.
constexpr struct
{
    const char *name; // in lower case
    int accession;
} OTHER_NAMES[] = {{"amidation", 2}, {"glygly", 121}, {"glutaryl", 1848}};

Entry entryOf(const Row &row)
{
    Entry entry;
    entry.modification = {QString::fromLatin1(row.name), row.accession, row.composition,
                          row.composition.monoisotopicMass()};
    entry.sites = QString::fromLatin1(row.sites).split(QLatin1Char(','));
    for (const LossRow &loss : LOSSES) {
        if (loss.accession != row.accession)
            continue;
        entry.losses.append({QString::fromLatin1(loss.name), loss.composition});
        entry.lossSites = QString::fromLatin1(loss.residues);
    }
    return entry;
}

QList<Entry> makeTable()
{
    QList<Entry> table;
    for (const Row &row : ROWS)
        table.append(entryOf(row));
    return table;
}

QHash<QString, int> accessionsByName()
{
    QHash<QString, int> accessions;
    for (const Entry &entry : all())
        accessions.insert(entry.modification.name.toLower(), entry.modification.unimodAccession);
    for (const auto &other : OTHER_NAMES)
        accessions.insert(QString::fromLatin1(other.name), other.accession);
    return accessions;
}

constexpr double DECIMALS = 1e6;     // a mass-only modification has six of them
constexpr double MAXIMUM_MASS = 1e6; // Da

// Beginnings of what ProForma has from elsewhere.
constexpr struct
{
    const char *prefix;
    const char *what;
} OTHER_DICTIONARIES[] = {
    {"Obs:", "observed masses"}, {"Glycan:", "glycans"}, {"GNO:", "glycans"},         {"G:", "glycans"},
    {"Formula:", "formulas"},    {"INFO:", "remarks"},   {"MOD:", "PSI-MOD"},         {"M:", "PSI-MOD"},
    {"RESID:", "RESID"},         {"R:", "RESID"},        {"XLMOD:", "cross-linkers"}, {"X:", "cross-linkers"}};

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

Error unknown(const QString &text)
{
    return {InvalidInput, QStringLiteral("no modification %1").arg(quotedText(text))};
}

// `text` begins with the sign.
Result<Modification> massFromText(const QString &text)
{
    bool isNumber = std::all_of(text.begin() + 1, text.end(), [](QChar c) { return isDigit(c) || c == u'.'; });
    const double mass = isNumber ? text.toDouble(&isNumber) : 0.0;
    if (!isNumber || std::abs(mass) > MAXIMUM_MASS)
        return Error(InvalidInput, QStringLiteral("no mass of up to 1e6 Da: %1").arg(quotedText(text)));
    Modification modification = ofMass(mass);
    if (modification.mass == 0.0)
        return Error(InvalidInput, QStringLiteral("no mass at all: %1").arg(quotedText(text)));
    return modification;
}

Result<Modification> accessionFromText(const QString &text, qsizetype prefixLength)
{
    const QString digits = text.mid(prefixLength);
    const bool isNumber = std::all_of(digits.begin(), digits.end(), isDigit);
    const Entry *entry = isNumber ? findByAccession(digits.toInt()) : nullptr;
    return entry ? Result<Modification>(entry->modification) : Result<Modification>(unknown(text));
}

} // namespace

const QList<Entry> &all()
{
    static const QList<Entry> table = makeTable();
    return table;
}

const Entry *findByName(const QString &name)
{
    static const QHash<QString, int> accessions = accessionsByName();
    return findByAccession(accessions.value(name.toLower()));
}

const Entry *findByAccession(int unimodAccession)
{
    const auto found =
        std::lower_bound(all().begin(), all().end(), unimodAccession, [](const Entry &entry, int accession) {
            return entry.modification.unimodAccession < accession;
        });
    return found != all().end() && found->modification.unimodAccession == unimodAccession ? &*found : nullptr;
}

Modification ofMass(double mass)
{
    Modification modification;
    modification.mass = std::round(mass * DECIMALS) / DECIMALS;
    QString name = QString::number(modification.mass, 'f', 6);
    while (name.endsWith(QLatin1Char('0')))
        name.chop(1);
    if (name.endsWith(QLatin1Char('.')))
        name.chop(1);
    modification.name = modification.mass < 0.0 ? name : QLatin1Char('+') + name;
    return modification;
}

Result<Modification> fromText(const QString &text)
{
    const QLatin1String accessionPrefix("UNIMOD:");
    const QLatin1String namePrefix("U:");
    if (text.isEmpty())
        return Error(InvalidInput, QStringLiteral("no modification"));
    if (text.startsWith(accessionPrefix, Qt::CaseInsensitive))
        return accessionFromText(text, accessionPrefix.size());
    for (const auto &other : OTHER_DICTIONARIES) {
        if (text.startsWith(QLatin1String(other.prefix), Qt::CaseInsensitive))
            return Error(
                InvalidInput,
                QStringLiteral("unsupported: %1 ('%2')").arg(QLatin1String(other.what), QLatin1String(other.prefix)));
    }
    const QString name = text.startsWith(namePrefix, Qt::CaseInsensitive) ? text.mid(namePrefix.size()) : text;
    if (name.startsWith(u'+') || name.startsWith(u'-'))
        return massFromText(name);
    const Entry *entry = findByName(name);
    return entry ? Result<Modification>(entry->modification) : Result<Modification>(unknown(name));
}

QList<NeutralLoss> neutralLosses(const Modification &modification, QChar residue)
{
    const Entry *entry = findByAccession(modification.unimodAccession);
    return entry && entry->lossSites.contains(residue) ? entry->losses : QList<NeutralLoss>();
}

} // namespace modifications

} // namespace zav
