// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandArguments.h"

namespace zav {

class SpectrumArguments : public CommandArguments
{
public:
    const char *name() const override { return "spectrum"; }
    const char *summary() const override { return "Predict the spectrum of a peptide, or of many"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    QString contradiction() const;
    QString convert(SpectrumOptions *options) const;

    std::string m_peptide, m_charge, m_peptides, m_models, m_format, m_output, m_plot, m_against, m_scan, m_tolerance;
    double m_cysteine = SpectrumOptions().cysteineMass;
    bool m_noIsotopes = false, m_annotate = false, m_verbose = false;
};

} // namespace zav
