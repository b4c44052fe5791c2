// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "GraphDefBuilder.h"
#include "Inspectors.h"
#include "MessageRecorder.h"
#include "Trail.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fstream>

namespace zav {

/// The trail of a failed `Model::errorCheck`, caught in another function of `Model`.
inline QStringList failedCheckIn(const char *function)
{
    return {QStringLiteral("Model::errorCheck in ml/src/Model"),
            QStringLiteral("Model::%1 in ml/src/Model").arg(QLatin1String(function))};
}

/// The trail of a failed check of a TensorFlow status in a function of `Model`.
inline QStringList failedStatusIn(const char *function)
{
    return {QStringLiteral("ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils"),
            QStringLiteral("Model::%1 in ml/src/Model").arg(QLatin1String(function))};
}

/// Models on the real runtime.
class ModelTest : public ::testing::Test
{
protected:
    using Shape = std::vector<std::int64_t>;

    std::string pathOf(const char *name) const { return folder.filePath(QString::fromUtf8(name)).toStdString(); }

    std::string writeFile(const std::string &bytes) const
    {
        const std::string path = pathOf("model.pb");
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    Error init(const GraphDefBuilder &graph) { return model.init(writeFile(graph.serialised()), {}); }

    Error bind(Tensor *tensor, const std::string &name)
    {
        return tensor->init(model.getGraph(), model.getStatus(), name);
    }

    /// Loads y = x [3; 4] with x of the shape [-1, 2], and binds both.
    void loadProduct()
    {
        ASSERT_FALSE(init(productGraph()).hasError());
        ASSERT_FALSE(bind(&x, "x").hasError());
        ASSERT_FALSE(bind(&y, "y").hasError());
    }

    static GraphDefBuilder productGraph()
    {
        GraphDefBuilder graph;
        return graph.placeholder("x", Shape{-1, 2}).constant("w", {2, 1}, {3, 4}).matMul("y", "x", "w").noOp("init");
    }

    static std::vector<float> valuesOf(Tensor *tensor)
    {
        std::vector<float> values;
        EXPECT_FALSE(tensor->getData(&values).hasError());
        return values;
    }

    QTemporaryDir folder;
    Model model;
    Tensor x;
    Tensor y;
};

} // namespace zav
