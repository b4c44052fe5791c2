// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "PeptideList.h"
#include "SpectrumComparison.h"
#include "SpectrumOptions.h"
#include "SpectrumPredictor.h"
#include "SpectrumWriter.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

namespace zav {

/// `zav spectrum`: predicts the spectra that were asked for, writes them, and for one peptide compares and draws.
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
    Error accept(const PeptideListRow &row, const Result<PredictedSpectrum> &outcome);
    Error finishOutput();
    Error readObserved();
    Error compareAndDraw();
    void printComparison(const SpectrumComparison &comparison);
    void reportFailure(const PeptideListRow &row, const Error &error);
    bool isList() const { return !m_options.peptideList.isEmpty(); }

    SpectrumOptions m_options;
    OutputFormat m_format;
    std::unique_ptr<SpectrumOutput> m_output; ///< once the peptides are known
    QList<PeptideListRow> m_rows;
    QList<Error> m_problems; ///< one per row: why it cannot be predicted, or no error
    qsizetype m_failed = 0;
    std::unique_ptr<SpectrumPredictor> m_predictor;
    QStringList m_noted; ///< remarks on predictions that the user has read
    std::optional<ObservedSpectrum> m_observed;
    std::optional<PredictedSpectrum> m_spectrum; ///< of a run for one peptide
};

} // namespace zav
