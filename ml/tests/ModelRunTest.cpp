// SPDX-License-Identifier: Apache-2.0
#include "Model.h"

#include "ModelTest.h"

namespace zav {
namespace {

TEST_F(ModelTest, RunComputesTheNetwork)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2, 3, 4, 5, 6}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    EXPECT_EQ((std::vector<float>{11, 25, 39}), valuesOf(&y));
}

TEST_F(ModelTest, AnOutputTakesTheShapeOfItsResult)
{
    loadProduct();
    EXPECT_EQ((Shape{-1, 1}), y.getShape());
    ASSERT_FALSE(x.setData<float>({1, 2, 3, 4, 5, 6}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    EXPECT_EQ((Shape{3, 1}), y.getShape());
    EXPECT_EQ(1, TensorInspector::state(y));
}

TEST_F(ModelTest, InputsAndOutputsGoByTheOrderOfTheLists)
{
    GraphDefBuilder graph;
    graph.placeholder("a", Shape{1}).placeholder("b", Shape{1}).constant("minus", {}, {-1});
    graph.multiply("negative", "b", "minus").add("difference", "a", "negative").multiply("product", "a", "b");
    ASSERT_FALSE(init(graph.noOp("init")).hasError());
    Tensor a;
    Tensor b;
    ASSERT_FALSE(bind(&a, "a").hasError());
    ASSERT_FALSE(bind(&b, "b").hasError());
    ASSERT_FALSE(bind(&x, "difference").hasError());
    ASSERT_FALSE(bind(&y, "product").hasError());
    ASSERT_FALSE(a.setData<float>({7}).hasError());
    ASSERT_FALSE(b.setData<float>({2}).hasError());
    ASSERT_FALSE(model.run({&b, &a}, {&x, &y}).hasError());
    EXPECT_EQ(std::vector<float>{5}, valuesOf(&x));
    EXPECT_EQ(std::vector<float>{14}, valuesOf(&y));

    ASSERT_FALSE(a.setData<float>({3}).hasError());
    ASSERT_FALSE(b.setData<float>({2}).hasError());
    ASSERT_FALSE(model.run({&a, &b}, y).hasError());
    EXPECT_EQ(std::vector<float>{6}, valuesOf(&y));
}

TEST_F(ModelTest, RunEmptiesTheInputs)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    EXPECT_EQ(0, TensorInspector::state(x));
    EXPECT_TRUE(model.run(x, y).equals(Failure));
}

TEST_F(ModelTest, AnInputThatWasNeverFilledFailsBeforeAnythingIsReleased)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());

    Tensor neverFilled;
    ASSERT_FALSE(bind(&neverFilled, "x").hasError());
    const MessageRecorder recorder;
    const Error error = model.run(neverFilled, y);
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(failedCheckIn("run"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: Not all elements from the inputs are full")},
              recorder.criticalTexts());
    EXPECT_EQ(std::vector<float>{11}, valuesOf(&y));
}

TEST_F(ModelTest, AnInvalidInputIsNotFull)
{
    loadProduct();
    std::vector<float> unused;
    const MessageRecorder recorder;
    EXPECT_TRUE(x.getData(&unused).hasError());
    ASSERT_EQ(-1, TensorInspector::state(x));
    EXPECT_EQ(failedCheckIn("run"), trailOf(model.run(x, y)));
    EXPECT_EQ((QList<QString>{QStringLiteral("Tensor is empty"),
                              QStringLiteral("Error: Not all elements from the inputs are full")}),
              recorder.criticalTexts());
}

TEST_F(ModelTest, InputsAreCheckedBeforeOutputs)
{
    loadProduct();
    std::vector<float> unused;
    Tensor neverBound;
    const MessageRecorder recorder;
    EXPECT_TRUE(y.getData(&unused).hasError());
    for (Tensor *output : {&y, &neverBound})
        EXPECT_EQ(failedCheckIn("run"), trailOf(model.run(x, *output)));
    EXPECT_EQ((QList<QString>{QStringLiteral("Tensor is empty"),
                              QStringLiteral("Error: Not all elements from the inputs are full"),
                              QStringLiteral("Error: Not all elements from the inputs are full")}),
              recorder.criticalTexts());
}

TEST_F(ModelTest, AnInvalidOutputFailsAndTheInputKeepsItsData)
{
    loadProduct();
    std::vector<float> unused;
    const MessageRecorder recorder;
    EXPECT_TRUE(y.getData(&unused).hasError());
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    const Error error = model.run(x, y);
    EXPECT_EQ(failedCheckIn("run"), trailOf(error));
    EXPECT_EQ(QStringLiteral("Error: Not all outputs Tensors are valid"), recorder.criticalTexts().last());
    EXPECT_EQ(1, TensorInspector::state(x));
}

TEST_F(ModelTest, AnOutputThatWasNeverBoundIsRefused)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    ASSERT_FALSE(x.setData<float>({5, 6}).hasError());

    Tensor neverBound;
    const MessageRecorder recorder;
    const Error error = model.run({&x}, {&y, &neverBound});
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(failedCheckIn("run"), trailOf(error));
    EXPECT_EQ(QList<QString>{QStringLiteral("Error: Not all outputs Tensors are valid")}, recorder.criticalTexts());
    EXPECT_EQ((std::vector<float>{5, 6}), valuesOf(&x));
    EXPECT_EQ(std::vector<float>{11}, valuesOf(&y));
    EXPECT_EQ(0, TensorInspector::state(neverBound));
}

TEST_F(ModelTest, ASecondRunReplacesTheResults)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2, 3, 4}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    ASSERT_FALSE(x.setData<float>({5, 6}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError()); // the leak checker counts the first result
    EXPECT_EQ((Shape{1, 1}), y.getShape());
    EXPECT_EQ(std::vector<float>{39}, valuesOf(&y));
}

TEST_F(ModelTest, ARunThatTensorFlowRefusesKeepsTheInputsAndEmptiesTheOutputs)
{
    GraphDefBuilder graph;
    ASSERT_FALSE(init(graph.placeholder("x", Shape{-1}).reshape("y", "x", {2, 2}).noOp("init")).hasError());
    ASSERT_FALSE(bind(&x, "x").hasError());
    ASSERT_FALSE(bind(&y, "y").hasError());
    ASSERT_FALSE(x.setData<float>({1, 2, 3, 4}).hasError());
    ASSERT_FALSE(model.run(x, y).hasError());
    ASSERT_FALSE(x.setData<float>({1, 2, 3}).hasError());

    const MessageRecorder recorder;
    const Error error = model.run(x, y);
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_EQ(failedStatusIn("run"), trailOf(error));
    EXPECT_TRUE(recorder.messages().isEmpty());
    EXPECT_EQ((std::vector<float>{1, 2, 3}), valuesOf(&x));
    EXPECT_EQ(0, TensorInspector::state(y));
}

TEST_F(ModelTest, ATensorCannotBeInputAndOutputOfOneRun)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    EXPECT_TRUE(model.run(x, x).equals(Failure));
    EXPECT_EQ((std::vector<float>{1, 2}), valuesOf(&x));
}

TEST_F(ModelTest, AnOutputListedTwiceIsFilledOnce)
{
    loadProduct();
    ASSERT_FALSE(x.setData<float>({1, 2}).hasError());
    ASSERT_FALSE(model.run({&x}, {&y, &y}).hasError()); // the leak checker counts the other result
    EXPECT_EQ(std::vector<float>{11}, valuesOf(&y));
}

} // namespace
} // namespace zav
