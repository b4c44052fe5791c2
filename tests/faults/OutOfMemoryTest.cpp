// SPDX-License-Identifier: Apache-2.0
#include "FailingAllocations.h"

#include <zav/MsMsFragmentationPredictomatic.h>
#include <zav/PeptidoformSpectrumPredictor.h>
#include <zav/RetentionTimePredictor.h>
#include <zav/XicBaselineLimitsDetector.h>
#include <zav/XicPeakSplitter.h>

#include <gtest/gtest.h>

#include <QtCore/QLoggingCategory>

#include <array>
#include <cmath>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <execinfo.h>
#include <functional>
#include <unistd.h>

namespace zav {
namespace {

QString network(const char *name)
{
    return QStringLiteral(ZAV_MODELS "/%1.pb").arg(QString::fromUtf8(name));
}

QList<QPointF> chromatogram(int count)
{
    QList<QPointF> points;
    for (int i = 0; i < count; ++i)
        points.append({0.1 * i, 1000 * std::exp(-std::pow((i - count / 2) / 6.0, 2)) + i % 7});
    return points;
}

QString textOf(double number)
{
    return QString::number(number, 'g', 17) + QLatin1Char(' ');
}

QString textOf(const QList<QPointF> &points)
{
    QString text;
    for (const QPointF &point : points)
        text += textOf(point.x()) + textOf(point.y());
    return text;
}

QString textOf(const QList<QList<FragmentPeak>> &spectra)
{
    QString text;
    for (const QList<FragmentPeak> &spectrum : spectra) {
        for (const FragmentPeak &peak : spectrum)
            text += textOf(peak.mz) + textOf(peak.intensity) + peak.ionType + QString::number(peak.ionNumber);
        text += QLatin1Char('\n');
    }
    return text;
}

QString textOf(const QList<Interval<double>> &limits)
{
    QString text;
    for (const Interval<double> &interval : limits)
        text += textOf(interval.start) + textOf(interval.end);
    return text;
}

QString textOf(const QList<std::pair<double, double>> &splits)
{
    QString text;
    for (const auto &[time, probability] : splits)
        text += textOf(time) + textOf(probability);
    return text;
}

sigjmp_buf beforeTheCall;

// Outside the unnamed namespace, because it has the linkage of C.
extern "C" {
static void goOnAfterCrash(int signal)
{
    failingAllocations::disarm();
    if (std::getenv("ZAV_SHOW_CRASHES") != nullptr) {
        std::array<void *, 40> frames{};
        backtrace_symbols_fd(frames.data(), backtrace(frames.data(), frames.size()), STDERR_FILENO);
    }
    siglongjmp(beforeTheCall, signal);
}
}

/// How `call` does when one of its allocations fails, the first, the second and so on until none is left to fail: each
/// time alone and with all later ones. Afterwards the same object has to do what it does undisturbed.
class FailingCall
{
public:
    FailingCall(const char *name, std::function<Error()> call, std::function<QString()> check)
        : m_name(name), m_call(std::move(call)), m_check(std::move(check))
    {}

    void run()
    {
        ASSERT_FALSE(m_call().hasError());
        m_expected = m_check();
        for (const bool laterOnesToo : {false, true}) {
            m_done = 0;
            m_faults = 0;
            long number = 1;
            while (fails(number, laterOnesToo))
                ++number;
            const char *what = laterOnesToo ? "allocation for ever" : "allocation";
            std::printf("memory   %-24s %-24s %6ld %7ld %6ld %7ld\n", m_name, what, number, number - m_done, m_done,
                        m_faults);
            std::fflush(stdout);
            EXPECT_EQ(m_faults, 0) << m_name;
        }
    }

private:
    /// False when the call has fewer allocations; it then has to succeed.
    bool fails(long number, bool laterOnesToo)
    {
        Error error;
        // NOLINTNEXTLINE(cert-err52-cpp): what was begun is lost, and so is the process where a user has it
        const int crash = sigsetjmp(beforeTheCall, 1);
        if (crash == 0) {
            failingAllocations::arm(number, laterOnesToo, true);
            error = m_call();
        }
        failingAllocations::disarm();
        const bool hasFailed = failingAllocations::failedCount() > 0;
        m_done += error.hasError() || crash != 0 ? 0 : 1;
        const QString problem = problemOf(error, crash, hasFailed, laterOnesToo);
        m_faults += problem.isEmpty() ? 0 : 1;
        if (!problem.isEmpty() && m_faults < 6)
            std::printf("    FAULT %s, allocation %ld: %s\n", m_name, number, qPrintable(problem));
        return hasFailed;
    }

    /// A call may do without the memory that it did not get, as std::stable_sort does.
    QString problemOf(const Error &error, int crash, bool hasFailed, bool laterOnesToo) const
    {
        if (crash != 0)
            return QStringLiteral("ends the process with signal %1").arg(crash);
        const bool isTold = error.code() == Failure && error.message() == QLatin1String("Out of memory") &&
                            (laterOnesToo || !error.trail().isEmpty());
        if (error.hasError() && (!hasFailed || !isTold))
            return QStringLiteral("gives the error ") + error.toString();
        return m_check() == m_expected ? QString() : QStringLiteral("the object does something else afterwards");
    }

    const char *m_name;
    std::function<Error()> m_call;
    std::function<QString()> m_check;
    QString m_expected;
    long m_done = 0;
    long m_faults = 0;
};

class OutOfMemory : public testing::Test
{
protected:
    void SetUp() override
    {
        QLoggingCategory::setFilterRules(QStringLiteral("zav.ml=false"));
        for (const int signal : {SIGSEGV, SIGABRT})
            std::signal(signal, goOnAfterCrash);
        for (int charge = 1; charge <= 5; ++charge)
            m_paths.append(network("msms_charge%1").arg(charge));
    }

    Error initFragmentation(MsMsFragmentationPredictomatic *predictor) const
    {
        return predictor->init(m_paths[0], m_paths[1], m_paths[2], m_paths[3], m_paths[4]);
    }

    static XicBaselineLimitsDetectorOptions detectorOptions()
    {
        XicBaselineLimitsDetectorOptions options;
        options.modelFilePath = network("xic_limits");
        return options;
    }

    static XicPeakSplitterOptions splitterOptions()
    {
        XicPeakSplitterOptions options;
        options.modelFilePath = network("xic_split");
        return options;
    }

    QStringList m_paths;
    const QString m_peptide = QStringLiteral("AAGGISSLEDAK");
    const QStringList m_peptides = {m_peptide, QStringLiteral("LLGWQK"), QStringLiteral("LLGWQKX").repeated(9)};
    const QList<QPointF> m_points = chromatogram(100);
    const QList<QPointF> m_many = chromatogram(3000); // more than the network takes
};

TEST_F(OutOfMemory, FragmentationInit)
{
    MsMsFragmentationPredictomatic predictor;
    FailingCall(
        "init of fragmentation", [&] { return initFragmentation(&predictor); },
        [&] {
            QList<QPointF> spectrum;
            EXPECT_FALSE(predictor.predictMsMsFragmentation(m_peptide, 1, &spectrum).hasError());
            return textOf(spectrum);
        })
        .run();
}

TEST_F(OutOfMemory, PredictMsMsFragmentation)
{
    MsMsFragmentationPredictomatic predictor;
    ASSERT_FALSE(initFragmentation(&predictor).hasError());
    const auto predict = [&](QList<QPointF> *spectrum) {
        return predictor.predictMsMsFragmentation(m_peptide, 2, spectrum);
    };
    QList<QPointF> out; // replaced on success only
    FailingCall(
        "predictMsMsFragmentation", [&] { return predict(&out); },
        [&] {
            QList<QPointF> spectrum;
            EXPECT_FALSE(predict(&spectrum).hasError());
            EXPECT_EQ(spectrum, out);
            return textOf(spectrum);
        })
        .run();
}

TEST_F(OutOfMemory, PredictFragments)
{
    MsMsFragmentationPredictomatic predictor;
    ASSERT_FALSE(initFragmentation(&predictor).hasError());
    for (const IsotopePeaks isotopes : {IsotopePeaks::LeftOut, IsotopePeaks::Included}) {
        QList<QList<FragmentPeak>> spectra;
        const auto predict = [&] { return predictor.predictFragments(m_peptides, 2, &spectra, isotopes); };
        FailingCall("predictFragments", predict, [&] {
            EXPECT_FALSE(predict().hasError());
            return textOf(spectra);
        }).run();
    }
}

TEST_F(OutOfMemory, LimitsInit)
{
    XicBaselineLimitsDetector detector;
    const XicBaselineLimitsDetectorOptions options = detectorOptions();
    FailingCall(
        "init of limits", [&] { return detector.init(options); },
        [&] {
            EXPECT_FALSE(detector.init(options).hasError());
            return textOf(detector.integrateXIC(m_points, -1, 0).value());
        })
        .run();
}

TEST_F(OutOfMemory, IntegrateXic)
{
    XicBaselineLimitsDetector detector;
    ASSERT_FALSE(detector.init(detectorOptions()).hasError());
    FailingCall(
        "integrateXIC by walk", [&] { return detector.integrateXIC(m_points).error(); },
        [&] { return textOf(detector.integrateXIC(m_points).value()); })
        .run();
    FailingCall(
        "integrateXIC by network", [&] { return detector.integrateXIC(m_points, 9.0, 0).error(); },
        [&] { return textOf(detector.integrateXIC(m_points, 9.0, 0).value()); })
        .run();
    FailingCall(
        "integrateXIC, thinned", [&] { return detector.integrateXIC(m_many, -1, 0).error(); },
        [&] { return textOf(detector.integrateXIC(m_many, -1, 0).value()); })
        .run();
}

TEST_F(OutOfMemory, SplitterInit)
{
    XicPeakSplitter splitter;
    const XicPeakSplitterOptions options = splitterOptions();
    FailingCall(
        "init of splitter", [&] { return splitter.init(options); },
        [&] {
            EXPECT_FALSE(splitter.init(options).hasError());
            return textOf(splitter.splitXIC(m_points).value());
        })
        .run();
}

TEST_F(OutOfMemory, SplitXic)
{
    XicPeakSplitter splitter;
    ASSERT_FALSE(splitter.init(splitterOptions()).hasError());
    FailingCall(
        "splitXIC", [&] { return splitter.splitXIC(m_points).error(); },
        [&] { return textOf(splitter.splitXIC(m_points).value()); })
        .run();
    FailingCall(
        "splitXIC, thinned", [&] { return splitter.splitXIC(m_many).error(); },
        [&] { return textOf(splitter.splitXIC(m_many).value()); })
        .run();
}

TEST_F(OutOfMemory, PeptidoformSpectra)
{
    PeptidoformSpectrumPredictor predictor;
    const QList<PeptidoformPrecursor> precursors = {
        {Peptidoform::fromProForma(QStringLiteral("AC[Carbamidomethyl]DM[Oxidation]K")).value(), 2, 27},
        {Peptidoform(QStringLiteral("LLGWQCK")), 3, 30}};
    QList<QList<FragmentPeak>> spectra;
    const auto predict = [&] { return predictor.predict(precursors, &spectra, IsotopePeaks::Included); };
    const auto check = [&] {
        EXPECT_FALSE(predict().hasError());
        return textOf(spectra);
    };
    const QString path = network("peptidoform_spectrum");
    FailingCall(
        "init of peptidoforms", [&] { return predictor.init(path); }, check)
        .run();
    FailingCall("predict of peptidoforms", predict, check).run();
}

TEST_F(OutOfMemory, RetentionTimes)
{
    RetentionTimePredictor predictor;
    const QList<Peptidoform> peptidoforms = {Peptidoform(QStringLiteral("LLGWQCK")),
                                             Peptidoform(QStringLiteral("AAGGISSLEDAK"))};
    const QString path = network("retention_time");
    const auto init = [&] { return predictor.init(path); };
    QList<double> times;
    QList<QList<double>> heads;
    FailingCall("init of retention times", init, [&] {
        EXPECT_FALSE(init().hasError());
        EXPECT_FALSE(predictor.predict(peptidoforms, &times).hasError());
        return textOf(times.first());
    }).run();
    const auto predict = [&] { return predictor.predict(peptidoforms, &times); };
    FailingCall("predict of retention times", predict, [&] {
        EXPECT_FALSE(predict().hasError());
        return textOf(times.first()) + textOf(times.last());
    }).run();
    const auto predictHeads = [&] { return predictor.predictHeads(peptidoforms, &heads); };
    FailingCall("predictHeads", predictHeads, [&] {
        EXPECT_FALSE(predictHeads().hasError());
        return textOf(heads.first().last()) + textOf(heads.last().last());
    }).run();
}

} // namespace
} // namespace zav
