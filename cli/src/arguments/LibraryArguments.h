// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandArguments.h"

namespace zav {

/// `zav library` and, below it, `zav library merge`.
class LibraryArguments : public CommandArguments
{
public:
    const char *name() const override { return "library"; }
    const char *summary() const override { return "Make a spectral library of proteins or peptides"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    void addDigestionTo(CLI::App *command);
    void addPrecursorsTo(CLI::App *command);
    void addPeaksTo(CLI::App *command);
    void addOutputTo(CLI::App *command);
    void addMergeTo(CLI::App *command);

    Result<CommandLine> libraryOptions() const;
    Result<CommandLine> mergeOptions() const;
    Error convertInput(LibraryOptions *options) const;
    Error convertDecoys(LibraryOptions *options) const;
    Error convertOutput(LibraryOptions *options) const;
    Error convertShard(LibraryOptions *options) const;
    Error checkRanges() const;

    CLI::App *m_merge = nullptr;
    LibraryOptions m_given; ///< the numbers and flags; texts are below until they are converted
    std::string m_proteins, m_peptides, m_models, m_output, m_format, m_skipped, m_shard;
    std::string m_enzyme, m_cleavagePattern, m_charges, m_decoys;
    bool m_noLosses = false;
    std::vector<std::string> m_mergedShards;
    std::string m_mergedOutput;
    bool m_mergeVerbose = false;
};

} // namespace zav
