// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QSysInfo>

namespace zav {

/// An entry as a `SqliteLibrary` stores it: what takes time is done, the packing of the arrays and the
/// peptide with its masses.
struct EncodedEntry
{
    QByteArray peptide;         ///< one-letter code
    QByteArray modifiedPeptide; ///< `AC[+57.021464]DEFGHK`
    int charge = 0;
    double precursorMz = 0.0;  ///< m/z
    double cysteineMass = 0.0; ///< Da added to every cysteine, 0 for none
    int peakCount = 0;
    double totalIonCurrent = 0.0; ///< sum of the stored intensities
    QByteArray masses;            ///< m/z values, packed as the file has them
    QByteArray intensities;       ///< packed likewise
    QList<QByteArray> proteins;   ///< accessions
    bool isDecoy = false;
};

/// All but the arrays and their sum; the masses in the peptide with `massDecimals` digits behind the point.
EncodedEntry encodedPeptide(const LibraryEntry &entry, int massDecimals);

/// The m/z of the peaks as an array of 64-bit floating-point numbers in that byte order.
QByteArray massArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order);

/// The intensities as an array of 32-bit floating-point numbers in that byte order, scaled so that 1 becomes 10000.
QByteArray intensityArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order);

/// The sum of what `intensityArray` stores.
double storedIntensity(const QList<FragmentPeak> &peaks);

/// The bytes as one zlib stream (RFC 1950).
QByteArray compressed(const QByteArray &bytes);

} // namespace zav
