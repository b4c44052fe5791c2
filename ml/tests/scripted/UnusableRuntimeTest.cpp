// SPDX-License-Identifier: Apache-2.0

// Built once for each runtime that cannot be used, whose file TfApi is configured with.

#include "Inspectors.h"
#include "MessageRecorder.h"
#include "Trail.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

void expectExplained(const Error &error)
{
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().contains(QStringLiteral(EXPECTED_FUNCTION " "))) << error.message();
    EXPECT_TRUE(error.message().contains(QStringLiteral("\"" ZAV_TENSORFLOW_LIBRARY "\""))) << error.message();
    EXPECT_TRUE(error.message().contains(QStringLiteral(EXPECTED_REASON))) << error.message();
    EXPECT_TRUE(error.message().contains(QStringLiteral("scripts/setup"))) << error.message();
    EXPECT_TRUE(error.message().contains(QStringLiteral("zav runtime install"))) << error.message();
}

TEST(UnusableRuntime, IsTheConfiguredFile)
{
    EXPECT_EQ(QStringLiteral(ZAV_TENSORFLOW_LIBRARY), TfApi::runtimeFileName());
}

TEST(UnusableRuntime, ModelInitTellsTheFileTheFunctionAndTheReason)
{
    const MessageRecorder recorder;
    Model model;
    const Error error = model.init("model.pb", {});
    expectExplained(error);
    EXPECT_EQ(QStringList{QStringLiteral("Model::init in ml/src/Model")}, trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
    EXPECT_EQ(nullptr, model.getGraph());
    EXPECT_TRUE(model.operationNames(false).empty());
}

TEST(UnusableRuntime, TensorInitTellsTheFileTheFunctionAndTheReason)
{
    Tensor tensor;
    const Error error = tensor.init(nullptr, nullptr, "x");
    expectExplained(error);
    EXPECT_EQ(QStringList{QStringLiteral("Tensor::init in ml/src/Tensor")}, trailOf(error));
    EXPECT_EQ(-1, TensorInspector::state(tensor));
}

TEST(UnusableRuntime, CannotBeDescribed)
{
    const Result<RuntimeDescription> described = TensorFlowRuntime::describe();
    ASSERT_TRUE(described.hasError());
    expectExplained(described.error());
    EXPECT_EQ(QStringList{QStringLiteral("TensorFlowRuntime::describe in ml/src/TensorFlowRuntime")},
              trailOf(described.error()));
}

TEST(UnusableRuntime, NothingElseReachesIt)
{
    const MessageRecorder recorder;
    Model model;
    Tensor tensor;
    EXPECT_TRUE(model.init("model.pb", {}).hasError());
    EXPECT_TRUE(tensor.init(model.getGraph(), model.getStatus(), "x").hasError());
    std::vector<float> values;
    EXPECT_TRUE(tensor.setData<float>({1.0F}).equals(Failure));
    EXPECT_TRUE(tensor.getData(&values).equals(Failure));
    EXPECT_TRUE(model.run(std::vector<Tensor *>{}, std::vector<Tensor *>{}).equals(Failure));
    EXPECT_TRUE(model.save("checkpoint").equals(Failure));
    EXPECT_TRUE(model.restore("checkpoint").equals(Failure));
}

} // namespace
} // namespace zav
