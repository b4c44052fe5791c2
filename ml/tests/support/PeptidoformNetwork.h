// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GraphDefBuilder.h"

#include <QtCore/QString>

#include <cstddef>
#include <vector>

namespace zav {

/// A network of peptidoforms whose intensities are known: those of each bond and ion are a bias, and the weights of the
/// values that the predictor feeds. It is built for peptidoforms of one length.
class PeptidoformNetwork
{
public:
    // What a network of peptidoforms has to look like, written down once more for the tests.
    static constexpr int ROWS = 52;
    static constexpr int COLUMNS = 13;
    static constexpr int PRECURSOR_VALUES = 3; ///< row of the peptidoform, charge, energy
    static constexpr int SERIES = 27;
    static constexpr const char *SERIES_NAMES[SERIES] = {
        "y+1",       "b+1",        "y+2",        "b+2",        "a+1",        "y+1-H2O",   "y+1-NH3",
        "b+1-H2O",   "b+1-NH3",    "y+3",        "b+3",        "y+1-H3PO4",  "b+1-H3PO4", "y+2-H3PO4",
        "b+2-H3PO4", "y+1-2H3PO4", "b+1-2H3PO4", "y+2-2H3PO4", "b+2-2H3PO4", "y+1-CH4OS", "b+1-CH4OS",
        "y+2-CH4OS", "b+2-CH4OS",  "y+1-CO2",    "b+1-CO2",    "y+2-CO2",    "b+2-CO2"};

    /// The column of a series.
    static int seriesOf(const QString &name);

    /// All zeros.
    explicit PeptidoformNetwork(int residueCount);

    void setBias(int bond, const QString &series, float value);
    void setEveryBias(float value);
    void setPeptidoformWeight(int row, int column, int bond, const QString &series, float value);
    void setPrecursorWeight(int value, int bond, const QString &series, float weight);

    GraphDefBuilder graph() const;

private:
    std::size_t slot(int bond, const QString &series) const;
    std::size_t slotCount() const { return m_biases.size(); }

    int m_bondCount;
    std::vector<float> m_biases;             ///< [bond][series]
    std::vector<float> m_peptidoformWeights; ///< [row][column][bond][series]
    std::vector<float> m_precursorWeights;   ///< [value][bond][series]
};

} // namespace zav
