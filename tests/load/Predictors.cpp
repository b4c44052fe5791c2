// SPDX-License-Identifier: Apache-2.0
#include "Predictors.h"

#include <cmath>
#include <cstring>

namespace zav::load {

namespace {

void append(const QList<Interval<double>> &limits, std::vector<double> *out)
{
    for (const Interval<double> &each : limits)
        out->insert(out->end(), {each.start, each.end});
}

} // namespace

QString peptide(Random *random)
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    QString sequence;
    for (quint64 left = 7 + (*random)() % 20; left > 0; --left)
        sequence += QLatin1Char(RESIDUES[(*random)() % 20]);
    return sequence;
}

Peptidoform peptidoformOf(const QString &peptide)
{
    const Modification carbamidomethyl = modifications::findByName(QStringLiteral("Carbamidomethyl"))->modification;
    const Modification oxidation = modifications::findByName(QStringLiteral("Oxidation"))->modification;
    QList<PlacedModification> placed;
    for (int i = 0; i < peptide.size(); ++i) {
        if (peptide[i] == u'C')
            placed.append({i + 1, carbamidomethyl});
        if (peptide[i] == u'M')
            placed.append({i + 1, oxidation});
    }
    return Peptidoform(peptide, placed);
}

QList<QPointF> trace(Random *random)
{
    const auto uniform = [&] { return static_cast<double>((*random)() % 1'000'000) / 1e6; };
    const int count = 16 + static_cast<int>((*random)() % (POINTS - 16));
    QList<QPointF> points;
    for (int i = 0; i < count; ++i)
        points.append({0.5 * i, 10 * uniform()});
    for (quint64 peaks = (*random)() % 4; peaks > 0; --peaks) {
        const double apex = count * uniform(), sigma = 1 + 8 * uniform(), height = std::pow(10, 1 + 4 * uniform());
        for (int i = 0; i < count; ++i)
            points[i].ry() += height * std::exp(-0.5 * std::pow((i - apex) / sigma, 2));
    }
    return points;
}

XicBaselineLimitsDetectorOptions limitsOptions(const QDir &models)
{
    XicBaselineLimitsDetectorOptions options;
    options.modelFilePath = models.filePath(QStringLiteral("xic_limits.pb"));
    options.maxPointCount = POINTS;
    return options;
}

XicPeakSplitterOptions splitOptions(const QDir &models)
{
    XicPeakSplitterOptions options;
    options.modelFilePath = models.filePath(QStringLiteral("xic_split.pb"));
    options.maxPointCount = POINTS;
    return options;
}

bool load(const QDir &models, MsMsFragmentationPredictomatic *predictor)
{
    const auto path = [&](int charge) { return models.filePath(QStringLiteral("msms_charge%1.pb").arg(charge)); };
    return !predictor->init(path(1), path(2), path(3), path(4), path(5)).hasError();
}

bool load(const QDir &models, PeptidoformSpectrumPredictor *predictor)
{
    return !predictor->init(models.filePath(QStringLiteral("peptidoform_spectrum.pb"))).hasError();
}

bool load(const QDir &models, RetentionTimePredictor *predictor)
{
    return !predictor->init(models.filePath(QStringLiteral("retention_time.pb"))).hasError();
}

bool Result::operator==(const Result &other) const
{
    return values.size() == other.values.size() && !values.empty() &&
           std::memcmp(values.data(), other.values.data(), values.size() * sizeof(double)) == 0;
}

bool Predictors::load(const QDir &models)
{
    return zav::load::load(models, &m_fragments) && zav::load::load(models, &m_peptidoforms) &&
           zav::load::load(models, &m_retentionTimes) && !m_limits.init(limitsOptions(models)).hasError() &&
           !m_splits.init(splitOptions(models)).hasError();
}

Result Predictors::predict(const Input &input)
{
    Result result;
    QList<QPointF> spectrum;
    const Error error = m_fragments.predictMsMsFragmentation(input.peptide, input.charge, &spectrum);
    const Peptidoform peptidoform = peptidoformOf(input.peptide);
    QList<QList<FragmentPeak>> spectra;
    const Error peptidoformError = m_peptidoforms.predict({{peptidoform, input.charge, 27.0}}, &spectra);
    QList<double> times;
    const Error timeError = m_retentionTimes.predict({peptidoform}, &times);
    const auto limits = m_limits.integrateXIC(input.trace, -1.0, 0);
    const auto walked = m_limits.integrateXIC(input.trace);
    const auto splits = m_splits.splitXIC(input.trace);
    if (error.hasError() || peptidoformError.hasError() || timeError.hasError() || limits.hasError() ||
        walked.hasError() || splits.hasError())
        return result;
    for (const QPointF &peak : spectrum)
        result.values.insert(result.values.end(), {peak.x(), peak.y()});
    for (const FragmentPeak &peak : spectra.first())
        result.values.insert(result.values.end(), {peak.mz, peak.intensity});
    result.values.push_back(times.first());
    append(limits.value(), &result.values);
    append(walked.value(), &result.values);
    for (const auto &[time, probability] : splits.value())
        result.values.insert(result.values.end(), {time, probability});
    return result;
}

} // namespace zav::load
