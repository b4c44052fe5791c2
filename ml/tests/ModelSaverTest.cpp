// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include "ModelTest.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace zav {
namespace {

/// A graph with a real saver: the variable "v" starts as [1, 2]; fetching "changed" assigns it the value of "new".
class SaverTest : public ModelTest
{
protected:
    void SetUp() override
    {
        GraphDefBuilder graph;
        graph.constant("start", {2}, {1, 2}).variable("v", {2}, "start").identity("read", "v");
        graph.placeholder("new", Shape{2}).assign("assign", "v", "new").identity("changed", "assign");
        ASSERT_FALSE(init(graph.saver({"v"}).noOp("init", {"^v/Assign"})).hasError());
    }

    void change(const std::vector<float> &values)
    {
        ASSERT_FALSE(bind(&x, "new").hasError());
        ASSERT_FALSE(bind(&y, "changed").hasError());
        ASSERT_FALSE(x.setData(values).hasError());
        ASSERT_FALSE(model.run(x, y).hasError());
    }

    std::vector<float> variable()
    {
        EXPECT_FALSE(bind(&y, "read").hasError());
        EXPECT_FALSE(model.run(std::vector<Tensor *>{}, y).hasError());
        return valuesOf(&y);
    }

    void expectRoundTrip(const std::string &path)
    {
        change({3, 4});
        ASSERT_FALSE(model.save(path).hasError());
        change({8, 9});
        ASSERT_EQ((std::vector<float>{8, 9}), variable());
        ASSERT_FALSE(model.restore(path).hasError());
        EXPECT_EQ((std::vector<float>{3, 4}), variable());
    }
};

TEST_F(SaverTest, RestoreBringsTheSavedValuesBack)
{
    const std::string path = pathOf("a checkpoint, größer than 22 bytes"); // which TF_TString keeps on the heap
    expectRoundTrip(path);
    EXPECT_TRUE(QFile::exists(QString::fromStdString(path + ".index")));
}

TEST_F(SaverTest, RestoreBringsTheSavedValuesBackUnderAShortName)
{
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    expectRoundTrip("a"); // TF_TString keeps it in place
    EXPECT_TRUE(QDir::setCurrent(previous));
}

TEST_F(SaverTest, AnotherModelReadsTheCheckpoint)
{
    change({3, 4});
    ASSERT_FALSE(model.save(pathOf("checkpoint")).hasError());
    ASSERT_FALSE(model.init(pathOf("model.pb"), {}).hasError());
    ASSERT_EQ((std::vector<float>{1, 2}), variable());
    ASSERT_FALSE(model.restore(pathOf("checkpoint")).hasError());
    EXPECT_EQ((std::vector<float>{3, 4}), variable());
}

TEST_F(SaverTest, SaveIntoAMissingFolderFailsByTheStatus)
{
    const MessageRecorder recorder;
    ASSERT_TRUE(folder.isValid());
    writeFile("in the way");
    const Error error = model.save(pathOf("model.pb/checkpoint"));
    EXPECT_EQ(failedStatusIn("save"), trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
}

TEST_F(SaverTest, RestoreOfAMissingCheckpointFailsByTheStatusAndChangesNothing)
{
    const Error error = model.restore(pathOf("missing"));
    EXPECT_EQ(failedStatusIn("restore"), trailOf(error));
    EXPECT_EQ((std::vector<float>{1, 2}), variable());
}

TEST_F(SaverTest, AFailureBeforeDoesNotFailTheNextSave)
{
    ASSERT_TRUE(model.restore(pathOf("missing")).hasError());
    EXPECT_FALSE(model.save(pathOf("checkpoint")).hasError());
}

TEST_F(ModelTest, SaveWithoutASaverNamesItsOperationWithALetterTooMany)
{
    loadProduct();
    const MessageRecorder recorder;
    const Error error = model.save(pathOf("checkpoint"));
    EXPECT_EQ(failedCheckIn("save"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: No operation named \"save/control_dependencyl\" exists")},
              recorder.criticalTexts());
}

TEST_F(ModelTest, RestoreWithoutASaverNamesItsOperation)
{
    loadProduct();
    const MessageRecorder recorder;
    const Error error = model.restore(pathOf("checkpoint"));
    EXPECT_EQ(failedCheckIn("restore"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: No operation named \"save/restore_all\" exists")},
              recorder.criticalTexts());
}

TEST_F(ModelTest, ASaverWithoutAFileNameInputIsRefused)
{
    GraphDefBuilder graph;
    graph.noOp("save/control_dependency").noOp("save/restore_all").noOp("init");
    ASSERT_FALSE(init(graph).hasError());
    const MessageRecorder recorder;
    EXPECT_TRUE(model.save(pathOf("checkpoint")).equals(Failure));
    EXPECT_TRUE(model.restore(pathOf("checkpoint")).equals(Failure));
    EXPECT_EQ(QList<QString>(2, QStringLiteral("Error: No operation named \"save/Const\" exists")),
              recorder.criticalTexts());
}

} // namespace
} // namespace zav
