// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GraphDefBuilder.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zav {

class MsMsFragmentationPredictomatic;
class Error;

/// What a network of one precursor charge has to look like, written down once more for the tests.
struct FragmentationContract
{
    int charge;
    int maximumLength; ///< rows of the input
    int slotCount;     ///< elements of the output

    static constexpr int WIDTH = 21;
    static constexpr char VOCABULARY[] = "DESTILVFYWACGMPNQHKR"; ///< from column 1 on
    static constexpr char INPUT[] = "import/conv1d_1_input";
    static constexpr char OUTPUT[] = "import/dense_3/BiasAdd";

    static const FragmentationContract &of(int charge);
};

/// A network whose intensities are known: those of each slot are its bias, and the weights that the residues of the
/// peptide (and the fillers) select.
class LinearNetwork
{
public:
    /// All zeros.
    explicit LinearNetwork(int charge);

    /// Every weight and bias random, and a multiple of 1/256: float sums of them are exact, in whatever order.
    static LinearNetwork random(int charge, unsigned seed);

    void setWeight(int row, int column, int slot, float value) { m_weights[index(row, column, slot)] = value; }
    void setBias(int slot, float value) { m_biases[slot] = value; }

    /// What the network gives for a peptide.
    std::vector<float> intensities(const QString &peptide) const;

    /// The graph; the leading dimension of the input is the number of peptides.
    GraphDefBuilder graph(std::int64_t leadingDimension = -1) const;

private:
    std::size_t index(int row, int column, int slot) const;

    FragmentationContract m_contract;
    std::vector<float> m_weights; ///< [row][column][slot]
    std::vector<float> m_biases;
};

/// A network that gives the same intensities for every peptide: small files. The leading dimension is the number of
/// peptides.
GraphDefBuilder constantNetwork(int charge, const std::vector<float> &intensities);

/// Five graph files in a temporary folder, one for each charge: networks that predict nothing, until one is replaced.
class NetworkFiles
{
public:
    NetworkFiles();

    void replace(int charge, const GraphDefBuilder &graph) const;
    QString path(int charge) const;

    /// Loads the five.
    Error init(MsMsFragmentationPredictomatic *predictor) const;

private:
    QTemporaryDir m_folder;
};

} // namespace zav
