// SPDX-License-Identifier: Apache-2.0
#include "FragmentLadder.h"

#include "PeptideVocabulary.h"
#include "kelphysicalConsts.h"

#include <array>
#include <numeric>

namespace zav::fragmentLadder {

namespace {

// Monoisotopic masses in Da, from IUPAC atomic masses.
constexpr double WATER_MASS = 18.010565;
constexpr double AMMONIA_MASS = 17.026549;
constexpr double CARBON_MONOXIDE_MASS = 27.994915;

constexpr int A_SERIES_SLOTS = 15;

using ResidueMasses = std::array<double, 128>;

ResidueMasses tabulateResidueMasses()
{
    ResidueMasses masses{};
    const QHash<QString, double> &table = kelphysicalConsts::MONOISOTOPIC_MASSES_AMINO_ACIDS;
    for (auto residue = table.cbegin(); residue != table.cend(); ++residue) {
        if (residue.key().size() == 1 && residue.key().front().unicode() < masses.size())
            masses[residue.key().front().unicode()] = residue.value();
    }
    return masses;
}

} // namespace

QList<IonSeries> ionSeries(int precursorCharge)
{
    constexpr double PROTON = kelphysicalConsts::PROTON_MASS;
    const int length = peptideVocabulary::maximumPeptideLength(precursorCharge);
    const QString none;
    const QString water = QStringLiteral("-H2O");
    const QString ammonia = QStringLiteral("-NH3");

    QList<IonSeries> series;
    series.reserve(11);
    series.append({u'y', 1, length, WATER_MASS + PROTON, none});
    series.append({u'b', 1, length, PROTON, none});
    if (precursorCharge > 1) {
        series.append({u'y', 2, length, WATER_MASS + 2 * PROTON, none});
        series.append({u'b', 2, length, 2 * PROTON, none});
    }
    series.append({u'a', 1, A_SERIES_SLOTS, PROTON - CARBON_MONOXIDE_MASS, none});
    series.append({u'y', 1, length, PROTON, water});
    series.append({u'y', 1, length, WATER_MASS + PROTON - AMMONIA_MASS, ammonia});
    series.append({u'b', 1, length, PROTON - WATER_MASS, water});
    series.append({u'b', 1, length, PROTON - AMMONIA_MASS, ammonia});
    if (precursorCharge > 2) {
        series.append({u'y', 3, length, WATER_MASS + 3 * PROTON, none});
        series.append({u'b', 3, length, 3 * PROTON, none});
    }
    return series;
}

int slotCount(const QList<IonSeries> &series)
{
    return std::accumulate(series.cbegin(), series.cend(), 0,
                           [](int count, const IonSeries &each) { return count + each.slotCount; });
}

bool startsAtCTerminus(QChar ionType)
{
    return ionType == u'y' || ionType == u'z';
}

Residue weigh(QChar residue, double cysteineFixedMass)
{
    // Built on first use: the table of the layer below has to exist by then.
    static const ResidueMasses masses = tabulateResidueMasses();
    return {residue.unicode() < masses.size() ? masses[residue.unicode()] : 0.0,
            residue == MODIFIED_RESIDUE ? cysteineFixedMass : 0.0};
}

} // namespace zav::fragmentLadder
