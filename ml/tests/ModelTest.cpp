// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include "ModelTest.h"

#include <random>

namespace zav {
namespace {

using Names = std::vector<std::string>;
using testing::internal::CaptureStderr;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStderr;
using testing::internal::GetCapturedStdout;

/// Whether the text has this line; TensorFlow writes lines of its own.
bool hasLine(const std::string &text, const std::string &line)
{
    return ("\n" + text).find("\n" + line + "\n") != std::string::npos;
}

TEST_F(ModelTest, HasNothingBeforeInit)
{
    EXPECT_EQ(nullptr, model.getGraph());
    EXPECT_EQ(nullptr, model.getStatus());
    EXPECT_FALSE(ModelInspector::api(model).isLoaded());
    EXPECT_TRUE(model.operationNames(false).empty());
}

TEST_F(ModelTest, RunSaveAndRestoreFailBeforeInit)
{
    const MessageRecorder recorder;
    EXPECT_TRUE(model.run(std::vector<Tensor *>{}, std::vector<Tensor *>{}).equals(Failure));
    EXPECT_TRUE(model.save(pathOf("checkpoint")).equals(Failure));
    EXPECT_TRUE(model.restore(pathOf("checkpoint")).equals(Failure));
    EXPECT_EQ(QList<QString>(3, QStringLiteral("Error: The model is not initialized")), recorder.criticalTexts());
}

TEST_F(ModelTest, InitRunsTheOperationNamedInit)
{
    GraphDefBuilder graph;
    graph.constant("start", {2}, {5, 6}).variable("v", {2}, "start").identity("read", "v").noOp("init", {"^v/Assign"});
    ASSERT_FALSE(init(graph).hasError());
    ASSERT_FALSE(bind(&y, "read").hasError());
    ASSERT_FALSE(model.run(std::vector<Tensor *>{}, y).hasError());
    EXPECT_EQ((std::vector<float>{5, 6}), valuesOf(&y));
}

TEST_F(ModelTest, AMissingFileIsToldOnStandardErrorAndByACriticalMessage)
{
    const MessageRecorder recorder;
    const std::string path = pathOf("größe/missing.pb");
    CaptureStderr();
    const Error error = model.init(path, {});
    EXPECT_TRUE(hasLine(GetCapturedStderr(), "Unable to open file: " + path));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().isEmpty());
    EXPECT_EQ(failedCheckIn("init"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("An error occurred reading the model")}, recorder.criticalTexts());
    EXPECT_TRUE(ModelInspector::hasSession(model));
}

TEST_F(ModelTest, AFolderIsNoGraphFile)
{
    const MessageRecorder recorder;
    const std::string path = folder.path().toStdString();
    CaptureStderr();
    const Error error = model.init(path, {});
    // Where the file system keeps its files in memory, a folder cannot be opened at its end.
    const std::string lines = GetCapturedStderr();
    EXPECT_TRUE(hasLine(lines, "Unable to read the full file: " + path) ||
                hasLine(lines, "Unable to open file: " + path))
        << lines;
    EXPECT_EQ(failedCheckIn("init"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("An error occurred reading the model")}, recorder.criticalTexts());
}

TEST_F(ModelTest, AFileBeyondTheLimitOfProtobufIsRefusedUnread)
{
    const std::string path = writeFile("x");
    ASSERT_TRUE(QFile::resize(QString::fromStdString(path), Q_INT64_C(1) << 31)); // sparse: takes no room
    CaptureStderr();
    EXPECT_TRUE(model.init(path, {}).equals(Failure));
    EXPECT_TRUE(hasLine(GetCapturedStderr(), "Unable to read the full file: " + path));
}

TEST_F(ModelTest, AGraphWithoutInitIsRefused)
{
    const MessageRecorder recorder;
    GraphDefBuilder graph;
    const Error error = init(graph.placeholder("x", Shape{2}));
    EXPECT_EQ(failedCheckIn("init"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: No operation named \"init\" exists")}, recorder.criticalTexts());
}

TEST_F(ModelTest, AnEmptyFileIsAGraphWithoutInit)
{
    const MessageRecorder recorder;
    EXPECT_TRUE(model.init(writeFile({}), {}).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: No operation named \"init\" exists")}, recorder.criticalTexts());
}

TEST_F(ModelTest, ATruncatedGraphFailsWhereverItEnds)
{
    const std::string bytes = productGraph().serialised();
    constexpr std::size_t VERSIONS_SIZE = 5; // behind the last operation, "init"
    const MessageRecorder recorder;          // keeps the messages off the terminal
    for (std::size_t size = 0; size < bytes.size() - VERSIONS_SIZE; ++size)
        ASSERT_TRUE(model.init(writeFile(bytes.substr(0, size)), {}).equals(Failure)) << size;
    EXPECT_FALSE(model.init(writeFile(bytes), {}).hasError());
}

TEST_F(ModelTest, NoiseIsNoGraph)
{
    std::mt19937 random(20240229);
    const MessageRecorder recorder;
    for (int i = 0; i < 50; ++i) {
        std::string bytes(1 + random() % 2000, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        ASSERT_TRUE(model.init(writeFile(bytes), {}).equals(Failure)) << i;
    }
}

TEST_F(ModelTest, AGraphThatTensorFlowRefusesFailsByItsStatusWithoutAMessage)
{
    const MessageRecorder recorder;
    GraphDefBuilder graph;
    const Error error = init(graph.node("x", "NoSuchOperation", {}).noOp("init"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(failedStatusIn("init"), trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
}

TEST_F(ModelTest, AnInitOperationThatFailsFailsInit)
{
    const MessageRecorder recorder;
    GraphDefBuilder graph;
    const Error error = init(graph.placeholder("x", Shape{2}).noOp("init", {"^x"})); // nothing is fed
    EXPECT_EQ(failedStatusIn("init"), trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
}

TEST_F(ModelTest, TakesAConfigurationOfTheSession)
{
    const std::vector<unsigned char> oneThread{0x10, 0x01}; // intra_op_parallelism_threads: 1
    ASSERT_FALSE(model.init(writeFile(productGraph().serialised()), oneThread).hasError());
}

TEST_F(ModelTest, AConfigurationThatCannotBeParsedIsPassedOver)
{
    const std::vector<unsigned char> noise{0xff, 0xff, 0xff};
    EXPECT_FALSE(model.init(writeFile(productGraph().serialised()), noise).hasError());
}

TEST_F(ModelTest, OperationNamesComeInTheOrderOfTheGraph)
{
    ASSERT_FALSE(init(productGraph()).hasError());
    CaptureStdout();
    EXPECT_EQ((Names{"x", "w", "y", "init"}), model.operationNames(false));
    EXPECT_EQ("", GetCapturedStdout());
}

TEST_F(ModelTest, OperationNamesArePrintedLineByLine)
{
    ASSERT_FALSE(init(productGraph()).hasError());
    CaptureStdout();
    EXPECT_EQ((Names{"x", "w", "y", "init"}), model.operationNames(true));
    EXPECT_EQ("x\nw\ny\ninit\n", GetCapturedStdout());
}

TEST_F(ModelTest, ASecondInitReplacesTheNetwork)
{
    loadProduct();
    GraphDefBuilder graph;
    graph.placeholder("x", Shape{-1, 2}).constant("w", {2, 1}, {10, 100}).matMul("y", "x", "w").noOp("init");
    ASSERT_FALSE(init(graph).hasError());
    ASSERT_FALSE(bind(&x, "x").hasError());
    ASSERT_FALSE(bind(&y, "y").hasError());
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    EXPECT_EQ(std::vector<float>{210}, valuesOf(&y));
}

TEST_F(ModelTest, EveryInitFillsTheTableAgain)
{
    ASSERT_FALSE(init(productGraph()).hasError());
    ModelInspector::api(&model)->TF_OperationName = nullptr; // none of those that `isLoaded` asks for
    ASSERT_FALSE(init(productGraph()).hasError());
    EXPECT_EQ((Names{"x", "w", "y", "init"}), model.operationNames(false));
}

TEST_F(ModelTest, InitAfterAFailedInitLoadsTheNetwork)
{
    const MessageRecorder recorder;
    EXPECT_TRUE(model.init(pathOf("missing.pb"), {}).hasError());
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    EXPECT_FALSE(model.run(x, y).hasError());
}

TEST_F(ModelTest, SeparateModelsAreIndependent)
{
    loadProduct();
    {
        Model other;
        ASSERT_FALSE(other.init(pathOf("model.pb"), {}).hasError());
    }
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    EXPECT_EQ(std::vector<float>{11}, valuesOf(&y));
}

TEST_F(ModelTest, ErrorCheckKeepsTheMessageOutOfTheError)
{
    const MessageRecorder recorder;
    EXPECT_FALSE(model.errorCheck(true, "unused").hasError());
    const Error error = model.errorCheck(false, "größer \"als\"");
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().isEmpty());
    EXPECT_EQ(QStringList{QStringLiteral("Model::errorCheck in ml/src/Model")}, trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("größer \"als\"")}, recorder.criticalTexts());
    EXPECT_EQ(1, recorder.messages().size());
}

} // namespace
} // namespace zav
