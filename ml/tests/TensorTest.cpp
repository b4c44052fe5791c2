// SPDX-License-Identifier: Apache-2.0
#include "Tensor.h"

#include "GraphDefBuilder.h"
#include "Inspectors.h"
#include "MessageRecorder.h"
#include "Trail.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <numeric>

namespace zav {
namespace {

using Shape = std::vector<std::int64_t>;

/// Tensors on the real runtime, bound to a graph of one placeholder "x" (or what a test adds to `graph`).
class TensorTest : public ::testing::Test
{
protected:
    void load()
    {
        graph.noOp("init");
        const std::string path = folder.filePath(QStringLiteral("model.pb")).toStdString();
        ASSERT_TRUE(graph.write(path));
        const Error error = model.init(path, {});
        ASSERT_FALSE(error.hasError()) << error.toString().toStdString();
    }

    void loadPlaceholder(const std::optional<Shape> &shape, GraphDefBuilder::Type type = GraphDefBuilder::FLOAT)
    {
        graph.placeholder("x", shape, type);
        ASSERT_NO_FATAL_FAILURE(load());
        ASSERT_FALSE(bind(&x, "x").hasError());
    }

    Error bind(Tensor *tensor, const std::string &name)
    {
        return tensor->init(model.getGraph(), model.getStatus(), name);
    }

    /// `setData` fails with this critical message, tagged, and leaves the tensor invalid and empty.
    void expectRefused(std::size_t count, const char *message)
    {
        const MessageRecorder recorder;
        const Error error = x.setData(std::vector<float>(count));
        EXPECT_TRUE(error.equals(Failure));
        EXPECT_TRUE(error.message().isEmpty());
        EXPECT_EQ(QList<QString>{QString::fromUtf8(message)}, recorder.criticalTexts());
        EXPECT_EQ((QStringList{QStringLiteral("Tensor::errorCheck in ml/src/Tensor"),
                               QStringLiteral("Tensor::setData in ml/src/Tensor")}),
                  trailOf(error));
        EXPECT_EQ(-1, TensorInspector::state(x));
    }

    QTemporaryDir folder;
    GraphDefBuilder graph;
    Model model;
    Tensor x;
};

TEST(FreshTensor, IsEmptyAndMayBeDestroyed)
{
    const Tensor tensor;
    EXPECT_EQ(0, TensorInspector::state(tensor));
    EXPECT_TRUE(tensor.getShape().empty());
    EXPECT_EQ(nullptr, TensorInspector::dataShape(tensor));
    EXPECT_EQ(nullptr, TensorInspector::data(tensor));
}

TEST(FreshTensor, ReleaseDoesNothing)
{
    Tensor tensor;
    tensor.release();
    EXPECT_EQ(0, TensorInspector::state(tensor));
}

TEST(FreshTensor, HasNoOperationInANullGraph)
{
    const MessageRecorder recorder;
    Tensor tensor;
    EXPECT_TRUE(tensor.init(nullptr, nullptr, "x").equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("No operation named x exists")}, recorder.criticalTexts());
}

TEST(FreshTensor, TakesNoDataBeforeItIsBound)
{
    const MessageRecorder recorder;
    Tensor tensor;
    EXPECT_TRUE(tensor.setData<float>({1.0F}).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Provided type is different from Tensor expected type")},
              recorder.criticalTexts());
    EXPECT_EQ(-1, TensorInspector::state(tensor));
}

TEST(FreshTensor, GivesNoDataBeforeItIsBound)
{
    const MessageRecorder recorder;
    Tensor tensor;
    std::vector<float> values{7.0F};
    EXPECT_TRUE(tensor.getData(&values).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Expected return type is different from Tensor type")},
              recorder.criticalTexts());
    EXPECT_EQ(-1, TensorInspector::state(tensor));
    EXPECT_EQ(std::vector<float>{7.0F}, values);
}

TEST_F(TensorTest, InitReadsTypeAndDeclaredShape)
{
    loadPlaceholder(Shape{-1, 4});
    EXPECT_EQ((Shape{-1, 4}), x.getShape());
    EXPECT_EQ(TF_FLOAT, TensorInspector::type(x));
    EXPECT_EQ(0, TensorInspector::state(x));
}

TEST_F(TensorTest, InitOfAMissingOperationNamesItAndInvalidatesTheTensor)
{
    loadPlaceholder(Shape{2});
    const MessageRecorder recorder;
    const Error error = bind(&x, "import/größe");
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().isEmpty());
    EXPECT_EQ(QList<QString>{QStringLiteral("No operation named import/größe exists")}, recorder.criticalTexts());
    EXPECT_EQ((QStringList{QStringLiteral("Tensor::errorCheck in ml/src/Tensor"),
                           QStringLiteral("Tensor::init in ml/src/Tensor")}),
              trailOf(error));
    EXPECT_EQ(-1, TensorInspector::state(x));
}

TEST_F(TensorTest, InitOfAnOperationWithoutOutputNamesItAndInvalidatesTheTensor)
{
    graph.noOp("nothing");
    loadPlaceholder(Shape{2});
    const MessageRecorder recorder;
    EXPECT_TRUE(bind(&x, "nothing").equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Operation named nothing has no output")}, recorder.criticalTexts());
    EXPECT_EQ(-1, TensorInspector::state(x));
}

TEST_F(TensorTest, InitKeepsTheShapeWhereTheNewOneIsUnknownOrScalar)
{
    graph.placeholder("unknown", std::nullopt).placeholder("scalar", Shape{});
    loadPlaceholder(Shape{-1, 4});
    ASSERT_FALSE(bind(&x, "unknown").hasError());
    EXPECT_EQ((Shape{-1, 4}), x.getShape());
    ASSERT_FALSE(bind(&x, "scalar").hasError());
    EXPECT_EQ((Shape{-1, 4}), x.getShape());
}

TEST_F(TensorTest, InitFillsTheTableAgain)
{
    loadPlaceholder(Shape{2});
    *TensorInspector::api(&x) = TfApi();
    ASSERT_FALSE(bind(&x, "x").hasError());
    EXPECT_TRUE(TensorInspector::api(&x)->isLoaded());
    TensorInspector::api(&x)->TF_TensorType = nullptr; // none of those that `isLoaded` asks for
    ASSERT_FALSE(bind(&x, "x").hasError());
    EXPECT_NE(nullptr, TensorInspector::api(&x)->TF_TensorType);
}

TEST_F(TensorTest, InitDropsHeldData)
{
    loadPlaceholder(Shape{2});
    ASSERT_FALSE(x.setData<float>({1.0F, 2.0F}).hasError());
    ASSERT_FALSE(bind(&x, "x").hasError()); // the leak checker counts the data
    EXPECT_EQ(0, TensorInspector::state(x));
}

TEST_F(TensorTest, OnlyASuccessfulInitLeavesTheInvalidState)
{
    loadPlaceholder(Shape{2});
    expectRefused(3, "Expected and provided number of elements do not match");
    expectRefused(2, "Tensor is not valid");
    EXPECT_TRUE(bind(&x, "missing").hasError());
    expectRefused(2, "Tensor is not valid");
    ASSERT_FALSE(bind(&x, "x").hasError());
    EXPECT_FALSE(x.setData<float>({1.0F, 2.0F}).hasError());
}

TEST_F(TensorTest, SetDataFillsTheUnknownDimension)
{
    loadPlaceholder(Shape{-1, 4});
    std::vector<float> values(12);
    std::iota(values.begin(), values.end(), 1.0F);
    ASSERT_FALSE(x.setData(values).hasError());
    EXPECT_EQ(1, TensorInspector::state(x));
    EXPECT_EQ((Shape{3, 4}), *TensorInspector::dataShape(x));
    EXPECT_EQ((Shape{3, 4}), TensorInspector::storedShape(x));
    EXPECT_EQ((Shape{-1, 4}), x.getShape());
    std::vector<float> read;
    ASSERT_FALSE(x.getData(&read).hasError());
    EXPECT_EQ(values, read);
}

TEST_F(TensorTest, SetDataTakesAMultipleOfTheDeclaredSize)
{
    loadPlaceholder(Shape{2, 3});
    ASSERT_FALSE(x.setData(std::vector<float>(12)).hasError()); // TensorFlow's answer to 48 bytes for [2, 3]
    EXPECT_EQ((Shape{2, 3}), TensorInspector::storedShape(x));
    EXPECT_EQ(48U, TensorInspector::storedByteCount(x));
}

TEST_F(TensorTest, SeveralUnknownDimensionsGetTheSameSize)
{
    loadPlaceholder(Shape{-1, -1, 3});
    expectRefused(12, "An error occurred allocating the Tensor memory"); // 12 values are too few for [4, 4, 3]
    EXPECT_EQ((Shape{4, 4, 3}), *TensorInspector::dataShape(x));
}

TEST_F(TensorTest, TwoUnknownDimensionsOfSizeOneFit)
{
    loadPlaceholder(Shape{-1, -1, 3});
    ASSERT_FALSE(x.setData<float>({1.0F, 2.0F, 3.0F}).hasError());
    EXPECT_EQ((Shape{1, 1, 3}), TensorInspector::storedShape(x));
}

TEST_F(TensorTest, NoValuesMakeAnEmptyBatch)
{
    loadPlaceholder(Shape{-1, 4});
    ASSERT_FALSE(x.setData(std::vector<float>()).hasError());
    EXPECT_EQ((Shape{0, 4}), TensorInspector::storedShape(x));
}

TEST_F(TensorTest, SetDataRefusesACountThatIsNoMultiple)
{
    loadPlaceholder(Shape{-1, 4});
    expectRefused(10, "Expected and provided number of elements do not match");
}

TEST_F(TensorTest, SetDataRefusesADimensionOfZero)
{
    loadPlaceholder(Shape{0, 4});
    expectRefused(4, "Expected and provided number of elements do not match");
    ASSERT_FALSE(bind(&x, "x").hasError());
    expectRefused(0, "Expected and provided number of elements do not match");
}

TEST_F(TensorTest, SetDataRefusesAnUnknownOrScalarShape)
{
    loadPlaceholder(std::nullopt);
    expectRefused(4, "Shape of the input Tensor is not known, please provide a shape");
}

TEST_F(TensorTest, SetDataRefusesAnotherElementTypeBeforeItLooksAtTheShape)
{
    loadPlaceholder(std::nullopt, GraphDefBuilder::INT32);
    expectRefused(4, "Provided type is different from Tensor expected type");
}

TEST_F(TensorTest, SetDataOnAnInvalidTensorIsRefusedBeforeItLooksAtTheType)
{
    loadPlaceholder(Shape{2}, GraphDefBuilder::INT32);
    expectRefused(2, "Provided type is different from Tensor expected type");
    expectRefused(2, "Tensor is not valid");
}

TEST_F(TensorTest, GetDataOnAnInvalidTensorIsRefusedBeforeItLooksAtTheType)
{
    loadPlaceholder(Shape{2}, GraphDefBuilder::INT32);
    expectRefused(2, "Provided type is different from Tensor expected type");
    const MessageRecorder recorder;
    std::vector<float> values;
    EXPECT_TRUE(x.getData(&values).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Tensor is not valid")}, recorder.criticalTexts());
}

TEST_F(TensorTest, SetDataDropsTheOldDataBeforeItChecks)
{
    loadPlaceholder(Shape{-1, 4});
    ASSERT_FALSE(x.setData(std::vector<float>(4)).hasError());
    expectRefused(3, "Expected and provided number of elements do not match");
    EXPECT_EQ(nullptr, TensorInspector::data(x));
}

// The expected count is a product in 32 bits, with the sign dropped.

TEST_F(TensorTest, AProductThatWrapsToZeroNeverFits)
{
    loadPlaceholder(Shape{65536, 65536});
    expectRefused(0, "Expected and provided number of elements do not match");
}

TEST_F(TensorTest, AProductOfTwoToThe31NeverFits)
{
    loadPlaceholder(Shape{32768, 65536});
    expectRefused(0, "Expected and provided number of elements do not match");
}

TEST_F(TensorTest, AProductThatWrapsToASmallNumberIsWhatCounts)
{
    loadPlaceholder(Shape{65537, 65535, 65537}); // modulo 2^32: -65537
    expectRefused(65536, "Expected and provided number of elements do not match");
    ASSERT_FALSE(bind(&x, "x").hasError());
    expectRefused(65537, "An error occurred allocating the Tensor memory");
}

TEST_F(TensorTest, OnlyTheLow32BitsOfADimensionCount)
{
    loadPlaceholder(Shape{(std::int64_t(1) << 32) + 2, 3});
    expectRefused(7, "Expected and provided number of elements do not match");
    ASSERT_FALSE(bind(&x, "x").hasError());
    expectRefused(12, "An error occurred allocating the Tensor memory");
}

TEST_F(TensorTest, MoreElementsThanAnInt64CountsAreRefusedBeforeTensorFlowSeesThem)
{
    loadPlaceholder(Shape{-1, -1, -1, -1});
    expectRefused(131072, "An error occurred allocating the Tensor memory"); // (2^17)^4 = 2^68
}

TEST_F(TensorTest, MoreBytesThanAnInt64CountsAreRefusedBeforeTensorFlowSeesThem)
{
    // 2^62 + 1 elements: modulo 2^32 that is the one value, and four times as many bytes are, modulo 2^64, its four.
    loadPlaceholder(Shape{2147418113, 2147549185});
    expectRefused(1, "An error occurred allocating the Tensor memory");
}

TEST_F(TensorTest, TensorFlowReadsTheBufferInPlace)
{
    loadPlaceholder(Shape{-1});
    for (const std::size_t count : {1U, 3U, 17U, 1000U}) {
        ASSERT_FALSE(x.setData(std::vector<float>(count)).hasError());
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(TensorInspector::data(x)) % 64);
        EXPECT_EQ(TensorInspector::data(x), TensorInspector::storedData(x));
    }
}

TEST_F(TensorTest, GetDataBeforeARunFailsAndInvalidatesTheTensor)
{
    loadPlaceholder(Shape{2});
    const MessageRecorder recorder;
    std::vector<float> values{7.0F};
    const Error error = x.getData(&values);
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ((QStringList{QStringLiteral("Tensor::errorCheck in ml/src/Tensor"),
                           QStringLiteral("Tensor::getData in ml/src/Tensor")}),
              trailOf(error));
    EXPECT_EQ(-1, TensorInspector::state(x));
    EXPECT_TRUE(x.getData(&values).equals(Failure));
    EXPECT_EQ((QList<QString>{QStringLiteral("Tensor is empty"), QStringLiteral("Tensor is not valid")}),
              recorder.criticalTexts());
    EXPECT_EQ(std::vector<float>{7.0F}, values);
}

TEST_F(TensorTest, GetDataRefusesAnotherElementTypeBeforeItLooksForData)
{
    loadPlaceholder(Shape{2}, GraphDefBuilder::INT32);
    const MessageRecorder recorder;
    std::vector<float> values;
    EXPECT_TRUE(x.getData(&values).equals(Failure));
    EXPECT_EQ(QList<QString>{QStringLiteral("Expected return type is different from Tensor type")},
              recorder.criticalTexts());
}

TEST_F(TensorTest, GetDataReplacesTheValuesAndMayBeRepeated)
{
    loadPlaceholder(Shape{-1});
    ASSERT_FALSE(x.setData<float>({1.5F, -2.0F}).hasError());
    std::vector<float> values{9.0F, 9.0F, 9.0F};
    for (int i = 0; i < 2; ++i) {
        ASSERT_FALSE(x.getData(&values).hasError());
        EXPECT_EQ((std::vector<float>{1.5F, -2.0F}), values);
    }
}

TEST_F(TensorTest, GetDataRefusesAnotherElementTypeAndFreesTheResult)
{
    graph.shapeOf("shape", "x");
    loadPlaceholder(Shape{-1});
    Tensor output;
    ASSERT_FALSE(bind(&output, "shape").hasError());
    ASSERT_FALSE(x.setData<float>({1.0F}).hasError());
    ASSERT_FALSE(model.run(x, output).hasError());

    const MessageRecorder recorder;
    std::vector<float> values;
    EXPECT_TRUE(output.getData(&values).equals(Failure)); // the leak checker counts the result
    EXPECT_EQ(QList<QString>{QStringLiteral("Expected return type is different from Tensor type")},
              recorder.criticalTexts());
    EXPECT_EQ(-1, TensorInspector::state(output));
}

TEST_F(TensorTest, GetDataCountsTheBytesNotTheDimensions)
{
    loadPlaceholder(Shape{2, 3});
    std::vector<float> values(12);
    std::iota(values.begin(), values.end(), 1.0F);
    ASSERT_FALSE(x.setData(values).hasError());
    ASSERT_EQ((Shape{2, 3}), TensorInspector::storedShape(x));
    std::vector<float> read;
    ASSERT_FALSE(x.getData(&read).hasError());
    EXPECT_EQ(values, read);
}

TEST_F(TensorTest, ReleaseDropsTheData)
{
    loadPlaceholder(Shape{2});
    ASSERT_FALSE(x.setData<float>({1.0F, 2.0F}).hasError());
    x.release();
    EXPECT_EQ(0, TensorInspector::state(x));
    EXPECT_EQ(nullptr, TensorInspector::data(x));
    EXPECT_EQ(Shape{2}, x.getShape());
    x.release();
    EXPECT_EQ(0, TensorInspector::state(x));
}

TEST_F(TensorTest, ReleaseLeavesAnInvalidTensorInvalid)
{
    loadPlaceholder(Shape{2});
    expectRefused(3, "Expected and provided number of elements do not match");
    x.release();
    EXPECT_EQ(-1, TensorInspector::state(x));
}

TEST_F(TensorTest, UpdateShapeTakesTheShapeOfTheData)
{
    loadPlaceholder(Shape{-1, 4});
    ASSERT_FALSE(x.setData(std::vector<float>(8)).hasError());
    x.updateShape();
    EXPECT_EQ((Shape{2, 4}), x.getShape());
}

TEST_F(TensorTest, AScalarResultLeavesTheShapeAlone)
{
    graph.constant("value", {}, {2.5F}).identity("scalar", "value");
    loadPlaceholder(Shape{2, 3});
    ASSERT_FALSE(bind(&x, "scalar").hasError());
    ASSERT_FALSE(model.run(std::vector<Tensor *>{}, x).hasError());
    EXPECT_EQ((Shape{2, 3}), x.getShape());
    std::vector<float> values;
    ASSERT_FALSE(x.getData(&values).hasError());
    EXPECT_EQ(std::vector<float>{2.5F}, values);
}

TEST_F(TensorTest, MayOutliveItsModelWithData)
{
    auto shortLived = std::make_unique<Model>();
    loadPlaceholder(Shape{2});
    ASSERT_FALSE(shortLived->init(folder.filePath(QStringLiteral("model.pb")).toStdString(), {}).hasError());
    Tensor tensor;
    ASSERT_FALSE(tensor.init(shortLived->getGraph(), shortLived->getStatus(), "x").hasError());
    ASSERT_FALSE(tensor.setData<float>({1.0F, 2.0F}).hasError());
    shortLived.reset();
    std::vector<float> values;
    ASSERT_FALSE(tensor.getData(&values).hasError());
    EXPECT_EQ((std::vector<float>{1.0F, 2.0F}), values);
    EXPECT_FALSE(bind(&tensor, "x").hasError());
}

TEST_F(TensorTest, ErrorCheckKeepsTheMessageOutOfTheError)
{
    const MessageRecorder recorder;
    EXPECT_FALSE(x.errorCheck(true, QStringLiteral("unused")).hasError());
    EXPECT_EQ(0, TensorInspector::state(x));
    const Error error = x.errorCheck(false, QStringLiteral("a \"quoted\" text"));
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().isEmpty());
    EXPECT_EQ(QStringList{QStringLiteral("Tensor::errorCheck in ml/src/Tensor")}, trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("a \"quoted\" text")}, recorder.criticalTexts());
    EXPECT_EQ(1, recorder.messages().size());
    EXPECT_EQ(-1, TensorInspector::state(x));
}

} // namespace
} // namespace zav
