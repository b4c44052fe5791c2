// SPDX-License-Identifier: Apache-2.0
#include "ScriptedRuntime.h"

#include "Inspectors.h"
#include "MessageRecorder.h"
#include "Trail.h"

#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zav {
namespace {

using Calls = std::vector<std::string>;
using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr int INTERNAL_ERROR = 13; // TF_INTERNAL

/// Models and tensors on a runtime that lies in the folder "zav" beside this program.
class ScriptedRuntimeTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QFunctionPointer access = QLibrary::resolve(TfApi::runtimeFileName(), "scriptedRuntime");
        ASSERT_NE(nullptr, access) << TfApi::runtimeFileName().toStdString();
        runtime = reinterpret_cast<ScriptedRuntime *(*)()>(access)();
        runtime->forget();
        path = folder.filePath(QStringLiteral("model.pb")).toStdString();
        QFile file(QString::fromStdString(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(5, file.write("graph"));
    }

    void TearDown() override
    {
        model.reset();
        expectNothingLives();
    }

    void expectNothingLives() const
    {
        for (const auto &[type, count] : runtime->liveCount)
            ADD_FAILURE() << count << " " << type << " left";
        EXPECT_EQ(0, runtime->wrongDeletions);
    }

    /// Loads a model with the operations and forgets the calls.
    void load(const std::vector<ScriptedOperation> &operations)
    {
        runtime->operations = operations;
        runtime->operations.push_back({"init"});
        ASSERT_FALSE(model->init(path, {}).hasError());
        runtime->calls.clear();
    }

    void loadSaver() { load({{"save/Const", 7}, {"save/control_dependency"}, {"save/restore_all"}}); }

    Error bind(Tensor *tensor, const char *name) { return tensor->init(model->getGraph(), model->getStatus(), name); }

    ScriptedRuntime *runtime = nullptr;
    QTemporaryDir folder;
    std::string path;
    std::unique_ptr<Model> model = std::make_unique<Model>();
};

QStringList statusTrail(const char *function)
{
    return {QStringLiteral("ErrorUtils::equal in common/core_mini/src/algo/ErrorUtils"),
            QStringLiteral("Model::%1 in ml/src/Model").arg(QLatin1String(function))};
}

TEST_F(ScriptedRuntimeTest, IsFoundInTheFolderZavBesideTheProgram)
{
    EXPECT_TRUE(TfApi::runtimeFileName().endsWith(QStringLiteral("/zav/libtensorflow.so.2")));
    TfApi api;
    api.load();
    EXPECT_FALSE(api.checkComplete().hasError());
    ASSERT_NE(nullptr, api.TF_StringEncode);
    EXPECT_STREQ("scripted", api.TF_Version());
}

TEST_F(ScriptedRuntimeTest, IsDescribed)
{
    const Result<RuntimeDescription> described = TensorFlowRuntime::describe();
    ASSERT_FALSE(described.hasError());
    EXPECT_EQ(QStringLiteral("scripted"), described.value().version);
    EXPECT_TRUE(described.value().file.endsWith(QStringLiteral("/scripted/zav/libtensorflow.so.2")));
    EXPECT_EQ(RuntimeOrigin::BesideLibrary, described.value().origin);
}

TEST_F(ScriptedRuntimeTest, InitGoesItsStepsInOrder)
{
    ASSERT_FALSE(model->init(path, {}).hasError());
    EXPECT_EQ((Calls{"TF_NewStatus", "TF_NewGraph", "TF_NewSessionOptions", "TF_NewSession", "TF_DeleteSessionOptions",
                     "TF_NewBufferFromString", "TF_NewImportGraphDefOptions", "TF_GraphImportGraphDef",
                     "TF_DeleteImportGraphDefOptions", "TF_DeleteBuffer", "TF_GraphOperationByName(init)",
                     "TF_SessionRun(-> 0 outputs, init)"}),
              runtime->calls);
    EXPECT_EQ("graph", runtime->importedBytes);
}

TEST_F(ScriptedRuntimeTest, DestructionDeletesSessionGraphAndStatusInThisOrder)
{
    load({});
    model.reset();
    EXPECT_EQ((Calls{"TF_DeleteSession", "TF_DeleteGraph", "TF_DeleteStatus"}), runtime->calls);
}

TEST_F(ScriptedRuntimeTest, AFailureToDeleteTheSessionIsPassedOver)
{
    load({});
    runtime->deleteSessionStatus = INTERNAL_ERROR;
    model.reset();
    EXPECT_EQ((Calls{"TF_DeleteSession", "TF_DeleteGraph", "TF_DeleteStatus"}), runtime->calls);
}

TEST_F(ScriptedRuntimeTest, AConfigurationIsHandedOverBeforeTheSessionIsMade)
{
    ASSERT_FALSE(model->init(path, {0x10, 0x00, 0xff}).hasError());
    EXPECT_EQ("TF_SetConfig", runtime->calls.at(3));
    EXPECT_EQ("TF_NewSession", runtime->calls.at(4));
    EXPECT_EQ(std::string("\x10\x00\xff", 3), runtime->configBytes);
}

TEST_F(ScriptedRuntimeTest, AFailureToMakeTheSessionFailsInitAndFreesTheRest)
{
    runtime->newSessionStatus = INTERNAL_ERROR;
    const MessageRecorder recorder;
    const Error error = model->init(path, {});
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(statusTrail("init"), trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
    EXPECT_EQ("TF_DeleteSessionOptions", runtime->calls.back()); // the file is not opened
    model.reset();
    expectNothingLives();
}

TEST_F(ScriptedRuntimeTest, AFailureToImportFailsInitAndFreesItsMeans)
{
    runtime->importStatus = INTERNAL_ERROR;
    EXPECT_EQ(statusTrail("init"), trailOf(model->init(path, {})));
    EXPECT_EQ("TF_DeleteBuffer", runtime->calls.back());
}

TEST_F(ScriptedRuntimeTest, AFailureOfTheInitOperationFailsInit)
{
    runtime->runStatus = INTERNAL_ERROR;
    EXPECT_EQ(statusTrail("init"), trailOf(model->init(path, {})));
}

TEST_F(ScriptedRuntimeTest, AFailureLeavesWhatWasMadeInTheModelUntilTheNextInit)
{
    runtime->importStatus = INTERNAL_ERROR;
    ASSERT_TRUE(model->init(path, {}).hasError());
    EXPECT_EQ((std::map<std::string, int>{{"graph", 1}, {"session", 1}, {"status", 1}}), runtime->liveCount);
    runtime->importStatus = 0;
    ASSERT_FALSE(model->init(path, {}).hasError());
    EXPECT_EQ((std::map<std::string, int>{{"graph", 1}, {"session", 1}, {"status", 1}}), runtime->liveCount);
}

TEST_F(ScriptedRuntimeTest, ASecondInitFreesTheFirstNetworkBefore)
{
    load({});
    ASSERT_FALSE(model->init(path, {}).hasError());
    const Calls first(runtime->calls.begin(), runtime->calls.begin() + 4);
    EXPECT_EQ((Calls{"TF_DeleteSession", "TF_DeleteGraph", "TF_DeleteStatus", "TF_NewStatus"}), first);
}

TEST_F(ScriptedRuntimeTest, SaveEncodesTheNameTwiceBehindTheOffset)
{
    loadSaver();
    ASSERT_FALSE(model->save("a/b").hasError());
    EXPECT_EQ((Calls{"TF_StringEncodedSize(3)", "TF_AllocateTensor(type 7, 0 dimensions, 12 bytes)",
                     "TF_StringEncode(a/b, 4)", "TF_StringEncode(a/b, 4)", "TF_GraphOperationByName(save/Const)",
                     "TF_GraphOperationByName(save/control_dependency)",
                     "TF_SessionRun(save/Const:0 -> 0 outputs, save/control_dependency)", "TF_DeleteTensor"}),
              runtime->calls);
    EXPECT_EQ((std::vector{std::string("\0\0\0\0\0\0\0\0\x03"
                                       "a/b",
                                       12)}),
              runtime->fedBytes);
}

TEST_F(ScriptedRuntimeTest, SaveJudgesTheSecondEncodingAlone)
{
    loadSaver();
    runtime->encodeStatus = INTERNAL_ERROR;
    runtime->failingEncodes = 1;
    CaptureStderr();
    EXPECT_FALSE(model->save("a/b").hasError());
    EXPECT_EQ("", GetCapturedStderr());
    EXPECT_EQ(1U, runtime->fedBytes.size());

    runtime->failingEncodes = 1;
    CaptureStderr();
    EXPECT_EQ(statusTrail("restore"), trailOf(model->restore("a/b")));
    EXPECT_EQ("Error during filename a/b encoding\n", GetCapturedStderr());
}

TEST_F(ScriptedRuntimeTest, RestoreEncodesTheNameOnce)
{
    loadSaver();
    ASSERT_FALSE(model->restore("a/b").hasError());
    EXPECT_EQ((Calls{"TF_StringEncodedSize(3)", "TF_AllocateTensor(type 7, 0 dimensions, 12 bytes)",
                     "TF_StringEncode(a/b, 4)", "TF_GraphOperationByName(save/Const)",
                     "TF_GraphOperationByName(save/restore_all)",
                     "TF_SessionRun(save/Const:0 -> 0 outputs, save/restore_all)", "TF_DeleteTensor"}),
              runtime->calls);
    EXPECT_EQ((std::vector{std::string("\0\0\0\0\0\0\0\0\x03"
                                       "a/b",
                                       12)}),
              runtime->fedBytes);
}

TEST_F(ScriptedRuntimeTest, ANameThatCannotBeEncodedIsToldAndNothingIsRun)
{
    loadSaver();
    runtime->encodeStatus = INTERNAL_ERROR;
    const MessageRecorder recorder;
    CaptureStderr();
    const Error saved = model->save("a/b");
    const Error restored = model->restore("c/d");
    EXPECT_EQ("Error during filename a/b encoding\nError during filename c/d encoding\n", GetCapturedStderr());
    EXPECT_TRUE(saved.equals(Failure));
    EXPECT_TRUE(restored.equals(Failure));
    EXPECT_EQ(statusTrail("save"), trailOf(saved));
    EXPECT_EQ(statusTrail("restore"), trailOf(restored));
    EXPECT_TRUE(runtime->fedBytes.empty());
    EXPECT_TRUE(recorder.messages().isEmpty());
    EXPECT_EQ(0U, runtime->liveCount.count("tensor"));
}

TEST_F(ScriptedRuntimeTest, AFailedSaveOrRestoreFreesTheName)
{
    loadSaver();
    runtime->runStatus = INTERNAL_ERROR;
    EXPECT_EQ(statusTrail("save"), trailOf(model->save("a/b")));
    EXPECT_EQ(statusTrail("restore"), trailOf(model->restore("a/b")));
    EXPECT_EQ(0U, runtime->liveCount.count("tensor"));
}

TEST_F(ScriptedRuntimeTest, AMissingSaverFreesTheName)
{
    load({});
    const MessageRecorder recorder;
    EXPECT_TRUE(model->save("a/b").equals(Failure));
    EXPECT_TRUE(model->restore("a/b").equals(Failure));
    EXPECT_EQ((QList<QString>{QStringLiteral("Error: No operation named \"save/control_dependencyl\" exists"),
                              QStringLiteral("Error: No operation named \"save/restore_all\" exists")}),
              recorder.criticalTexts());
    EXPECT_EQ(0U, runtime->liveCount.count("tensor"));
}

TEST_F(ScriptedRuntimeTest, WithoutMemoryForTheNameSaveAndRestoreFail)
{
    loadSaver();
    runtime->refusesAllocation = true;
    const MessageRecorder recorder;
    EXPECT_TRUE(model->save("a/b").equals(Failure));
    EXPECT_TRUE(model->restore("a/b").equals(Failure));
    EXPECT_EQ(QList<QString>(2, QStringLiteral("An error occurred allocating the file name Tensor")),
              recorder.criticalTexts());
}

TEST_F(ScriptedRuntimeTest, ATensorThatIsNotMadeIsToldAndItsBufferIsFreedOnce)
{
    load({{"x", 1, {2}}});
    Tensor tensor;
    ASSERT_FALSE(bind(&tensor, "x").hasError());
    runtime->refusesNewTensor = true;
    const MessageRecorder recorder;
    const Error error = tensor.setData<float>({1.0F, 2.0F});
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ((QStringList{QStringLiteral("Tensor::errorCheck in ml/src/Tensor"),
                           QStringLiteral("Tensor::setData in ml/src/Tensor")}),
              trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("An error occurred allocating the Tensor memory")},
              recorder.criticalTexts());
    EXPECT_EQ(-1, TensorInspector::state(tensor));
}

TEST_F(ScriptedRuntimeTest, OnlyADimensionOfMinusOneIsUnknown)
{
    load({{"x", 1, {-2, 3}}});
    Tensor tensor;
    ASSERT_FALSE(bind(&tensor, "x").hasError());
    const MessageRecorder recorder;
    EXPECT_TRUE(tensor.setData(std::vector<float>(12)).equals(Failure)); // a multiple of 6
    EXPECT_EQ(QList<QString>{QStringLiteral("An error occurred allocating the Tensor memory")},
              recorder.criticalTexts());
    EXPECT_EQ((std::vector<std::int64_t>{-2, 3}), *TensorInspector::dataShape(tensor));
}

TEST_F(ScriptedRuntimeTest, DataThatTheRuntimeHidesIsEmpty)
{
    load({{"x", 1, {2}}});
    Tensor tensor;
    ASSERT_FALSE(bind(&tensor, "x").hasError());
    ASSERT_FALSE(tensor.setData<float>({1.0F, 2.0F}).hasError());
    runtime->hidesTensorData = true;
    const MessageRecorder recorder;
    std::vector<float> values{3.0F};
    EXPECT_TRUE(tensor.getData(&values).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Tensor data is empty")}, recorder.criticalTexts());
    EXPECT_EQ(std::vector<float>{3.0F}, values);
    EXPECT_EQ(0U, runtime->liveCount.count("tensor"));
}

TEST_F(ScriptedRuntimeTest, ATensorDeletesItsDataOnce)
{
    load({{"x", 1, {-1}}, {"y", 1, {1}}});
    {
        Tensor x;
        Tensor y;
        ASSERT_FALSE(bind(&x, "x").hasError());
        ASSERT_FALSE(bind(&y, "y").hasError());
        ASSERT_FALSE(x.setData<float>({1.0F}).hasError());
        ASSERT_FALSE(x.setData<float>({1.0F}).hasError());
        EXPECT_EQ(1, runtime->liveCount["tensor"]);
        ASSERT_FALSE(model->run(x, y).hasError());
        EXPECT_EQ(1, runtime->liveCount["tensor"]); // the result
        ASSERT_FALSE(x.setData<float>({1.0F}).hasError());
        runtime->runStatus = INTERNAL_ERROR;
        EXPECT_TRUE(model->run(x, y).hasError());
        EXPECT_EQ(1, runtime->liveCount["tensor"]); // the input
    }
    EXPECT_EQ(0U, runtime->liveCount.count("tensor"));
}

TEST_F(ScriptedRuntimeTest, RunReleasesTheOutputsBeforeItRuns)
{
    load({{"y", 1, {1}}});
    Tensor y;
    ASSERT_FALSE(bind(&y, "y").hasError());
    runtime->calls.clear();
    for (int i = 0; i < 2; ++i)
        ASSERT_FALSE(model->run(std::vector<Tensor *>{}, y).hasError());
    EXPECT_EQ((Calls{"TF_SessionRun(-> 1 outputs)", "TF_DeleteTensor", "TF_SessionRun(-> 1 outputs)"}), runtime->calls);
}

} // namespace
} // namespace zav
