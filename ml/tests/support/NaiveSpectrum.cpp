// SPDX-License-Identifier: Apache-2.0
#include "NaiveSpectrum.h"

#include <algorithm>
#include <functional>
#include <map>

namespace zav::naive {

namespace {

// Isotope masses in Da: AME2020. Electron: CODATA 2018.
constexpr double C12 = 12.0;
constexpr double H1 = 1.00782503190;
constexpr double N14 = 14.00307400425;
constexpr double O16 = 15.99491461926;
constexpr double S32 = 31.97207117354;
constexpr double ELECTRON = 0.00054857990907;
constexpr double C13_C12 = 1.00335483534;

struct Formula
{
    int c, h, n, o, s;

    double mass() const { return c * C12 + h * H1 + n * N14 + o * O16 + s * S32; }
};

constexpr Formula WATER{0, 2, 0, 1, 0};
constexpr Formula AMMONIA{0, 3, 1, 0, 0};
constexpr Formula CARBON_MONOXIDE{1, 0, 0, 1, 0};

// Amino acids less water.
const std::map<char16_t, Formula> RESIDUES{
    {u'G', {2, 3, 1, 1, 0}},  {u'A', {3, 5, 1, 1, 0}},  {u'S', {3, 5, 1, 2, 0}}, {u'P', {5, 7, 1, 1, 0}},
    {u'V', {5, 9, 1, 1, 0}},  {u'T', {4, 7, 1, 2, 0}},  {u'C', {3, 5, 1, 1, 1}}, {u'L', {6, 11, 1, 1, 0}},
    {u'I', {6, 11, 1, 1, 0}}, {u'N', {4, 6, 2, 2, 0}},  {u'D', {4, 5, 1, 3, 0}}, {u'Q', {5, 8, 2, 2, 0}},
    {u'K', {6, 12, 2, 1, 0}}, {u'E', {5, 7, 1, 3, 0}},  {u'M', {5, 9, 1, 1, 1}}, {u'H', {6, 7, 3, 1, 0}},
    {u'F', {9, 9, 1, 1, 0}},  {u'R', {6, 12, 4, 1, 0}}, {u'Y', {9, 9, 1, 2, 0}}, {u'W', {11, 10, 2, 1, 0}},
};

struct Series
{
    char ion;
    int charge;
    int slots;
    double lost; // Da
};

std::vector<Series> seriesOf(int precursorCharge)
{
    const int length = std::map<int, int>{{1, 27}, {2, 43}, {3, 50}, {4, 52}, {5, 50}}.at(precursorCharge);
    const double water = WATER.mass();
    const double ammonia = AMMONIA.mass();
    std::vector<Series> series{{'y', 1, length, 0}, {'b', 1, length, 0}};
    if (precursorCharge >= 2)
        series.insert(series.end(), {{'y', 2, length, 0}, {'b', 2, length, 0}});
    series.insert(series.end(), {{'a', 1, 15, 0},
                                 {'y', 1, length, water},
                                 {'y', 1, length, ammonia},
                                 {'b', 1, length, water},
                                 {'b', 1, length, ammonia}});
    if (precursorCharge >= 3)
        series.insert(series.end(), {{'y', 3, length, 0}, {'b', 3, length, 0}});
    return series;
}

double residuesMass(const QString &residues, double cysteineMass)
{
    double mass = 0.0;
    for (const QChar residue : residues) {
        const auto formula = RESIDUES.find(residue.unicode());
        mass += formula == RESIDUES.end() ? 0.0 : formula->second.mass();
        mass += residue == u'C' ? cysteineMass : 0.0;
    }
    return mass;
}

double fragmentMz(const QString &peptide, int number, const Series &series, double cysteineMass)
{
    const QString residues = series.ion == 'y' ? peptide.right(number) : peptide.left(number);
    double mass = residuesMass(residues, cysteineMass) - series.lost;
    if (series.ion == 'y')
        mass += WATER.mass();
    if (series.ion == 'a')
        mass -= CARBON_MONOXIDE.mass();
    return (mass + series.charge * (H1 - ELECTRON)) / series.charge;
}

using Polynomial = std::vector<double>;

Polynomial product(const Polynomial &a, const Polynomial &b)
{
    Polynomial result(a.size(), 0.0);
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; i + j < a.size() && j < b.size(); ++j)
            result[i + j] += a[i] * b[j];
    return result;
}

/// (1 + heavy)^exponent by the binomial series, to `count` terms.
Polynomial power(const Polynomial &heavy, double exponent, int count)
{
    Polynomial sum(count, 0.0);
    Polynomial term(count, 0.0);
    term[0] = 1.0;
    for (int k = 1; k <= count; ++k) {
        std::transform(sum.begin(), sum.end(), term.begin(), sum.begin(), std::plus<>());
        term = product(term, heavy);
        for (double &coefficient : term)
            coefficient *= (exponent - (k - 1)) / k;
    }
    return sum;
}

struct Element
{
    double atoms;          // in averagine (Senko 1995)
    double mass;           // Da
    Polynomial abundances; // natural ones, from the lightest isotope on, as IsoSpec 2.6.0 has them
};

const std::vector<Element> AVERAGINE{
    {4.9384, C12, {0.9892119418504669, 0.010788058149533084}},
    {7.7583, H1, {0.9998842901643079, 0.00011570983569203331}},
    {1.3577, N14, {0.9963580145679417, 0.0036419854320582715}},
    {1.4773, O16, {0.997567609729561, 0.00038099847600609594, 0.002051391794432822}},
    {0.0417, S32, {0.9498500119990401, 0.00751939844812415, 0.04252059835213182, 0.0, 0.00010999120070394368}},
};

} // namespace

std::vector<double> fragmentMzs(const QString &peptide, int precursorCharge, double cysteineMass)
{
    std::vector<double> mzs;
    for (const Series &series : seriesOf(precursorCharge))
        for (int number = 1; number <= series.slots; ++number)
            mzs.push_back(number > peptide.size() ? -1.0 : fragmentMz(peptide, number, series, cysteineMass));
    return mzs;
}

std::vector<int> fragmentCharges(int precursorCharge)
{
    std::vector<int> charges;
    for (const Series &series : seriesOf(precursorCharge))
        charges.insert(charges.end(), series.slots, series.charge);
    return charges;
}

std::vector<double> isotopeEnvelope(double neutralMass, int count)
{
    double unitMass = 0.0;
    for (const Element &element : AVERAGINE)
        unitMass += element.atoms * element.mass;
    Polynomial envelope(count, 0.0);
    envelope[0] = 1.0;
    for (const Element &element : AVERAGINE) {
        Polynomial heavy = element.abundances;
        for (double &abundance : heavy)
            abundance /= element.abundances.front();
        heavy.front() = 0.0;
        envelope = product(envelope, power(heavy, element.atoms * neutralMass / unitMass, count));
    }
    return envelope;
}

QList<QPointF> spectrum(const QString &peptide, int precursorCharge, double cysteineMass,
                        const std::vector<float> &intensities, double lowestIntensity, double highestMz)
{
    constexpr double DALTONS_PER_ISOTOPE = 400.0; // every peak that could be seen is among six and one more for each
    constexpr double HIGHEST_ABUNDANCE = 10.0;    // of any isotope relative to the monoisotopic one, below 8 kDa
    const std::vector<double> mzs = fragmentMzs(peptide, precursorCharge, cysteineMass);
    const std::vector<int> charges = fragmentCharges(precursorCharge);
    QList<QPointF> points;
    for (std::size_t slot = 0; slot < mzs.size(); ++slot) {
        if (mzs[slot] < 0.0)
            continue;
        points.append({mzs[slot], intensities[slot]});
        if (mzs[slot] > highestMz || intensities[slot] * HIGHEST_ABUNDANCE < lowestIntensity)
            continue;
        const double neutralMass = (mzs[slot] - (H1 - ELECTRON)) * charges[slot];
        if (neutralMass <= 0.0)
            continue; // of no atoms
        const int isotopes = 6 + static_cast<int>(neutralMass / DALTONS_PER_ISOTOPE);
        const std::vector<double> envelope = isotopeEnvelope(neutralMass, isotopes);
        for (int k = 1; k < isotopes; ++k)
            points.append({mzs[slot] + k * C13_C12 / charges[slot], intensities[slot] * envelope[k]});
    }
    return points;
}

} // namespace zav::naive
