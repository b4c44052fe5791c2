// SPDX-License-Identifier: Apache-2.0
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QMap>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {
namespace {

constexpr double PROTON = 1.00727646677;
constexpr double SPACING = 1.0033548;

QList<QPointF> envelope(double mass, int charge = 1, double minRelativeAbundance = 0.0)
{
    const auto result = TheoreticalIsotopePoint2dListGenerator().buildTheoreticalIsotopicDistributionPoints(
        mass, charge, minRelativeAbundance);
    EXPECT_FALSE(result.hasError()) << result.error().toString().toStdString();
    return result.hasError() ? QList<QPointF>() : result.value();
}

Error failure(double mass, int charge, double minRelativeAbundance)
{
    const auto result = TheoreticalIsotopePoint2dListGenerator().buildTheoreticalIsotopicDistributionPoints(
        mass, charge, minRelativeAbundance);
    return result.error();
}

double tallest(const QList<QPointF> &points)
{
    double height = 0.0;
    for (const QPointF &point : points)
        height = std::max(height, point.y());
    return height;
}

// The rows of a tab-separated table without its comments and its header line.
QList<QList<QByteArray>> tableRows(const char *fileName)
{
    QFile file(QStringLiteral(ZAV_TEST_DATA_DIR "/") + QLatin1String(fileName));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << fileName;
    QList<QList<QByteArray>> rows;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (!line.isEmpty() && !line.startsWith('#'))
            rows.append(line.split('\t'));
    }
    EXPECT_GT(rows.size(), 1) << fileName;
    rows.removeFirst();
    return rows;
}

// Abundances by peak number, by mass.
QMap<double, QMap<int, double>> contourTable()
{
    QMap<double, QMap<int, double>> table;
    for (const QList<QByteArray> &row : tableRows("averagine-contour.tsv"))
        table[row[0].toDouble()][row[1].toInt()] = row[2].toDouble();
    return table;
}

// Compares the envelopes to a table's rows of one source; a missing peak counts as 0.
void expectAgreement(const QByteArray &source, double shareOfTallest)
{
    int compared = 0;
    for (const QList<QByteArray> &row : tableRows("averagine.tsv")) {
        if (row[1] != source)
            continue;
        SCOPED_TRACE(row[0].toStdString() + " Da");
        const QList<QPointF> points = envelope(row[0].toDouble());
        for (int k = 0; k < 5; ++k) {
            const double height = k < points.size() ? points[k].y() : 0.0;
            EXPECT_NEAR(row[2 + k].toDouble(), height, shareOfTallest * tallest(points)) << "peak " << k;
        }
        ++compared;
    }
    EXPECT_EQ(6, compared);
}

TEST(IsotopeEnvelope, AgreesWithTheFractionalAveragineTable)
{
    expectAgreement("fractional", 0.001);
}

TEST(IsotopeEnvelope, IsCloseToWholeAtomEnvelopes)
{
    // Rounding to whole atoms moves a composition, above all its sulfur, by half an atom.
    expectAgreement("IsoSpec", 0.03);
}

TEST(IsotopeEnvelope, AgreesWithContourIntegrationToSixDigits)
{
    // The power series is cut after twelve terms, which costs 3e-6 of an abundance at the most.
    constexpr double CUT_SERIES = 3e-6;
    const auto table = contourTable();
    ASSERT_EQ(8, table.size());
    for (auto row = table.cbegin(); row != table.cend(); ++row) {
        const QList<QPointF> points = envelope(row.key());
        for (auto peak = row->cbegin(); peak != row->cend() && peak.key() < points.size(); ++peak)
            EXPECT_NEAR(1.0, points[peak.key()].y() / *peak, CUT_SERIES) << row.key() << " Da, peak " << peak.key();
    }
}

TEST(IsotopeEnvelope, EndsBeforeTheFirstPeakUnderAThousandthOfTheTallest)
{
    const auto table = contourTable();
    for (const double mass : {200.0, 1000.0, 2000.0, 5000.0, 20000.0}) {
        const QMap<int, double> abundances = table.value(mass);
        ASSERT_FALSE(abundances.isEmpty());
        const double limit = 0.001 * *std::max_element(abundances.cbegin(), abundances.cend());
        // The envelope rises from its first peak, then falls: walk back from the light tail's end.
        int count = static_cast<int>(abundances.size());
        while (count > 0 && abundances[count - 1] < limit)
            --count;
        ASSERT_LT(count, abundances.size()) << "the table reaches past the end";
        EXPECT_EQ(count, envelope(mass).size()) << mass << " Da";
    }
}

TEST(IsotopeEnvelope, HeavyEnvelopesRunThroughTheirRisingSide)
{
    // At 1e5 Da the first peak is 1e-24 of the tallest, which stands near 1e5 * 5.85e-4 extra neutrons.
    const QList<QPointF> points = envelope(1e5);
    const auto highest = std::max_element(points.cbegin(), points.cend(),
                                          [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); });
    EXPECT_NEAR(61, highest - points.cbegin(), 5);
    EXPECT_DOUBLE_EQ(1.0, points.first().y());
    EXPECT_GE(points.last().y(), 0.001 * highest->y());
    EXPECT_LT(points.last().y(), 0.002 * highest->y());
}

TEST(IsotopeEnvelope, StandsOnTheMassToChargeScale)
{
    for (const int charge : {1, 2, 3, 7}) {
        const QList<QPointF> points = envelope(1234.5678, charge);
        ASSERT_GE(points.size(), 2);
        // Sums of doubles near 1000.
        for (int k = 0; k < points.size(); ++k)
            EXPECT_NEAR((1234.5678 + charge * PROTON + k * SPACING) / charge, points[k].x(), 1e-12 * 1234.0);
    }
}

TEST(IsotopeEnvelope, ChargeDoesNotChangeTheAbundances)
{
    const QList<QPointF> single = envelope(1500.0, 1);
    const QList<QPointF> triple = envelope(1500.0, 3);
    ASSERT_EQ(single.size(), triple.size());
    for (int k = 0; k < single.size(); ++k)
        EXPECT_EQ(single[k].y(), triple[k].y());
}

TEST(IsotopeEnvelope, HasTwoPeaksHoweverSmallTheMass)
{
    EXPECT_EQ(2, envelope(1.0).size()) << "the second peak is 0.05 % of the first";
    EXPECT_EQ(2, envelope(1e-9).size());
    EXPECT_EQ(2, envelope(std::numeric_limits<double>::min()).size());
    EXPECT_GT(envelope(1e-9).last().y(), 0.0);
    EXPECT_EQ(1.0, envelope(1e-9).first().y());
}

TEST(IsotopeEnvelope, EnvelopeOfASumIsTheProductOfTheEnvelopes)
{
    constexpr double SMALLEST = 1e-12;
    const QList<QPointF> first = envelope(700.0, 1, SMALLEST);
    const QList<QPointF> second = envelope(1300.0, 1, SMALLEST);
    const QList<QPointF> both = envelope(2000.0, 1, SMALLEST);
    for (int k = 0; k < 8; ++k) {
        double product = 0.0;
        for (int j = 0; j <= k; ++j)
            product += first[j].y() * second[k - j].y();
        EXPECT_NEAR(product, both[k].y(), 1e-14 * tallest(both)) << "peak " << k;
    }
}

TEST(IsotopeEnvelope, IsSmoothInMass)
{
    // Relative to the mass step, the second peak's height never jumps: 5.458e-4 per Da throughout.
    for (double mass = 50.0; mass < 4000.0; mass += 0.37)
        EXPECT_NEAR(5.45784e-4, envelope(mass)[1].y() / mass, 1e-9);
}

TEST(IsotopeEnvelope, SmallestAbundanceSetsTheEnd)
{
    // 1000 Da: 1, 0.546, 0.190, 0.0496, 0.0103, 0.00178, 0.000267, ... of the first, which is the tallest.
    const std::pair<double, int> expected[] = {{0.5, 2},   {0.15, 3},   {0.04, 4},   {0.01, 5},
                                               {0.001, 6}, {0.0002, 7}, {0.00003, 8}};
    for (const auto &[smallest, count] : expected)
        EXPECT_EQ(count, envelope(1000.0, 1, smallest).size()) << smallest;
}

TEST(IsotopeEnvelope, SmallestAbundanceZeroStandsForOneThousandth)
{
    for (const double mass : {57.02, 1000.0, 2500.0, 1e5})
        EXPECT_EQ(envelope(mass, 2, 0.001), envelope(mass, 2, 0.0));
}

TEST(IsotopeEnvelope, SmallestAbundanceNeverTakesTheFirstTwoPeaks)
{
    EXPECT_EQ(2, envelope(1000.0, 1, 1.0).size());
    EXPECT_EQ(2, envelope(57.02, 1, 1.0).size());
}

TEST(IsotopeEnvelope, IsPositiveAndEndsEvenWithATinySmallestAbundance)
{
    for (const double mass : {1.0, 57.02, 200.0, 5000.0}) {
        const QList<QPointF> points = envelope(mass, 1, std::numeric_limits<double>::denorm_min());
        EXPECT_LT(points.size(), 1000);
        for (const QPointF &point : points)
            EXPECT_GT(point.y(), 0.0);
    }
}

TEST(IsotopeEnvelope, IsFiniteUpToTheHighestMass)
{
    for (const QPointF &point : envelope(1e6, 50))
        ASSERT_TRUE(std::isfinite(point.x()) && std::isfinite(point.y()) && point.y() > 0.0);
}

TEST(IsotopeEnvelope, WithoutAMassIsTheMonoisotopicPeakAlone)
{
    for (const double mass : {0.0, -0.0, -27.5, -1e6, std::numeric_limits<double>::lowest()}) {
        for (const int charge : {1, 2, 3}) {
            const QList<QPointF> points = envelope(mass, charge);
            ASSERT_EQ(1, points.size()) << mass;
            EXPECT_EQ(mass / charge + PROTON, points.first().x());
            EXPECT_EQ(1.0, points.first().y());
        }
    }
    EXPECT_EQ(1, envelope(0.0, 1, std::numeric_limits<double>::denorm_min()).size());
}

TEST(IsotopeEnvelope, WithoutAMassStillRefusesWhatElseIsOutOfRange)
{
    EXPECT_TRUE(failure(0.0, 0, 0.0).equals(InvalidInput));
    EXPECT_TRUE(failure(-27.5, -1, 0.0).equals(InvalidInput));
    EXPECT_TRUE(failure(0.0, 1, 1.001).equals(InvalidInput));
}

TEST(IsotopeEnvelope, RefusesMassesOutOfRange)
{
    constexpr double INFINITE = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double mass : {-INFINITE, INFINITE, nan, std::nextafter(1e6, INFINITE)})
        EXPECT_TRUE(failure(mass, 1, 0.0).equals(InvalidInput)) << mass;
}

TEST(IsotopeEnvelope, RefusesChargesBelowOne)
{
    for (const int charge : {0, -1, std::numeric_limits<int>::min()})
        EXPECT_TRUE(failure(1000.0, charge, 0.0).equals(InvalidInput)) << charge;
}

TEST(IsotopeEnvelope, RefusesASmallestAbundanceOutOfRange)
{
    for (const double smallest :
         {-0.001, 1.001, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_TRUE(failure(1000.0, 1, smallest).equals(InvalidInput)) << smallest;
}

TEST(IsotopeEnvelope, ErrorsNameTheValueAndCarryNoTrailYet)
{
    const Error error = failure(2.5e6, 1, 0.0);
    EXPECT_EQ(QStringLiteral("An isotope envelope needs a finite mass of up to 1e6 Da, not 2.5e+06"), error.message());
    EXPECT_TRUE(error.trail().isEmpty());
    EXPECT_EQ(QStringLiteral("An isotope envelope needs a charge of 1 or more, not 0"), failure(1.0, 0, 0.0).message());
    EXPECT_EQ(QStringLiteral("The smallest abundance of an isotope envelope must lie within 0 to 1, not 2"),
              failure(1.0, 1, 2.0).message());
}

} // namespace
} // namespace zav
