// SPDX-License-Identifier: Apache-2.0

// On a runtime without any function for strings, neither the old nor the new ones.

#include "Model.h"

#include "MessageRecorder.h"
#include "ScriptedRuntime.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(StringlessRuntime, RunsNetworksButNeitherSavesNorRestores)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("model.pb")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    Model model;
    const Error loaded = model.init(file.fileName().toStdString(), {});
    ASSERT_FALSE(loaded.hasError()) << loaded.toString().toStdString();

    const MessageRecorder recorder;
    EXPECT_TRUE(model.save("checkpoint").equals(Failure));
    EXPECT_TRUE(model.restore("checkpoint").equals(Failure));
    EXPECT_EQ(QList<QString>(2, QStringLiteral("An error occurred allocating the file name Tensor")),
              recorder.criticalTexts());
}

} // namespace
} // namespace zav
