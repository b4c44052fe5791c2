// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "DecoyMaker.h"
#include "Digestion.h"
#include "LibraryFormat.h"
#include "LibraryShard.h"
#include "PeakFilter.h"
#include "PeptideMasses.h"
#include "PeptidoformMaker.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zav {

/// What `zav library` was asked for.
struct LibraryOptions
{
    QString proteins;    ///< path of a FASTA file, or empty and `peptideList` instead
    QString peptideList; ///< path
    QString modelFolder; ///< empty: where the networks are installed
    QString outputPath;  ///< "-" for standard output
    QString skippedPath; ///< empty: the skipped peptides are only counted
    LibraryFileKind kind = LibraryFileKind::Tsv;

    DigestionOptions digestion;
    DecoyOptions decoys;
    QList<int> charges = {2, 3};    ///< ascending, each once, 1 to 5
    double lowestPrecursorMz = 300; ///< m/z; the range of common acquisition methods, and so is the next
    double highestPrecursorMz = 1800;
    PeptidoformRules modifications;

    /// What the fixed modifications add to every cysteine, Da, with the digits that the five networks were given.
    double cysteineMass = peptideMasses::DEFAULT_CYSTEINE_MODIFICATION;

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
