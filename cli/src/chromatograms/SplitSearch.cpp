// SPDX-License-Identifier: Apache-2.0
#include "SplitSearch.h"

#include <algorithm>

namespace zav {

namespace {

constexpr int MOST_SPLITS = 4; // of XicPeakSplitter

/// Means of so many neighbouring intensities; the last may be one of fewer.
QList<double> averaged(const QList<QPointF> &points, qsizetype neighbours)
{
    QList<double> means;
    means.reserve((points.size() + neighbours - 1) / neighbours);
    for (qsizetype first = 0; first < points.size(); first += neighbours) {
        const qsizetype end = std::min(first + neighbours, points.size());
        double sum = 0;
        for (qsizetype i = first; i < end; ++i)
            sum += points[i].y();
        means.append(sum / static_cast<double>(end - first));
    }
    return means;
}

/// Mean intensity of up to `width` points around one.
double meanAround(const QList<QPointF> &points, qsizetype middle, qsizetype width)
{
    const qsizetype first = std::max<qsizetype>(0, middle - width / 2);
    const qsizetype end = std::min(points.size(), middle + width / 2 + 1);
    double sum = 0;
    for (qsizetype i = first; i < end; ++i)
        sum += points[i].y();
    return sum / static_cast<double>(end - first);
}

/// The lowest place within `reach` of another, smoothed over as many points; that place itself where the trace goes on
/// falling to the end of the stretch, as beside a shoulder.
qsizetype settled(const QList<QPointF> &points, qsizetype place, qsizetype reach)
{
    const qsizetype first = std::max<qsizetype>(0, place - reach);
    const qsizetype last = std::min(points.size() - 1, place + reach);
    qsizetype lowest = first;
    double least = meanAround(points, first, reach);
    for (qsizetype i = first + 1; i <= last; ++i) {
        const double around = meanAround(points, i, reach);
        if (around < least) {
            least = around;
            lowest = i;
        }
    }
    return lowest == first || lowest == last ? place : lowest;
}

/// Of averaged points.
qsizetype finer(qsizetype neighbours)
{
    return (neighbours + 1) / 2;
}

} // namespace

/// A split of a piece, by the index of its point.
struct SplitSearch::Found
{
    qsizetype place = 0;
    double probability = 0;
};

/// A stretch of the trace that is to be searched.
struct SplitSearch::Piece
{
    qsizetype first = 0;
    qsizetype count = 0;
    qsizetype neighbours = 1; ///< points averaged into one
    bool mustBeSure = false;  ///< a coarser view did not show what is looked for
};

/// What one look at a piece showed.
struct SplitSearch::View
{
    QList<Found> found;  ///< by place, at inner points of the piece, none twice
    bool isWhole = true; ///< the splitter would not give more at this scale
};

SplitSearch::SplitSearch(int coarsest, int largest, double leastSure, Splitter splitter)
    : m_coarsest(coarsest), m_largest(largest), m_leastSure(leastSure), m_splitter(std::move(splitter))
{}

Result<QList<TraceSplit>> SplitSearch::splitsOf(const QList<QPointF> &points) const
{
    QList<TraceSplit> splits;
    const qsizetype neighbours = std::max<qsizetype>(1, (points.size() + m_coarsest - 1) / m_coarsest);
    QList<Piece> pieces = {{0, points.size(), neighbours, false}};
    while (!pieces.isEmpty()) {
        Piece piece = pieces.takeLast();
        if (piece.count < FEWEST_POINTS)
            continue;
        const Result<View> view = look(points.mid(piece.first, piece.count), &piece);
        if (view.hasError())
            return view.error();
        for (const Found &found : view.value().found)
            splits.append({points[piece.first + found.place].x(), found.probability});
        pieces += piecesBetween(view.value(), piece);
    }
    std::stable_sort(splits.begin(), splits.end(),
                     [](const TraceSplit &a, const TraceSplit &b) { return a.time < b.time; });
    return splits;
}

/// What is to be searched again once a piece was parted; nothing where a closer look would show no more.
QList<SplitSearch::Piece> SplitSearch::piecesBetween(const View &view, const Piece &parted)
{
    QList<Piece> pieces;
    if (view.found.isEmpty() || (view.isWhole && parted.neighbours == 1))
        return pieces;
    const qsizetype neighbours = view.isWhole ? finer(parted.neighbours) : parted.neighbours;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= view.found.size(); ++i) {
        const qsizetype end = i < view.found.size() ? view.found[i].place : parted.count - 1;
        pieces.append({parted.first + start, end - start + 1, neighbours, parted.mustBeSure || view.isWhole});
        start = end;
    }
    return pieces;
}

/// From the scale of the piece to its own points, until something is found; the piece then has that scale.
Result<SplitSearch::View> SplitSearch::look(const QList<QPointF> &points, Piece *piece) const
{
    for (;; piece->neighbours = finer(piece->neighbours)) {
        const qsizetype neighbours = piece->neighbours;
        Result<View> seen = lookAtScale(averaged(points, neighbours), piece->mustBeSure);
        if (seen.hasError() || neighbours == 1)
            return seen;
        View view{{}, seen.value().isWhole};
        for (const Found &found : seen.value().found) {
            const qsizetype middle = std::min(found.place * neighbours + neighbours / 2, points.size() - 1);
            const qsizetype place = settled(points, middle, neighbours);
            if (place > (view.found.isEmpty() ? 0 : view.found.last().place) && place < points.size() - 1)
                view.found.append({place, found.probability});
        }
        if (!view.found.isEmpty())
            return view;
    }
}

Result<SplitSearch::View> SplitSearch::lookAtScale(const QList<double> &intensities, bool mustBeSure) const
{
    View view;
    const qsizetype step = m_largest / 2;
    for (qsizetype first = 0; first == 0 || first + step < intensities.size(); first += step) {
        if (Error error = lookAtWindow(intensities, first, mustBeSure ? m_leastSure : 0, &view); error.hasError())
            return error;
    }
    view.isWhole = intensities.size() <= m_largest && view.found.size() < MOST_SPLITS;
    return view;
}

/// Of windows that overlap, the outer quarters are left to the neighbouring windows.
Error SplitSearch::lookAtWindow(const QList<double> &intensities, qsizetype first, double leastSure, View *view) const
{
    const qsizetype end = std::min(first + m_largest, intensities.size());
    const qsizetype from = first == 0 ? 1 : first + m_largest / 4;
    const qsizetype to = end == intensities.size() ? end - 1 : first + m_largest / 4 + m_largest / 2;
    QList<QPointF> points;
    points.reserve(end - first);
    for (qsizetype i = first; i < end; ++i)
        points.append({static_cast<double>(i), intensities[i]});
    const auto splits = m_splitter(points);
    if (splits.hasError())
        return splits.error();
    QList<Found> found;
    for (const auto &[place, probability] : splits.value()) {
        if (probability >= leastSure && place >= static_cast<double>(from) && place < static_cast<double>(to))
            found.append({static_cast<qsizetype>(place), probability});
    }
    std::sort(found.begin(), found.end(), [](const Found &a, const Found &b) { return a.place < b.place; });
    view->found.append(found);
    return {};
}

} // namespace zav
