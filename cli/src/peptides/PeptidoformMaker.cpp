// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformMaker.h"

#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <numeric>

namespace zav {

namespace {

Error refusal(const QString &message)
{
    return {InvalidInput, message};
}

using Indices = QVarLengthArray<int, PeptidoformRules::MAXIMUM_VARIABLE>;

/// The next choice of as many of `count` things in the order of their indices; false behind the last.
bool nextCombination(Indices *chosen, int count)
{
    const auto size = static_cast<int>(chosen->size());
    for (int i = size - 1; i >= 0; --i) {
        if ((*chosen)[i] == count - size + i)
            continue;
        std::iota(chosen->begin() + i, chosen->end(), (*chosen)[i] + 1);
        return true;
    }
    return false;
}

/// The next choice of one rule for each chosen site, the last site's changing first; false behind the last.
template <typename Sites>
bool nextRules(const Sites &sites, const Indices &chosen, Indices *rules)
{
    for (qsizetype i = chosen.size() - 1; i >= 0; --i) {
        if (++(*rules)[i] < sites[static_cast<std::size_t>(chosen[i])].rules.size())
            return true;
        (*rules)[i] = 0;
    }
    return false;
}

/// Shows every choice of sites, and of one rule for each as an index into the site's rules, to `visit(sites, rules)`.
template <typename Sites, typename Visit>
void visitChoices(const Sites &sites, int mostSites, const Visit &visit)
{
    int left = PeptidoformMaker::MOST_OF_A_PEPTIDE;
    const auto siteCount = static_cast<int>(sites.size());
    for (int count = 0; count <= std::min(mostSites, siteCount); ++count) {
        Indices chosen(count);
        std::iota(chosen.begin(), chosen.end(), 0);
        do {
            Indices rules(count, 0);
            do {
                if (left-- == 0)
                    return;
                visit(chosen, rules);
            } while (nextRules(sites, chosen, &rules));
        } while (nextCombination(&chosen, siteCount));
    }
}

} // namespace

QList<ModificationRule> PeptidoformRules::usualFixed()
{
    static const QList<ModificationRule> rules = {ModificationRule::parse(QStringLiteral("Carbamidomethyl@C")).value()};
    return rules;
}

Error PeptidoformRules::check() const
{
    if (maxVariable < 0 || maxVariable > MAXIMUM_VARIABLE)
        return refusal(QStringLiteral("%1 variable modifications of a peptide are not within 0 to %2")
                           .arg(maxVariable)
                           .arg(MAXIMUM_VARIABLE));
    for (qsizetype i = 0; i < fixed.size(); ++i) {
        for (qsizetype j = 0; j < i; ++j) {
            if (fixed[i].overlaps(fixed[j]))
                return refusal(
                    QStringLiteral("%1 and %2 are fixed at the same site").arg(fixed[j].text(), fixed[i].text()));
        }
        for (const ModificationRule &rule : variable) {
            if (rule.modification == fixed[i].modification && rule.overlaps(fixed[i]))
                return refusal(QStringLiteral("%1 cannot be variable: %2 is fixed").arg(rule.text(), fixed[i].text()));
        }
    }
    return {};
}

PeptidoformMaker::PeptidoformMaker(const PeptidoformRules &rules) : m_rules(rules)
{
    for (std::size_t letter = 0; letter < m_ofResidue.size(); ++letter) {
        const char residue = static_cast<char>('A' + letter);
        OfResidue &served = m_ofResidue[letter];
        for (int i = 0; i < m_rules.fixed.size(); ++i) {
            if (m_rules.fixed[i].servesResidue(residue))
                served.fixed = i;
        }
        for (int i = 0; i < m_rules.variable.size(); ++i) {
            if (m_rules.variable[i].servesResidue(residue))
                served.variable.append(i);
        }
        dropIdle(&served);
    }
}

QList<Peptidoform> PeptidoformMaker::make(QByteArrayView sequence, ProteinEnds ends) const
{
    const QString letters = QString::fromLatin1(sequence);
    const QList<PlacedModification> fixed = fixedOf(sequence, ends);
    const std::vector<VariableSite> sites = sitesOf(sequence, ends);
    QList<Peptidoform> peptidoforms;
    visitChoices(sites, m_rules.maxVariable, [&](const Indices &chosen, const Indices &rules) {
        QList<PlacedModification> placed = fixed;
        for (qsizetype i = 0; i < chosen.size(); ++i) {
            const VariableSite &site = sites[static_cast<std::size_t>(chosen[i])];
            placed.removeIf([&](const PlacedModification &other) { return other.position == site.position; });
            placed.append({site.position, m_rules.variable[site.rules[rules[i]]].modification});
        }
        peptidoforms.append(Peptidoform(letters, placed));
    });
    return peptidoforms;
}

QList<double> PeptidoformMaker::addedMasses(QByteArrayView sequence, ProteinEnds ends) const
{
    double fixed = 0.0;
    for (const PlacedModification &placed : fixedOf(sequence, ends))
        fixed += placed.modification.mass;
    const std::vector<VariableSite> sites = sitesOf(sequence, ends);
    QList<double> masses;
    visitChoices(sites, m_rules.maxVariable, [&](const Indices &chosen, const Indices &rules) {
        double mass = fixed;
        for (qsizetype i = 0; i < chosen.size(); ++i) {
            const VariableSite &site = sites[static_cast<std::size_t>(chosen[i])];
            mass += m_rules.variable[site.rules[rules[i]]].modification.mass - site.fixedMass;
        }
        masses.append(mass);
    });
    return masses;
}

/// The sum over all choices of up to `maxVariable` sites of the product of their numbers of rules: the elementary
/// symmetric polynomials of those numbers, built up site by site.
double PeptidoformMaker::count(QByteArrayView sequence, ProteinEnds ends) const
{
    std::array<double, PeptidoformRules::MAXIMUM_VARIABLE + 1> ways{1.0}; // by the number of sites chosen
    for (const VariableSite &site : sitesOf(sequence, ends)) {
        for (auto chosen = static_cast<std::size_t>(m_rules.maxVariable); chosen > 0; --chosen)
            ways[chosen] += ways[chosen - 1] * static_cast<double>(site.rules.size());
    }
    return std::accumulate(ways.begin(), ways.end(), 0.0);
}

Peptidoform PeptidoformMaker::withFixed(const Peptidoform &named) const
{
    QList<PlacedModification> placed = named.modifications();
    for (const PlacedModification &fixed : fixedOf(named.sequence().toLatin1(), {})) {
        const bool isTaken = std::any_of(placed.cbegin(), placed.cend(), [&](const PlacedModification &other) {
            return other.position == fixed.position;
        });
        if (!isTaken)
            placed.append(fixed);
    }
    return Peptidoform(named.sequence(), placed);
}

PeptidoformMaker::OfResidue PeptidoformMaker::rulesAt(QByteArrayView sequence, ProteinEnds ends, int position) const
{
    if (position > 0 && position <= sequence.size())
        return ofResidue(sequence[position - 1]);
    const auto serves = [&](const ModificationRule &rule) {
        return position == 0 ? rule.servesNTerminus(sequence, ends) : rule.servesCTerminus(sequence, ends);
    };
    OfResidue rules;
    for (int i = 0; i < m_rules.fixed.size(); ++i) {
        if (serves(m_rules.fixed[i]))
            rules.fixed = i;
    }
    for (int i = 0; i < m_rules.variable.size(); ++i) {
        if (serves(m_rules.variable[i]))
            rules.variable.append(i);
    }
    dropIdle(&rules);
    return rules;
}

/// Leaves out variable rules that would make a peptidoform a second time: those of a modification that an earlier rule
/// puts at the place already.
void PeptidoformMaker::dropIdle(OfResidue *rules) const
{
    QList<int> kept;
    for (const int rule : std::as_const(rules->variable)) {
        const Modification &modification = m_rules.variable[rule].modification;
        const bool isThere = std::any_of(kept.cbegin(), kept.cend(), [&](int other) {
            return m_rules.variable[other].modification == modification;
        });
        if (!isThere)
            kept.append(rule);
    }
    rules->variable = kept;
}

QList<PlacedModification> PeptidoformMaker::fixedOf(QByteArrayView sequence, ProteinEnds ends) const
{
    QList<PlacedModification> placed;
    if (m_rules.fixed.isEmpty())
        return placed;
    for (int position = 0; position <= sequence.size() + 1; ++position) {
        const int fixed = rulesAt(sequence, ends, position).fixed;
        if (fixed >= 0)
            placed.append({position, m_rules.fixed[fixed].modification});
    }
    return placed;
}

std::vector<PeptidoformMaker::VariableSite> PeptidoformMaker::sitesOf(QByteArrayView sequence, ProteinEnds ends) const
{
    std::vector<VariableSite> sites;
    if (m_rules.variable.isEmpty() || m_rules.maxVariable == 0)
        return sites;
    for (int position = 0; position <= sequence.size() + 1; ++position) {
        const OfResidue rules = rulesAt(sequence, ends, position);
        if (rules.variable.isEmpty())
            continue;
        const double fixedMass = rules.fixed < 0 ? 0.0 : m_rules.fixed[rules.fixed].modification.mass;
        sites.push_back({position, fixedMass, rules.variable});
    }
    return sites;
}

} // namespace zav
