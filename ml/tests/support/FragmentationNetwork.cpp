// SPDX-License-Identifier: Apache-2.0
#include "FragmentationNetwork.h"

#include <zav/MsMsFragmentationPredictomatic.h>

#include <cstddef>
#include <random>

namespace zav {

namespace {

constexpr FragmentationContract CONTRACTS[] = {{1, 27, 177}, {2, 43, 359}, {3, 50, 515}, {4, 52, 535}, {5, 50, 515}};

int columnOf(QChar residue)
{
    return static_cast<int>(QString::fromLatin1(FragmentationContract::VOCABULARY).indexOf(residue)) + 1;
}

/// "flat": one row for each peptide.
GraphDefBuilder &addInput(GraphDefBuilder *graph, const FragmentationContract &contract, std::int64_t leadingDimension)
{
    const int width = FragmentationContract::WIDTH;
    return graph->noOp("init")
        .placeholder(FragmentationContract::INPUT, {{leadingDimension, contract.maximumLength, width}})
        .reshape("flat", FragmentationContract::INPUT, {-1, std::int64_t{contract.maximumLength} * width});
}

} // namespace

const FragmentationContract &FragmentationContract::of(int charge)
{
    return CONTRACTS[charge - 1];
}

LinearNetwork::LinearNetwork(int charge)
    : m_contract(FragmentationContract::of(charge)), m_weights(static_cast<std::size_t>(m_contract.maximumLength) *
                                                               FragmentationContract::WIDTH * m_contract.slotCount),
      m_biases(m_contract.slotCount)
{}

LinearNetwork LinearNetwork::random(int charge, unsigned seed)
{
    std::mt19937 generator(seed);
    const auto multipleOf256th = [&generator](int limit) {
        return static_cast<float>(static_cast<int>(generator() % (2 * limit + 1)) - limit) / 256.0F;
    };
    LinearNetwork network(charge);
    for (float &weight : network.m_weights)
        weight = multipleOf256th(8);
    for (float &bias : network.m_biases)
        bias = 0.125F + multipleOf256th(80);
    return network;
}

std::size_t LinearNetwork::index(int row, int column, int slot) const
{
    return (static_cast<std::size_t>(row) * FragmentationContract::WIDTH + column) * m_contract.slotCount + slot;
}

std::vector<float> LinearNetwork::intensities(const QString &peptide) const
{
    std::vector<float> sums = m_biases;
    for (int row = 0; row < m_contract.maximumLength; ++row) {
        const int column = row < peptide.size() ? columnOf(peptide.at(row)) : 0;
        for (int slot = 0; slot < m_contract.slotCount; ++slot)
            sums[slot] += m_weights[index(row, column, slot)];
    }
    return sums;
}

GraphDefBuilder LinearNetwork::graph(std::int64_t leadingDimension) const
{
    GraphDefBuilder graph;
    addInput(&graph, m_contract, leadingDimension)
        .constant("weights",
                  {std::int64_t{m_contract.maximumLength} * FragmentationContract::WIDTH, m_contract.slotCount},
                  m_weights)
        .matMul("product", "flat", "weights")
        .constant("biases", {m_contract.slotCount}, m_biases)
        .biasAdd(FragmentationContract::OUTPUT, "product", "biases");
    return graph;
}

GraphDefBuilder constantNetwork(int charge, const std::vector<float> &intensities)
{
    const auto count = static_cast<std::int64_t>(intensities.size());
    GraphDefBuilder graph;
    addInput(&graph, FragmentationContract::of(charge), -1)
        .slice("first", "flat", {0, 0}, {-1, 1})
        .constant("zeros", {1, count}, std::vector<float>(intensities.size()))
        .matMul("product", "first", "zeros")
        .constant("biases", {count}, intensities)
        .biasAdd(FragmentationContract::OUTPUT, "product", "biases");
    return graph;
}

NetworkFiles::NetworkFiles()
{
    for (const FragmentationContract &contract : CONTRACTS)
        replace(contract.charge, constantNetwork(contract.charge, std::vector<float>(contract.slotCount)));
}

void NetworkFiles::replace(int charge, const GraphDefBuilder &graph) const
{
    if (!graph.write(path(charge).toStdString()))
        qFatal("A graph file cannot be written to the temporary folder");
}

QString NetworkFiles::path(int charge) const
{
    return m_folder.filePath(QStringLiteral("charge%1.pb").arg(charge));
}

Error NetworkFiles::init(MsMsFragmentationPredictomatic *predictor) const
{
    return predictor->init(path(1), path(2), path(3), path(4), path(5));
}

} // namespace zav
