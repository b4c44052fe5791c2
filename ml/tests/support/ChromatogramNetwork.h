// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GraphDefBuilder.h"

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

namespace zav {

/// Networks of known answer for the two chromatogram predictors, and chromatograms to show them.
class ChromatogramNetwork
{
public:
    static constexpr const char *INPUT = "import/img";
    static constexpr const char *OUTPUT = "import/conv2d_19/Sigmoid";

    /// Its probabilities are the input itself: the smoothed and normalised intensities, and the padding.
    static GraphDefBuilder identity()
    {
        GraphDefBuilder graph;
        graph.placeholder(INPUT, {{-1, 1, 1}}).identity(OUTPUT, INPUT).noOp("init");
        return graph;
    }

    /// Its probabilities are these values, whatever the input.
    static GraphDefBuilder constant(const std::vector<float> &values, const GraphDefBuilder::Shape &shape)
    {
        GraphDefBuilder graph;
        graph.placeholder(INPUT, {{-1, 1, 1}}).constant(OUTPUT, shape, values).noOp("init");
        return graph;
    }

    static GraphDefBuilder constant(const std::vector<float> &values)
    {
        return constant(values, {static_cast<std::int64_t>(values.size())});
    }

    /// Writes a graph to a file of this object's folder and returns its path.
    QString write(const GraphDefBuilder &graph)
    {
        const QString path = m_folder.filePath(QStringLiteral("network%1.pb").arg(++m_count));
        EXPECT_TRUE(graph.write(path.toStdString()));
        return path;
    }

    /// One point per intensity, at the retention times 100, 100.5, 101, ...
    static QList<QPointF> chromatogram(const std::vector<double> &intensities)
    {
        QList<QPointF> points;
        for (const double intensity : intensities)
            points.append({timeOf(points.size()), intensity});
        return points;
    }

    static double timeOf(qsizetype index) { return 100.0 + 0.5 * static_cast<double>(index); }

private:
    QTemporaryDir m_folder;
    int m_count = 0;
};

} // namespace zav
