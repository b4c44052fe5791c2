// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "LibraryEntry.h"

#include <zav/FragmentPeak.h>
#include <zav/TheoreticalIsotopePoint2dListGenerator.h>

#include <QtCore/QList>

namespace zav {

/// Which of the predicted peaks a library keeps.
struct PeakFilterOptions
{
    int top = 0;               ///< the most intense ones, this many at most; 0: all
    double minIntensity = 0.0; ///< relative to the base peak of those that the rules below leave; 0 to 1
    double minMz = 0.0;        ///< m/z
    int minIonNumber = 1;      ///< residues in a fragment
    bool neutralLosses = true;
    bool aIons = true;
    bool isotopes = false; ///< add the heavier isotopes of what is kept
};

/// Makes the peaks of a library spectrum out of a prediction.
///
/// In this order: it drops ions that are not wanted (m/z, ion number, losses), then those under the least intensity,
/// then all but the most intense ones (of equally intense ones those of lower m/z stay). It adds the isotopes of what
/// is left, within the predictor's own limits of m/z and intensity, and scales the intensities to a base peak of 1.
/// One object may serve several threads.
class PeakFilter
{
public:
    explicit PeakFilter(const PeakFilterOptions &options) : m_options(options) {}

    /// `peaks` ascend in m/z, and so do those in `kept`, which is emptied first and keeps its memory. None when nothing
    /// is left.
    void apply(const QList<FragmentPeak> &peaks, QList<FragmentPeak> *kept) const;

private:
    bool isWanted(const FragmentPeak &peak) const;
    void dropWeak(QList<FragmentPeak> *peaks) const;
    void keepTop(QList<FragmentPeak> *peaks) const;
    void addIsotopes(QList<FragmentPeak> *peaks) const;
    void appendIsotopes(const FragmentPeak &peak, double lowest, QList<FragmentPeak> *peaks) const;

    PeakFilterOptions m_options;
    TheoreticalIsotopePoint2dListGenerator m_generator;
};

} // namespace zav
