// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "ComparisonOutput.h"
#include "ObservedSpectrumFile.h"
#include "PeptideList.h"
#include "SpectrumOptions.h"
#include "SpectrumPredictor.h"
#include "SpectrumWriter.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

namespace zav {

/// `zav spectrum`: predicts the spectra that were asked for, writes them and compares them with measured ones. Draws a
/// single one.
class SpectrumCommand : public Command
{
public:
    explicit SpectrumCommand(const SpectrumOptions &options);

private:
    Error work() override;
    Error readPeptides();
    void checkPeptides();
    void prepareOutput();
    Error loadNetworks();
    Error predictAll();
    Error predictBlock(qsizetype first, qsizetype end);
    void noteRemarks();
    Error accept(qsizetype number, const Result<PredictedSpectrum> &outcome);
    Error finishOutput();
    Error readObserved();
    Error openRun();
    Error compare(qsizetype number, const Result<PredictedSpectrum> &outcome);
    void compareWith(const SpectrumOutcome &observed, ComparedSpectrum *compared);
    Error showComparisons();
    Error draw();
    void reportFailure(const PeptideListRow &row, const Error &error);
    void noteFailures();
    bool hasEnergies() const;
    bool isStandardOutputFree() const;
    bool isList() const { return !m_options.peptideList.isEmpty(); }

    SpectrumOptions m_options;
    OutputFormat m_format;
    std::unique_ptr<SpectrumOutput> m_output; ///< once the peptides are known
    QList<PeptideListRow> m_rows;
    QList<Error> m_problems; ///< one per row: why it cannot be predicted, or no error
    qsizetype m_failed = 0;
    std::unique_ptr<SpectrumPredictor> m_predictor;
    QStringList m_noted;                             ///< remarks on predictions that the user has read
    std::unique_ptr<ComparisonOutput> m_comparisons; ///< null: nothing is to be compared
    std::unique_ptr<ObservedSpectra> m_run;          ///< of a list: of each row the spectrum to compare with
    qsizetype m_notCompared = 0;                     ///< though predicted
    // Of a run for one peptide.
    std::optional<ObservedSpectrum> m_observed;
    std::optional<PredictedSpectrum> m_spectrum;
    std::optional<SpectrumComparison> m_comparison;
};

} // namespace zav
