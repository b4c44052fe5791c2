// SPDX-License-Identifier: Apache-2.0
#include <zav/Peptidoform.h>

#include "ProFormaReader.h"
#include "kelphysicalConsts.h"

#include <QtCore/QHash>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zav {

namespace {

constexpr double WATER_MASS = 2 * kelphysicalConsts::HYDROGEN_MASS + kelphysicalConsts::OXYGEN_MASS;

constexpr ushort LETTERS = 26;

std::array<double, LETTERS> massesByLetter()
{
    std::array<double, LETTERS> masses{};
    masses.fill(std::numeric_limits<double>::quiet_NaN());
    const QHash<QString, double> &standard = kelphysicalConsts::MONOISOTOPIC_MASSES_AMINO_ACIDS;
    for (auto residue = standard.begin(); residue != standard.end(); ++residue)
        masses[residue.key().front().unicode() - u'A'] = residue.value();
    return masses;
}

double residueMass(QChar residue)
{
    static const std::array<double, LETTERS> masses = massesByLetter();
    return residue >= u'A' && residue <= u'Z' ? masses[residue.unicode() - u'A']
                                              : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

Peptidoform::Peptidoform(QString sequence, QList<PlacedModification> modifications)
    : m_sequence(std::move(sequence)), m_modifications(std::move(modifications))
{
    const auto isBefore = [](const PlacedModification &a, const PlacedModification &b) {
        return a.position < b.position;
    };
    if (!std::is_sorted(m_modifications.cbegin(), m_modifications.cend(), isBefore))
        std::stable_sort(m_modifications.begin(), m_modifications.end(), isBefore);
}

Result<Peptidoform> Peptidoform::fromProForma(const QString &text)
{
    return ProFormaReader(text).read();
}

QString Peptidoform::toProForma() const
{
    QString text;
    auto next = m_modifications.cbegin();
    const auto bracketAt = [&](int position) {
        const bool isThere = next != m_modifications.cend() && next->position == position;
        return isThere ? QLatin1Char('[') + (next++)->modification.name + QLatin1Char(']') : QString();
    };

    if (const QString bracket = bracketAt(0); !bracket.isEmpty())
        text += bracket + QLatin1Char('-');
    for (int i = 0; i < length(); ++i)
        text += m_sequence[i] + bracketAt(i + 1);
    if (const QString bracket = bracketAt(length() + 1); !bracket.isEmpty())
        text += QLatin1Char('-') + bracket;
    return text;
}

double Peptidoform::monoisotopicMass() const
{
    double mass = WATER_MASS;
    for (const QChar residue : m_sequence)
        mass += residueMass(residue);
    for (const PlacedModification &placed : m_modifications)
        mass += placed.modification.mass;
    return mass;
}

std::size_t qHash(const Peptidoform &peptidoform, std::size_t seed) noexcept
{
    std::size_t hash = qHash(peptidoform.sequence(), seed);
    for (const PlacedModification &placed : peptidoform.modifications())
        hash = qHashMulti(hash, placed.position, placed.modification.name);
    return hash;
}

} // namespace zav
