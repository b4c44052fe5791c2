// SPDX-License-Identifier: Apache-2.0
//
// What the predictors say when the runtime fails in the middle of their work, as the real one hardly ever does.
#include "ScriptedRuntime.h"

#include "MessageRecorder.h"
#include "PeptideVocabulary.h"
#include "PeptidoformIons.h"
#include "PeptidoformRows.h"
#include "SpectrumAssembler.h"
#include "TfApi.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/RetentionTimePredictor.h>
#include <zav/XicBaselineLimitsDetector.h>
#include <zav/XicPeakSplitter.h>

#include <QtCore/QFile>
#include <QtCore/QLibrary>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace zav {
namespace {

constexpr int INTERNAL_ERROR = 13; // TF_INTERNAL
constexpr int LENGTH = 256;        // of the chromatogram networks
const QString PEPTIDE = QStringLiteral("PEPTIDE");

/// One of the predictors, with a network for it.
class AnyPredictor
{
public:
    virtual ~AnyPredictor() = default;

    virtual std::vector<ScriptedOperation> operations() const = 0;
    virtual std::vector<std::int64_t> resultShape() const = 0;
    virtual Error load(const QString &path) = 0;
    virtual Error predict() = 0;

    /// Of the last success: how much was predicted.
    qsizetype count = -1;
};

class Fragmentation : public AnyPredictor
{
public:
    std::vector<ScriptedOperation> operations() const override
    {
        const std::int64_t size = peptideVocabulary::maximumPeptideLength(1) * peptideVocabulary::encodingWidth();
        return {{peptideVocabulary::NETWORK_INPUT, 1, {-1, size}}, {peptideVocabulary::NETWORK_OUTPUT}};
    }

    std::vector<std::int64_t> resultShape() const override
    {
        return {SpectrumAssembler(1, 0, IsotopePeaks::LeftOut).slotCount()};
    }

    Error load(const QString &path) override { return m_predictor.init(path, path, path, path, path); }

    Error predict() override
    {
        QList<QList<FragmentPeak>> spectra;
        Error error = m_predictor.predictFragments({PEPTIDE}, 1, &spectra);
        if (!error.hasError())
            count = spectra.first().size();
        return error;
    }

private:
    MsMsFragmentationPredictomatic m_predictor;
};

class PeptidoformSpectra : public AnyPredictor
{
public:
    std::vector<ScriptedOperation> operations() const override
    {
        return {{peptidoformRows::NETWORK_INPUT, 1, {-1, peptidoformRows::SIZE}},
                {"precursors", 1, {-1, 3}},
                {"intensities"}};
    }

    std::vector<std::int64_t> resultShape() const override
    {
        return {peptidoformIons::SERIES_COUNT * (PEPTIDE.size() - 1)};
    }

    Error load(const QString &path) override { return m_predictor.init(path); }

    Error predict() override
    {
        QList<QList<FragmentPeak>> spectra;
        Error error = m_predictor.predict({{Peptidoform(PEPTIDE), 2, 30}}, &spectra);
        if (!error.hasError())
            count = spectra.first().size();
        return error;
    }

private:
    PeptidoformSpectrumPredictor m_predictor;
};

class RetentionTimes : public AnyPredictor
{
public:
    std::vector<ScriptedOperation> operations() const override
    {
        return {{peptidoformRows::NETWORK_INPUT, 1, {-1, peptidoformRows::ROW_COUNT, peptidoformRows::COLUMN_COUNT}},
                {"retention_times"}};
    }

    std::vector<std::int64_t> resultShape() const override { return {1, 1}; }
    Error load(const QString &path) override { return m_predictor.init(path); }

    Error predict() override
    {
        QList<double> times;
        Error error = m_predictor.predict({Peptidoform(PEPTIDE)}, &times);
        if (!error.hasError())
            count = times.size();
        return error;
    }

private:
    RetentionTimePredictor m_predictor;
};

template <typename Predictor, typename Options>
class Chromatograms : public AnyPredictor
{
public:
    std::vector<ScriptedOperation> operations() const override
    {
        return {{"import/img", 1, {1, LENGTH}}, {"import/conv2d_19/Sigmoid"}};
    }

    std::vector<std::int64_t> resultShape() const override { return {LENGTH}; }

    Error load(const QString &path) override
    {
        Options options;
        options.modelFilePath = path;
        options.maxPointCount = LENGTH;
        return m_predictor.init(options);
    }

    Error predict() override
    {
        QList<QPointF> points;
        for (int i = 0; i < 40; ++i)
            points.append({double(i), i == 20 ? 100.0 : 1.0});
        const auto found = search(points);
        if (!found.hasError())
            count = found.value().size();
        return found.error();
    }

private:
    auto search(const QList<QPointF> &points)
    {
        if constexpr (std::is_same_v<Predictor, XicPeakSplitter>)
            return m_predictor.splitXIC(points);
        else
            return m_predictor.integrateXIC(points, -1, 0);
    }

    Predictor m_predictor;
};

using Limits = Chromatograms<XicBaselineLimitsDetector, XicBaselineLimitsDetectorOptions>;
using Splits = Chromatograms<XicPeakSplitter, XicPeakSplitterOptions>;

template <typename Predictor>
class PredictorOnAFailingRuntime : public ::testing::Test
{
protected:
    void SetUp() override
    {
        const QFunctionPointer access = QLibrary::resolve(TfApi::runtimeFileName(), "scriptedRuntime");
        ASSERT_NE(nullptr, access) << TfApi::runtimeFileName().toStdString();
        runtime = reinterpret_cast<ScriptedRuntime *(*)()>(access)();
        runtime->forget();
        runtime->operations = predictor->operations();
        runtime->operations.push_back({"init"});
        runtime->resultShape = predictor->resultShape();
        std::size_t count = 1;
        for (const std::int64_t dimension : runtime->resultShape)
            count *= static_cast<std::size_t>(dimension);
        runtime->results.assign(count, 0.5F);
        path = folder.filePath(QStringLiteral("network.pb"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(5, file.write("graph"));
    }

    void TearDown() override
    {
        predictor.reset();
        EXPECT_TRUE(runtime->liveCount.empty());
        EXPECT_EQ(0, runtime->wrongDeletions);
    }

    /// Fails now, and works as before once the runtime does.
    void expectFailure(const ScriptedRuntime &failing)
    {
        const ScriptedRuntime sound = *runtime;
        const qsizetype count = predictor->count;
        const auto answers = [this](const ScriptedRuntime &state) {
            runtime->runStatus = state.runStatus;
            runtime->refusesNewTensor = state.refusesNewTensor;
            runtime->hidesTensorData = state.hidesTensorData;
            runtime->results = state.results;
            runtime->resultShape = state.resultShape;
        };
        answers(failing);
        const Error error = predictor->predict();
        EXPECT_TRUE(error.equals(Failure)) << error.toString().toStdString();
        EXPECT_FALSE(error.trail().isEmpty());
        answers(sound);
        ASSERT_FALSE(predictor->predict().hasError());
        EXPECT_EQ(predictor->count, count);
    }

    const MessageRecorder recorder; // what is told on the way stays out of the output of the tests
    ScriptedRuntime *runtime = nullptr;
    QTemporaryDir folder;
    QString path;
    std::unique_ptr<AnyPredictor> predictor = std::make_unique<Predictor>();
};

using Predictors = ::testing::Types<Fragmentation, PeptidoformSpectra, RetentionTimes, Limits, Splits>;
TYPED_TEST_SUITE(PredictorOnAFailingRuntime, Predictors);

TYPED_TEST(PredictorOnAFailingRuntime, TellsAFailedRunAndGoesOn)
{
    ASSERT_FALSE(this->predictor->load(this->path).hasError());
    ASSERT_FALSE(this->predictor->predict().hasError());
    ScriptedRuntime failing = *this->runtime;
    failing.runStatus = INTERNAL_ERROR;
    this->expectFailure(failing);
}

TYPED_TEST(PredictorOnAFailingRuntime, TellsTensorsThatAreNotMadeOrHideTheirValuesAndGoesOn)
{
    ASSERT_FALSE(this->predictor->load(this->path).hasError());
    ASSERT_FALSE(this->predictor->predict().hasError());
    ScriptedRuntime failing = *this->runtime;
    failing.refusesNewTensor = true;
    this->expectFailure(failing);
    failing.refusesNewTensor = false;
    failing.hidesTensorData = true;
    this->expectFailure(failing);
}

TYPED_TEST(PredictorOnAFailingRuntime, TellsAnswersOfAnotherSizeAndGoesOn)
{
    ASSERT_FALSE(this->predictor->load(this->path).hasError());
    ASSERT_FALSE(this->predictor->predict().hasError());
    ScriptedRuntime failing = *this->runtime;
    failing.resultShape = {0};
    failing.results.clear();
    this->expectFailure(failing);
}

TYPED_TEST(PredictorOnAFailingRuntime, TellsEachOperationThatTheNetworkLacks)
{
    const std::vector<ScriptedOperation> all = this->runtime->operations;
    for (std::size_t missing = 0; missing < all.size(); ++missing) {
        this->runtime->operations = all;
        this->runtime->operations.erase(this->runtime->operations.begin() + static_cast<std::ptrdiff_t>(missing));
        this->predictor = std::make_unique<TypeParam>();
        Error error = this->predictor->load(this->path);
        if (!error.hasError())
            error = this->predictor->predict();
        EXPECT_TRUE(error.equals(Failure)) << all[missing].name;
    }
}

TYPED_TEST(PredictorOnAFailingRuntime, TellsAGraphThatIsNotImported)
{
    this->runtime->importStatus = INTERNAL_ERROR;
    EXPECT_TRUE(this->predictor->load(this->path).equals(Failure));
    EXPECT_TRUE(this->predictor->predict().equals(Failure));
}

} // namespace
} // namespace zav
