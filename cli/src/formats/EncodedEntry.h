// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"
#include "PeptideNotation.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QSysInfo>

namespace zav {

/// A fragment of a transition list.
struct EncodedTransition
{
    double mz = 0.0;        ///< m/z
    double intensity = 0.0; ///< relative to 1
    char ionType = 'y';     ///< 'b' or 'y'
    int ionNumber = 0;
    int charge = 0;
    QByteArray annotation; ///< the ion with its loss: `y7-H2O^2`
};

/// An entry as a `SqliteLibrary` stores it: what takes time is done, the packing of the arrays and the
/// peptide with its masses. Each library fills what it stores.
struct EncodedEntry
{
    QByteArray name;            ///< of the precursor
    QByteArray peptide;         ///< one-letter code
    QByteArray modifiedPeptide; ///< `AC[+57.021464]DEFGHK`
    int charge = 0;
    double precursorMz = 0.0;             ///< m/z
    double retentionTime = 0.0;           ///< in the unit of the file, or its placeholder
    QList<ModifiedResidue> modifications; ///< in the order of their positions
    int peakCount = 0;
    double totalIonCurrent = 0.0; ///< sum of the stored intensities
    QByteArray masses;            ///< m/z values, packed as the file has them
    QByteArray intensities;       ///< packed likewise
    QList<EncodedTransition> transitions;
    QList<QByteArray> proteins; ///< accessions
    QList<QByteArray> genes;    ///< each once
    bool isDecoy = false;
};

/// Peptide, charge, m/z, number of peaks and proteins.
EncodedEntry encodedPeptide(const LibraryEntry &entry);

/// `modifications`, and `modifiedPeptide` with `decimals` digits of the masses.
void encodeModifications(const LibraryEntry &entry, int decimals, EncodedEntry *encoded);

/// The m/z of the peaks as an array of 64-bit floating-point numbers in that byte order.
QByteArray massArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order);

/// The intensities as an array of 32-bit floating-point numbers in that byte order, scaled so that 1 becomes 10000.
QByteArray intensityArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order);

/// The sum of what `intensityArray` stores.
double storedIntensity(const QList<FragmentPeak> &peaks);

/// The bytes as one zlib stream (RFC 1950).
QByteArray compressed(const QByteArray &bytes);

} // namespace zav
