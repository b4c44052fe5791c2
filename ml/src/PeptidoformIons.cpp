// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformIons.h"

#include "kelphysicalConsts.h"

#include <zav/Modifications.h>

#include <cstddef>
#include <utility>

namespace zav::peptidoformIons {

namespace {

using Table = std::array<Series, SERIES_COUNT>;

constexpr int LONGEST_ION = 51;   // the longest peptide, less one residue
constexpr int LONGEST_A_ION = 15; // as in the spectra that the network has learned from

constexpr ElementalComposition WATER{.hydrogen = 2, .oxygen = 1};
constexpr ElementalComposition AMMONIA{.hydrogen = 3, .nitrogen = 1};
constexpr ElementalComposition CARBON_MONOXIDE{.carbon = 1, .oxygen = 1};
constexpr ElementalComposition PHOSPHORIC_ACID{.hydrogen = 3, .oxygen = 4, .phosphorus = 1};
constexpr ElementalComposition TWO_PHOSPHORIC_ACIDS{.hydrogen = 6, .oxygen = 8, .phosphorus = 2};
constexpr ElementalComposition METHANESULFENIC_ACID{.carbon = 1, .hydrogen = 4, .oxygen = 1, .sulfur = 1};
constexpr ElementalComposition CARBON_DIOXIDE{.carbon = 1, .oxygen = 2};

Series intact(QChar ionType, int charge)
{
    double mass = charge * kelphysicalConsts::PROTON_MASS;
    if (ionType == u'y')
        mass += WATER.monoisotopicMass();
    if (ionType == u'a')
        mass -= CARBON_MONOXIDE.monoisotopicMass();
    return {ionType, charge, {}, mass, ionType == u'a' ? LONGEST_A_ION : LONGEST_ION};
}

Series less(Series ions, const QString &name, const ElementalComposition &composition)
{
    ions.neutralLoss = name;
    ions.startMass -= composition.monoisotopicMass();
    return ions;
}

/// The four series of a modification's loss, from a column on.
void addModificationLoss(Table *table, std::size_t column, const QString &name, const ElementalComposition &composition,
                         ModificationLoss loss, int count)
{
    for (const int charge : {1, 2}) {
        for (const QChar ionType : {u'y', u'b'}) {
            Series ions = less(intact(ionType, charge), name, composition);
            ions.loss = loss;
            ions.lossCount = count;
            (*table)[column++] = std::move(ions);
        }
    }
}

Table tabulate()
{
    const QString water = QStringLiteral("-H2O");
    const QString ammonia = QStringLiteral("-NH3");
    Table table{intact(u'y', 1),
                intact(u'b', 1),
                intact(u'y', 2),
                intact(u'b', 2),
                intact(u'a', 1),
                less(intact(u'y', 1), water, WATER),
                less(intact(u'y', 1), ammonia, AMMONIA),
                less(intact(u'b', 1), water, WATER),
                less(intact(u'b', 1), ammonia, AMMONIA),
                intact(u'y', 3),
                intact(u'b', 3)};
    addModificationLoss(&table, 11, QStringLiteral("-H3PO4"), PHOSPHORIC_ACID, ModificationLoss::PhosphoricAcid, 1);
    addModificationLoss(&table, 15, QStringLiteral("-2H3PO4"), TWO_PHOSPHORIC_ACIDS, ModificationLoss::PhosphoricAcid,
                        2);
    addModificationLoss(&table, 19, QStringLiteral("-CH4OS"), METHANESULFENIC_ACID,
                        ModificationLoss::MethanesulfenicAcid, 1);
    addModificationLoss(&table, 23, QStringLiteral("-CO2"), CARBON_DIOXIDE, ModificationLoss::CarbonDioxide, 1);
    return table;
}

} // namespace

const std::array<Series, SERIES_COUNT> &series()
{
    static const Table table = tabulate();
    return table;
}

ModificationLoss modificationLoss(const QString &name)
{
    if (name == QLatin1String("-H3PO4"))
        return ModificationLoss::PhosphoricAcid;
    if (name == QLatin1String("-CH4OS"))
        return ModificationLoss::MethanesulfenicAcid;
    if (name == QLatin1String("-CO2"))
        return ModificationLoss::CarbonDioxide;
    return ModificationLoss::None;
}

} // namespace zav::peptidoformIons
