// SPDX-License-Identifier: Apache-2.0
#include "UntrainedModifications.h"

#include "PeptidoformRows.h"

#include <algorithm>

namespace zav {

namespace {

// Lower case, so that they differ from every residue.
constexpr QChar N_TERMINUS = u'n';
constexpr QChar C_TERMINUS = u'c';

constexpr QChar CYSTEINE = u'C';

QChar siteNamed(const QString &name)
{
    if (name == QLatin1String("N-term"))
        return N_TERMINUS;
    return name == QLatin1String("C-term") ? C_TERMINUS : name.front();
}

QString nameOf(QChar site)
{
    if (site == N_TERMINUS)
        return QStringLiteral("the N-terminus");
    return site == C_TERMINUS ? QStringLiteral("the C-terminus") : QString(site);
}

QChar siteOf(const PlacedModification &placed, const QString &sequence)
{
    const int position = peptidoformRows::networkPosition(placed);
    if (position <= 0)
        return N_TERMINUS;
    return position > sequence.size() ? C_TERMINUS : sequence.at(position - 1);
}

bool hasFreeCysteine(const Peptidoform &peptidoform)
{
    const auto cysteines = peptidoform.sequence().count(CYSTEINE);
    if (cysteines == 0)
        return false;
    const QList<PlacedModification> &placed = peptidoform.modifications();
    const auto modified = std::count_if(placed.cbegin(), placed.cend(), [&](const PlacedModification &each) {
        return siteOf(each, peptidoform.sequence()) == CYSTEINE;
    });
    return modified < cysteines;
}

} // namespace

UntrainedModifications::UntrainedModifications(const QStringList &trained)
{
    for (const QString &each : trained) {
        const qsizetype at = each.indexOf(QLatin1Char('@'));
        m_known.insert({at < 0 ? QString() : each.left(at), siteNamed(each.mid(at + 1))});
    }
}

void UntrainedModifications::look(const Peptidoform &peptidoform)
{
    for (const PlacedModification &placed : peptidoform.modifications())
        lookAt(placed.modification.name, siteOf(placed, peptidoform.sequence()));
    if (hasFreeCysteine(peptidoform))
        lookAt(QString(), CYSTEINE);
}

void UntrainedModifications::lookAt(const QString &name, QChar site)
{
    const Place place{name, site};
    if (m_known.contains(place))
        return;
    m_known.insert(place);
    m_remarks.append(name.isEmpty()
                         ? QStringLiteral("Cysteine without a modification is unknown to the network")
                         : QStringLiteral("Modification %1 at %2 is unknown to the network").arg(name, nameOf(site)));
}

} // namespace zav
