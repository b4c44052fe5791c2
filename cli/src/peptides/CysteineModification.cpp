// SPDX-License-Identifier: Apache-2.0
#include "CysteineModification.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace zav {

namespace {

// https://www.unimod.org
constexpr CysteineModification KNOWN[] = {{57.021464, "Carbamidomethyl", 4},
                                          {71.037114, "Propionamide", 24},
                                          {105.057849, "Pyridylethyl", 31},
                                          {45.987721, "Methylthio", 39},
                                          {125.047679, "Nethylmaleimide", 108}};

constexpr double SAME_MASS = 1e-3;
constexpr double SAME_DIGITS = 1e-5;

} // namespace

const CysteineModification *knownCysteineModification(double mass)
{
    const auto *found = std::find_if(std::begin(KNOWN), std::end(KNOWN), [mass](const CysteineModification &known) {
        return std::abs(mass - known.mass) < SAME_MASS;
    });
    return found == std::end(KNOWN) ? nullptr : found;
}

bool isCysteineModified(double mass)
{
    return std::abs(mass) >= SAME_MASS;
}

double exactCysteineMass(double mass)
{
    const CysteineModification *known = knownCysteineModification(mass);
    return known && std::abs(mass - known->mass) < SAME_DIGITS ? known->mass : mass;
}

} // namespace zav
