// SPDX-License-Identifier: Apache-2.0
#include "kelphysicalConsts.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <algorithm>

#include <zav/Modifications.h>

namespace zav::modifications {
namespace {

struct UnimodRow
{
    int accession = 0;
    QString name;
    double mass = 0.0;
    ElementalComposition composition;
    QStringList sites;
    QStringList losses; // "S:H3O4P1"
};

ElementalComposition compositionOf(const QList<QByteArray> &counts)
{
    ElementalComposition composition;
    int *const fields[] = {&composition.carbon,   &composition.hydrogen,   &composition.nitrogen,
                           &composition.oxygen,   &composition.phosphorus, &composition.sulfur,
                           &composition.carbon13, &composition.nitrogen15, &composition.deuterium,
                           &composition.oxygen18};
    for (qsizetype i = 0; i < counts.size(); ++i)
        *fields[i] = counts[i].toInt();
    return composition;
}

QList<UnimodRow> unimodRows()
{
    QFile file(QStringLiteral(ZAV_TEST_DATA_DIR "/modifications.tsv"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<UnimodRow> rows;
    bool isHeading = true;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().chopped(1);
        if (line.startsWith('#') || std::exchange(isHeading, false))
            continue;
        const QList<QByteArray> columns = line.split('\t');
        EXPECT_EQ(15, columns.size());
        rows.append({columns[0].toInt(), QString::fromUtf8(columns[1]), columns[2].toDouble(),
                     compositionOf(columns.mid(3, 10)), QString::fromUtf8(columns[13]).split(QLatin1Char(',')),
                     QString::fromUtf8(columns[14]).split(QLatin1Char(','), Qt::SkipEmptyParts)});
    }
    return rows;
}

QString formula(const ElementalComposition &loss)
{
    QString text; // as pyopenms writes it
    const auto add = [&](const char *element, int count) {
        if (count != 0)
            text += QLatin1String(element) + QString::number(count);
    };
    add("C", loss.carbon);
    add("H", loss.hydrogen);
    add("N", loss.nitrogen);
    add("O", loss.oxygen);
    add("P", loss.phosphorus);
    add("S", loss.sulfur);
    return text;
}

// Unimod rounds to six digits, and its 18O is that of an older atomic mass evaluation, 8e-7 heavier.
constexpr double ROUNDED = 1.1e-6;

TEST(Modifications, AgreeWithUnimodAsPyopenmsHasIt)
{
    const QList<UnimodRow> rows = unimodRows();
    ASSERT_EQ(all().size(), rows.size());
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const Modification &modification = all()[i].modification;
        SCOPED_TRACE(modification.name.toStdString());
        EXPECT_EQ(rows[i].accession, modification.unimodAccession);
        EXPECT_EQ(rows[i].name, modification.name);
        EXPECT_TRUE(rows[i].composition == modification.composition);
        EXPECT_NEAR(rows[i].mass, modification.mass, ROUNDED);
        EXPECT_FALSE(modification.isMassOnly());
        for (const QString &site : all()[i].sites)
            EXPECT_TRUE(rows[i].sites.contains(site)) << site.toStdString();
    }
}

TEST(Modifications, LossesAreAmongThoseOfUnimod)
{
    int count = 0;
    for (const UnimodRow &row : unimodRows()) {
        const Entry *entry = findByAccession(row.accession);
        ASSERT_NE(nullptr, entry);
        for (const QChar residue : QStringLiteral("ACDEFGHIKLMNPQRSTVWY")) {
            for (const NeutralLoss &loss : neutralLosses(entry->modification, residue)) {
                EXPECT_TRUE(row.losses.contains(residue + QLatin1Char(':') + formula(loss.composition)))
                    << row.name.toStdString() << " of " << residue.toLatin1();
                ++count;
            }
        }
    }
    EXPECT_EQ(4, count) << "Phospho of S and T, Oxidation of M, Malonyl of K";
}

TEST(Modifications, LossesAreNamedByTheirFormula)
{
    const auto nameOfLoss = [](const char *modification, char residue) {
        const QList<NeutralLoss> losses =
            neutralLosses(findByName(QLatin1String(modification))->modification, QLatin1Char(residue));
        return losses.isEmpty() ? QString() : losses.front().name;
    };
    EXPECT_EQ(QStringLiteral("-H3PO4"), nameOfLoss("Phospho", 'S'));
    EXPECT_EQ(QStringLiteral("-H3PO4"), nameOfLoss("Phospho", 'T'));
    EXPECT_EQ(QString(), nameOfLoss("Phospho", 'Y'));
    EXPECT_EQ(QStringLiteral("-CH4OS"), nameOfLoss("Oxidation", 'M'));
    EXPECT_EQ(QString(), nameOfLoss("Oxidation", 'P'));
    EXPECT_EQ(QStringLiteral("-CO2"), nameOfLoss("Malonyl", 'K'));
    EXPECT_EQ(QString(), nameOfLoss("Acetyl", 'K'));
    EXPECT_TRUE(neutralLosses(ofMass(79.966331), u'S').isEmpty());
}

TEST(Modifications, AreFoundByNameInAnyCaseAndByAccession)
{
    ASSERT_NE(nullptr, findByName(QStringLiteral("gln->PYRO-glu")));
    EXPECT_EQ(28, findByName(QStringLiteral("gln->PYRO-glu"))->modification.unimodAccession);
    EXPECT_EQ(findByAccession(121), findByName(QStringLiteral("GlyGly")));
    EXPECT_EQ(findByAccession(2), findByName(QStringLiteral("Amidation")));
    for (const Entry &entry : all()) {
        EXPECT_EQ(&entry, findByName(entry.modification.name));
        EXPECT_EQ(&entry, findByAccession(entry.modification.unimodAccession));
    }
    for (const char *unknown : {"", " Oxidation", "Oxidatio", "Foo", "35"})
        EXPECT_EQ(nullptr, findByName(QLatin1String(unknown))) << unknown;
    for (const int unknown : {-1, 0, 6, 2017, 1 << 30})
        EXPECT_EQ(nullptr, findByAccession(unknown)) << unknown;
}

TEST(Modifications, MassAloneIsNamedByItsSignAndUpToSixDecimals)
{
    EXPECT_EQ(QStringLiteral("+15.9949"), ofMass(15.9949).name);
    EXPECT_EQ(QStringLiteral("+15.994915"), ofMass(15.994914619).name);
    EXPECT_DOUBLE_EQ(15.994915, ofMass(15.994914619).mass);
    EXPECT_EQ(QStringLiteral("-18"), ofMass(-18.0).name);
    EXPECT_EQ(QStringLiteral("+100"), ofMass(100.0).name);
    EXPECT_EQ(QStringLiteral("-0.000001"), ofMass(-0.000001).name);
    EXPECT_TRUE(ofMass(15.9949).isMassOnly());
    EXPECT_TRUE(ofMass(15.9949).composition == ElementalComposition());
}

TEST(Modifications, CompositionsDifferInAnyElement)
{
    for (qsizetype i = 0; i < 10; ++i) {
        QList<QByteArray> counts(10, "1");
        const ElementalComposition ones = compositionOf(counts);
        counts[i] = "2";
        EXPECT_FALSE(ones == compositionOf(counts)) << i;
        EXPECT_GT(compositionOf(counts).monoisotopicMass(), ones.monoisotopicMass()) << i;
    }
}

TEST(Modifications, IsotopesWeighWhatTheEvaluationSays)
{
    using namespace kelphysicalConsts;
    constexpr double NINE_DIGITS = 1e-9; // periodictable 2.1.0, which has AME2020 with ten or eleven digits
    EXPECT_NEAR(30.9737619977, PHOSPHORUS_MASS, NINE_DIGITS);
    EXPECT_NEAR(2.01410177784, DEUTERIUM_MASS, NINE_DIGITS);
    EXPECT_NEAR(13.00335483534, CARBON13_MASS, NINE_DIGITS);
    EXPECT_NEAR(15.0001088983, NITROGEN15_MASS, NINE_DIGITS);
    EXPECT_NEAR(17.9991596121, OXYGEN18_MASS, NINE_DIGITS);
}

} // namespace
} // namespace zav::modifications
