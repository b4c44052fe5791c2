// SPDX-License-Identifier: Apache-2.0
#include "PeptidoformNetwork.h"

#include <QtCore/QtGlobal>

#include <algorithm>
#include <cstdint>

namespace zav {

int PeptidoformNetwork::seriesOf(const QString &name)
{
    for (int i = 0; i < SERIES; ++i) {
        if (name == QLatin1String(SERIES_NAMES[i]))
            return i;
    }
    qFatal("There is no series %s", qUtf8Printable(name));
    return -1;
}

PeptidoformNetwork::PeptidoformNetwork(int residueCount)
    : m_bondCount(residueCount - 1), m_biases(static_cast<std::size_t>(m_bondCount) * SERIES),
      m_peptidoformWeights(m_biases.size() * ROWS * COLUMNS), m_precursorWeights(m_biases.size() * PRECURSOR_VALUES)
{}

void PeptidoformNetwork::setBias(int bond, const QString &series, float value)
{
    m_biases[slot(bond, series)] = value;
}

void PeptidoformNetwork::setEveryBias(float value)
{
    std::fill(m_biases.begin(), m_biases.end(), value);
}

void PeptidoformNetwork::setPeptidoformWeight(int row, int column, int bond, const QString &series, float value)
{
    const std::size_t input = static_cast<std::size_t>(row) * COLUMNS + static_cast<std::size_t>(column);
    m_peptidoformWeights[input * slotCount() + slot(bond, series)] = value;
}

void PeptidoformNetwork::setPrecursorWeight(int value, int bond, const QString &series, float weight)
{
    m_precursorWeights[static_cast<std::size_t>(value) * slotCount() + slot(bond, series)] = weight;
}

GraphDefBuilder PeptidoformNetwork::graph() const
{
    constexpr std::int64_t VALUES = std::int64_t{ROWS} * COLUMNS;
    const auto slots = static_cast<std::int64_t>(slotCount());
    GraphDefBuilder graph;
    graph.noOp("init")
        .placeholder("peptidoforms", {{-1, ROWS, COLUMNS}})
        .placeholder("precursors", {{-1, PRECURSOR_VALUES}})
        .reshape("flat", "peptidoforms", {-1, VALUES})
        .slice("number", "precursors", {0, 0}, {-1, 1})
        .reshape("numbers", "number", {-1})
        .cast("indices", "numbers", GraphDefBuilder::FLOAT, GraphDefBuilder::INT32)
        .integerConstant("axis", {}, {0})
        .node("gathered", "GatherV2", {"flat", "indices", "axis"},
              {{"Tparams", GraphDefBuilder::typeValue(GraphDefBuilder::FLOAT)},
               {"Tindices", GraphDefBuilder::typeValue(GraphDefBuilder::INT32)},
               {"Taxis", GraphDefBuilder::typeValue(GraphDefBuilder::INT32)}})
        .constant("peptidoformWeights", {VALUES, slots}, m_peptidoformWeights)
        .matMul("ofPeptidoform", "gathered", "peptidoformWeights")
        .constant("precursorWeights", {PRECURSOR_VALUES, slots}, m_precursorWeights)
        .matMul("ofPrecursor", "precursors", "precursorWeights")
        .add("sum", "ofPeptidoform", "ofPrecursor")
        .constant("biases", {slots}, m_biases)
        .biasAdd("biased", "sum", "biases")
        .reshape("intensities", "biased", {-1, m_bondCount, SERIES});
    return graph;
}

std::size_t PeptidoformNetwork::slot(int bond, const QString &series) const
{
    return static_cast<std::size_t>(bond * SERIES + seriesOf(series));
}

} // namespace zav
