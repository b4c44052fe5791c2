// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "LibraryManifest.h"
#include "LibraryOptions.h"
#include "LibraryPeptidoforms.h"
#include "LibraryWriter.h"
#include "ModelFolder.h"
#include "ObservedTimes.h"
#include "PeptideDigest.h"
#include "SkippedList.h"
#include "SpectrumMaker.h"

#include <memory>
#include <optional>
#include <vector>

namespace zav {

/// `zav library`: digests proteins, predicts the spectra of their peptides on all cores, writes the library.
class LibraryCommand : public Command
{
public:
    explicit LibraryCommand(const LibraryOptions &options);

private:
    Error work() override;
    Error identify();
    Error makeLibrary();
    Error openOutputs();
    Error digest();
    Error countPeptidoforms();
    Error calibrate();
    Result<FittedTimes> fit(const ObservedTimes &observed) const;
    Error loadNetworks();
    void noteOnce(const QString &remark);
    Error predictAll();
    Error consume(const MadeSpectra &made);
    Error finishOutputs();
    bool isMadeAlready() const;
    bool hasManifest() const;
    qint64 pieceSize() const;
    void tellTotals();
    QString leftOut() const;
    Error nothingToWrite() const;

    LibraryOptions m_options;
    std::optional<ModelFolder> m_folder;
    LibraryManifest m_manifest;
    SkippedList m_skipped;
    std::unique_ptr<LibraryWriter> m_writer;
    DigestedPeptides m_digested;
    PeptidoformCounts m_planned;
    std::optional<RetentionTimeCalibration> m_calibration;
    std::vector<std::unique_ptr<SpectrumMaker>> m_makers; ///< one a thread
    PrecursorCounts m_counts;
    QStringList m_noted; ///< what was told of the networks
};

} // namespace zav
