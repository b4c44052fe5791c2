// SPDX-License-Identifier: Apache-2.0
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include "ListMemory.h"
#include "kelphysicalConsts.h"

#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <array>
#include <cmath>

// The envelope of n_e atoms of each element e is the power series P(x) = prod_e A_e(x)^n_e, where the coefficient of
// x^k in A_e is the abundance of the isotope k mass units above the lightest, relative to it. With n_e = mass * (atoms
// per Da) the logarithm is linear in mass: x P'/P = mass * sum_j d_j x^j, and comparing coefficients gives
//     k p_k = sum_j (mass * d_j) p_(k-j),   p_0 = 1,
// with d_j known at compile time. No powers, no exponentials, and fractional atom counts cost nothing.

namespace zav {

namespace {

// The d_j shrink by 0.21 a step (the root of sulfur's polynomial nearest to zero). Twelve of them give every abundance
// to 3e-6 of itself or better up to 1e6 Da, measured against sixty.
constexpr int SERIES_LENGTH = 12;

using Series = std::array<double, SERIES_LENGTH + 1>; // index = extra mass units

constexpr double DEFAULT_MIN_RELATIVE_ABUNDANCE = 0.001;
constexpr int MIN_PEAK_COUNT = 2;

struct Element
{
    double atoms; // per averagine unit
    double monoisotopicMass;
    std::array<double, 5> abundances; // of the isotopes 0 to 4 mass units above the lightest
};

constexpr Element AVERAGINE[] = {
    {4.9384, kelphysicalConsts::CARBON_MASS, {0.9892119418504669, 0.010788058149533084}},
    {7.7583, kelphysicalConsts::HYDROGEN_MASS, {0.9998842901643079, 0.00011570983569203331}},
    {1.3577, kelphysicalConsts::NITROGEN_MASS, {0.9963580145679417, 0.0036419854320582715}},
    {1.4773, kelphysicalConsts::OXYGEN_MASS, {0.997567609729561, 0.00038099847600609594, 0.002051391794432822}},
    {0.0417,
     kelphysicalConsts::SULFUR_MASS,
     {0.9498500119990401, 0.00751939844812415, 0.04252059835213182, 0.0, 0.00010999120070394368}},
};

// x A'/A of an element: e_k = k a_k - sum_(0<j<k) e_j a_(k-j), with a_0 = 1.
constexpr Series logarithmicDerivative(const Element &element)
{
    const auto relative = [&](int k) {
        return k < static_cast<int>(element.abundances.size()) ? element.abundances[k] / element.abundances[0] : 0.0;
    };
    Series series{};
    for (int k = 1; k <= SERIES_LENGTH; ++k) {
        series[k] = k * relative(k);
        for (int j = 1; j < k; ++j)
            series[k] -= series[j] * relative(k - j);
    }
    return series;
}

constexpr Series logarithmicDerivativePerDalton()
{
    Series sum{};
    double unitMass = 0.0;
    for (const Element &element : AVERAGINE) {
        const Series series = logarithmicDerivative(element);
        for (int k = 1; k <= SERIES_LENGTH; ++k)
            sum[k] += element.atoms * series[k];
        unitMass += element.atoms * element.monoisotopicMass;
    }
    for (double &coefficient : sum)
        coefficient /= unitMass;
    return sum;
}

constexpr Series PER_DALTON = logarithmicDerivativePerDalton();

using Abundances = QVarLengthArray<double, 64>;

Abundances relativeAbundances(double mass, double minRelativeAbundance)
{
    if (mass <= 0.0)
        return {1.0};
    Series scaled = PER_DALTON;
    for (double &coefficient : scaled)
        coefficient *= mass;

    Abundances abundances{1.0};
    double largest = 1.0;
    for (int k = 1;; ++k) {
        double sum = 0.0;
        for (int j = std::min(k, SERIES_LENGTH); j > 0; --j)
            sum += scaled[j] * abundances[k - j];
        const double abundance = sum / k;
        if (k >= MIN_PEAK_COUNT && !(abundance > 0.0 && abundance >= minRelativeAbundance * largest))
            return abundances;
        abundances.append(abundance);
        largest = std::max(largest, abundance);
    }
}

Error checkInput(double mass, int charge, double minRelativeAbundance)
{
    if (!std::isfinite(mass) || mass > TheoreticalIsotopePoint2dListGenerator::MAXIMUM_MASS)
        return {InvalidInput,
                QStringLiteral("An isotope envelope needs a finite mass of up to 1e6 Da, not %1").arg(mass)};
    if (charge < 1)
        return {InvalidInput, QStringLiteral("An isotope envelope needs a charge of 1 or more, not %1").arg(charge)};
    if (!(minRelativeAbundance >= 0.0 && minRelativeAbundance <= 1.0))
        return {InvalidInput,
                QStringLiteral("The smallest abundance of an isotope envelope must lie within 0 to 1, not %1")
                    .arg(minRelativeAbundance)};
    return {};
}

} // namespace

Result<QList<QPointF>>
TheoreticalIsotopePoint2dListGenerator::buildTheoreticalIsotopicDistributionPoints(double mass, int charge,
                                                                                   double minRelativeAbundance) const
{
    if (Error error = checkInput(mass, charge, minRelativeAbundance); error.hasError())
        return error;

    const Abundances abundances =
        relativeAbundances(mass, minRelativeAbundance > 0.0 ? minRelativeAbundance : DEFAULT_MIN_RELATIVE_ABUNDANCE);
    const double firstMz = mass / charge + kelphysicalConsts::PROTON_MASS;
    const double spacing = kelphysicalConsts::ISOTOPE_SPACING / charge;

    QList<QPointF> points = listOf<QPointF>(abundances.size());
    QPointF *point = points.data();
    for (int k = 0; k < abundances.size(); ++k)
        point[k] = QPointF(firstMz + k * spacing, abundances[k]);
    return points;
}

} // namespace zav
