// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FragmentationNetwork.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <random>

namespace zav {

/// The places of an error's trail as "MsMsFragmentationPredictomatic::init 123", the innermost first.
inline QStringList placesOf(const Error &error)
{
    QStringList places;
    for (const CaughtAt &place : error.trail()) {
        const QString function = place.functionSignature.section(QLatin1Char('('), 0, 0)
                                     .section(QLatin1Char(' '), -1)
                                     .remove(QStringLiteral("zav::"));
        places.append(QStringLiteral("%1 %2").arg(function, QString::number(place.line)));
    }
    return places;
}

/// The last places of a trail: those of the predictor itself.
inline QStringList lastPlacesOf(const Error &error, int count)
{
    return placesOf(error).mid(error.trail().size() - count);
}

/// A random peptide of the 20 standard residues.
inline QString randomPeptide(int length, std::mt19937 *generator)
{
    QString peptide;
    for (int i = 0; i < length; ++i)
        peptide.append(QLatin1Char(FragmentationContract::VOCABULARY[(*generator)() % 20]));
    return peptide;
}

/// A predictor over five graph files that a test replaces as it needs.
class FragmentationTest : public ::testing::Test
{
protected:
    void load(int charge, const GraphDefBuilder &graph)
    {
        files.replace(charge, graph);
        const Error error = files.init(&predictor);
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    NetworkFiles files;
    MsMsFragmentationPredictomatic predictor;
};

} // namespace zav

// GoogleTest finds these beside the types.
inline std::ostream &operator<<(std::ostream &stream, const QStringList &texts)
{
    return stream << '[' << texts.join(QStringLiteral(", ")).toStdString() << ']';
}
