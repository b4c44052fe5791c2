// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DecoyMaker.h"
#include "Digestion.h"
#include "LibraryFormat.h"
#include "LibraryShard.h"
#include "ModelFolder.h"
#include "PeakFilter.h"
#include "PeptidoformMaker.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <limits>

namespace zav {

/// What `zav library` was asked for.
struct LibraryOptions
{
    QString proteins;    ///< path of a FASTA file, or empty and `peptideList` instead
    QString peptideList; ///< path
    NetworkChoice networks;
    QString outputPath;  ///< "-" for standard output
    QString skippedPath; ///< empty: the skipped peptides are only counted
    LibraryFileKind kind = LibraryFileKind::Tsv;

    DigestionOptions digestion;
    DecoyOptions decoys;
    QList<int> charges = {2, 3};    ///< ascending, each once, 1 to 6
    double lowestPrecursorMz = 300; ///< m/z; the range of common acquisition methods, and so is the next
    double highestPrecursorMz = 1800;
    PeptidoformRules modifications;

    double collisionEnergy = std::numeric_limits<double>::quiet_NaN(); ///< normalised, 10 to 60; NaN: the network's
    bool retentionTimes = true;
    QString observedTimes; ///< path of the table that the times are calibrated with; empty: they are iRT

    PeakFilterOptions peaks;

    int threads = 0; ///< 0: all cores
    bool lowMemory = false;
    LibraryShard shard;
    bool resume = false;
    bool verbose = false;

    QString inputPath() const { return proteins.isEmpty() ? peptideList : proteins; }
    bool writesToStandardOutput() const { return outputPath == QLatin1String("-"); }
    bool drawsPictures() const { return false; }
};

/// What `zav library merge` was asked for.
struct LibraryMergeOptions
{
    QStringList shards; ///< paths
    QString outputPath;
    bool verbose = false;

    bool drawsPictures() const { return false; }
};

} // namespace zav
