// SPDX-License-Identifier: Apache-2.0
#include "TheoreticalFragments.h"

#include "PeptideMasses.h"

#include <algorithm>

namespace zav {

namespace {

// The predictor's, in Da.
constexpr double WATER = 18.010565;
constexpr double AMMONIA = 17.026549;
constexpr double CARBON_MONOXIDE = 27.994915;

constexpr int LONGEST_A_ION = 15;
constexpr int MAXIMUM_FRAGMENT_CHARGE = 3;

} // namespace

QList<FragmentPeak> theoreticalFragments(const QString &peptide, int charge, double cysteineMass)
{
    QList<FragmentPeak> fragments;
    const auto mz = [&](QChar type, int number, int z) {
        return peptideMasses::fragmentMz(peptide, type, number, z, cysteineMass);
    };
    for (int number = 1; number <= peptide.size(); ++number) {
        for (const QChar type : {QLatin1Char('b'), QLatin1Char('y')}) {
            for (int z = 1; z <= std::min(charge, MAXIMUM_FRAGMENT_CHARGE); ++z)
                fragments.append({mz(type, number, z), 0.0, type, number, z, {}});
            fragments.append({mz(type, number, 1) - WATER, 0.0, type, number, 1, QStringLiteral("-H2O")});
            fragments.append({mz(type, number, 1) - AMMONIA, 0.0, type, number, 1, QStringLiteral("-NH3")});
        }
        if (number <= LONGEST_A_ION)
            fragments.append({mz(QLatin1Char('b'), number, 1) - CARBON_MONOXIDE, 0.0, QLatin1Char('a'), number, 1, {}});
    }
    return fragments;
}

} // namespace zav
