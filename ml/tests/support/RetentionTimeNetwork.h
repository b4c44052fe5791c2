// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GraphDefBuilder.h"

#include <zav/Peptidoform.h>

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zav {

/// Networks of retention times whose answer is known: each head is a weighted sum of the rows' columns.
class RetentionTimeNetwork
{
public:
    static constexpr const char *INPUT = "peptidoforms";
    static constexpr const char *OUTPUT = "retention_times";
    static constexpr int ROWS = 52;
    static constexpr int COLUMNS = 13;

    using Weights = std::vector<float>; ///< of the 13 columns of a row

    /// One head for each list of weights; row r counts 1 + r / 64 times them, so that the order matters.
    static GraphDefBuilder linear(const std::vector<Weights> &heads)
    {
        const auto headCount = static_cast<std::int64_t>(heads.size());
        std::vector<float> values;
        for (int row = 0; row < ROWS; ++row) {
            for (int column = 0; column < COLUMNS; ++column) {
                for (const Weights &head : heads)
                    values.push_back(head[column] * rowFactor(row));
            }
        }
        GraphDefBuilder graph;
        graph.placeholder(INPUT, {{-1, ROWS, COLUMNS}})
            .reshape("flat", INPUT, {-1, std::int64_t{ROWS} * COLUMNS})
            .constant("weights", {std::int64_t{ROWS} * COLUMNS, headCount}, values)
            .matMul(OUTPUT, "flat", "weights")
            .noOp("init");
        return graph;
    }

    static float rowFactor(int row) { return 1.0F + static_cast<float>(row) / 64.0F; }

    /// Writes a graph to a file of this object's folder and returns its path.
    QString write(const GraphDefBuilder &graph)
    {
        const QString path = m_folder.filePath(QStringLiteral("network%1.pb").arg(++m_count));
        EXPECT_TRUE(graph.write(path.toStdString()));
        return path;
    }

private:
    QTemporaryDir m_folder;
    int m_count = 0;
};

/// Of 2 to 52 residues, without cysteine.
inline Peptidoform randomPlainPeptide(std::mt19937 *generator)
{
    static const QString residues = QStringLiteral("DESTILVFYWAGMPNQHKR");
    QString sequence;
    for (int length = 2 + static_cast<int>((*generator)() % 51); length > 0; --length)
        sequence.append(residues.at((*generator)() % 19));
    return Peptidoform(sequence);
}

inline QList<Peptidoform> randomPlainPeptides(int count, unsigned seed)
{
    std::mt19937 generator(seed);
    QList<Peptidoform> peptidoforms;
    for (int i = 0; i < count; ++i)
        peptidoforms.append(randomPlainPeptide(&generator));
    return peptidoforms;
}

} // namespace zav
