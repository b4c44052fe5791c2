// SPDX-License-Identifier: Apache-2.0
#include "PeptideVocabulary.h"

#include <cstddef>

namespace zav::peptideVocabulary {

const QHash<QChar, int> aminoAcidIndex{
    {u'D', 1},  {u'E', 2},  {u'S', 3},  {u'T', 4},  {u'I', 5},  {u'L', 6},  {u'V', 7},
    {u'F', 8},  {u'Y', 9},  {u'W', 10}, {u'A', 11}, {u'C', 12}, {u'G', 13}, {u'M', 14},
    {u'P', 15}, {u'N', 16}, {u'Q', 17}, {u'H', 18}, {u'K', 19}, {u'R', 20},
};

const QMap<int, int> maxPeptideLengthByCharge{{1, 27}, {2, 43}, {3, 50}, {4, 52}, {5, 50}};

// ETD: the monoisotopic mass of NH3.
const QHash<QString, double> fragmentationMethodOffsets{{QStringLiteral("HCD"), 0.0},
                                                        {QStringLiteral("ETD"), 17.02655}};

namespace {

constexpr int FILLER_COLUMN = 0;

} // namespace

int encodingWidth()
{
    return static_cast<int>(aminoAcidIndex.size()) + 1;
}

int maximumPeptideLength(int charge)
{
    return maxPeptideLengthByCharge.value(charge, 0);
}

void writeOneHotRows(const QString &peptide, int rowCount, float *rows)
{
    const int width = encodingWidth();
    float *row = rows;
    for (const QChar residue : peptide) {
        row[aminoAcidIndex.value(residue, FILLER_COLUMN)] = 1.0F;
        row += width;
    }
    for (float *end = rows + static_cast<std::ptrdiff_t>(rowCount) * width; row < end; row += width)
        row[FILLER_COLUMN] = 1.0F;
}

} // namespace zav::peptideVocabulary
