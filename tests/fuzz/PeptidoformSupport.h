// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PredictorSupport.h"

#include <zav/Peptidoform.h>

#include <algorithm>

namespace zav::fuzz {

/// One of the table, one known by its mass, or one that a host made up.
inline Modification takeModification(FuzzedDataProvider *data)
{
    const QList<modifications::Entry> &table = modifications::all();
    switch (data->ConsumeIntegralInRange(0, 7)) {
    case 0:
        return modifications::ofMass(data->ConsumeIntegral<qint16>() / 16.0);
    case 1:
        return {QStringLiteral("Odd"), 1'000'000, {.sulfur = data->ConsumeIntegral<qint8>()}, takeNumber(data)};
    default:
        return table.at(data->ConsumeIntegralInRange<qsizetype>(0, table.size() - 1)).modification;
    }
}

/// Up to 54 residues, mostly standard ones, with up to five modifications, some of them outside of the peptide.
inline Peptidoform takePeptidoform(FuzzedDataProvider *data)
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    QString sequence;
    if (data->ConsumeIntegralInRange(0, 15) == 15) {
        sequence = QString::fromStdString(data->ConsumeRandomLengthString(60));
    } else {
        for (int left = data->ConsumeIntegralInRange(0, 54); left > 0; --left)
            sequence += QLatin1Char(RESIDUES[data->ConsumeIntegralInRange(0, 19)]);
    }
    const int length = static_cast<int>(sequence.size());
    QList<PlacedModification> placed;
    for (int left = data->ConsumeIntegralInRange(0, 5); left > 0; --left) {
        const int position = data->ConsumeIntegralInRange(-1, length + 2);
        const bool isTaken = std::any_of(placed.cbegin(), placed.cend(), [position](const PlacedModification &each) {
            return each.position == position;
        });
        if (!isTaken)
            placed.append({position, takeModification(data)});
    }
    return Peptidoform(sequence, placed);
}

/// As many values as asked for: those given, over and over.
inline std::vector<float> repeated(const std::vector<float> &values, std::size_t count)
{
    std::vector<float> all(count, 0.5F);
    for (std::size_t i = 0; i < count && !values.empty(); ++i)
        all[i] = values[i % values.size()];
    return all;
}

} // namespace zav::fuzz
