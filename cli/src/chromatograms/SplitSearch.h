// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Trace.h"

#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

#include <functional>
#include <utility>

namespace zav {

/// Finds the splits of a trace of any length, with a splitter that reads a limited number of points and tells of four
/// splits at most.
///
/// A trace of up to `coarsest` points is read as it is. In a longer one, neighbouring points are averaged to so many
/// first: a valley is seen best where it is some dozens of points wide. Where that shows nothing, half as many points
/// are averaged, and so on until the trace's own are read. More than `largest` are read in windows that overlap by
/// half, and of each window only the middle counts.
///
/// The splits part the trace, and the pieces between them are searched again: at the same scale where the splitter gave
/// all it can, else at the finer ones. What a finer view shows must be surer, since it was there before and not seen.
class SplitSearch
{
public:
    /// Pairs (x of a point, probability) for at most `largest` points.
    using Splitter = std::function<Result<QList<std::pair<double, double>>>(const QList<QPointF> &)>;

    /// In fewer points XicPeakSplitter looks for no split.
    static constexpr int FEWEST_POINTS = 5;

    /// Both numbers are above 4, `coarsest` is at most `largest`. `leastSure` is the probability from which on a split
    /// of a finer view counts.
    SplitSearch(int coarsest, int largest, double leastSure, Splitter splitter);

    /// The splits by time, each at the time of a point; the splitter's first error. None for fewer than 5 points.
    Result<QList<TraceSplit>> splitsOf(const QList<QPointF> &points) const;

private:
    struct Found;
    struct Piece;
    struct View;

    static QList<Piece> piecesBetween(const View &view, const Piece &parted);
    Result<View> look(const QList<QPointF> &points, Piece *piece) const;
    Result<View> lookAtScale(const QList<double> &intensities, bool mustBeSure) const;
    Error lookAtWindow(const QList<double> &intensities, qsizetype first, double leastSure, View *view) const;

    int m_coarsest, m_largest;
    double m_leastSure;
    Splitter m_splitter;
};

} // namespace zav
