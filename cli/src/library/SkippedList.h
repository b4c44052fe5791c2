// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Digestion.h"
#include "OutputFile.h"
#include "ProteinTable.h"
#include "SpectrumMaker.h"

#include <memory>

namespace zav {

/// Lists what a library leaves out, as a table with the columns protein, peptide, charge and reason. The charge is
/// empty where all charges are left out.
class SkippedList
{
public:
    /// `path` empty: nothing is listed.
    explicit SkippedList(const QString &path);

    /// Has to come first and succeed.
    Error open();

    Error add(const SkippedPeptide &skipped);
    Error add(const UnpredictedPrecursor &precursor, const ProteinTable &proteins);

    /// Gives the file its name. Nothing may be added afterwards.
    Error commit();

private:
    Error addRow(const QString &protein, const QString &peptide, const QString &charge, const QString &reason);

    std::unique_ptr<OutputFile> m_file; ///< null: nothing is listed
};

} // namespace zav
