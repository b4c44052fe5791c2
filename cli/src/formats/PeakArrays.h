// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"

#include <QtCore/QByteArray>
#include <QtCore/QSysInfo>

namespace zav {

/// The m/z of the peaks as an array of 64-bit floating-point numbers in that byte order.
QByteArray massArray(const QList<LibraryPeak> &peaks, QSysInfo::Endian order);

/// The intensities as an array of 32-bit floating-point numbers in that byte order, scaled so that 1 becomes 10000.
QByteArray intensityArray(const QList<LibraryPeak> &peaks, QSysInfo::Endian order);

/// The sum of what `intensityArray` stores.
double storedIntensity(const QList<LibraryPeak> &peaks);

/// The bytes as one zlib stream (RFC 1950).
QByteArray compressed(const QByteArray &bytes);

} // namespace zav
