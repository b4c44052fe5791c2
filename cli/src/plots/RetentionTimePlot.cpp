// SPDX-License-Identifier: Apache-2.0
#include "RetentionTimePlot.h"

#include "PictureFile.h"
#include "PlotAxis.h"
#include "PlotStyle.h"

#include <zav/Interval.h>

#include <QtCore/QPoint>
#include <QtCore/QSet>
#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {

namespace {

// In page units.
constexpr double WIDTH = 760;
constexpr double HEIGHT = 620;
constexpr double LEFT = 84;
constexpr double RIGHT = 24;
constexpr double HEADING_BASELINE = 26;
constexpr double SOURCE_BASELINE = 44;
constexpr double PLOT_TOP = 60;
constexpr double HEADING_SIZE = 13;
constexpr double SMALL_TEXT_SIZE = 11;
constexpr double TITLE_DISTANCE = 62;  // of the time axis's title from the axis
constexpr double INDEX_DISTANCE = 38;  // of the index axis's title from the axis
constexpr double LEGEND_DISTANCE = 58; // of the last line of text from the plot
constexpr double NOTE_WIDTH = 300;
constexpr double PLOT_BOTTOM = HEIGHT - 72;
constexpr double POINT_RADIUS = 2.4;
constexpr double BAND_STROKE = 9; // in the legend

constexpr int CURVE_STEPS = 300;
constexpr double MARGIN = 0.03; // of an axis, left free at its ends
constexpr double BAND_OPACITY = 0.18;
constexpr double POINT_OPACITY = 0.6;

QColor bandColor()
{
    QColor color = plotStyle::peakColor(1);
    color.setAlphaF(static_cast<float>(BAND_OPACITY));
    return color;
}

QColor pointColor(bool isInBand)
{
    QColor color = isInBand ? plotStyle::peakColor(0) : plotStyle::splitColor();
    color.setAlphaF(static_cast<float>(POINT_OPACITY));
    return color;
}

QPen curvePen()
{
    return QPen(plotStyle::textColor(), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

/// The ends of an axis, with a margin; never equal.
Interval<double> widened(double from, double to)
{
    const double margin = to > from ? MARGIN * (to - from) : 1.0;
    return {from - margin, to + margin};
}

bool isFinite(const QPointF &pair)
{
    return std::isfinite(pair.x()) && std::isfinite(pair.y());
}

Interval<double> indicesOf(const QList<QPointF> &pairs)
{
    double from = std::numeric_limits<double>::max();
    double to = std::numeric_limits<double>::lowest();
    for (const QPointF &pair : pairs) {
        if (isFinite(pair)) {
            from = std::min(from, pair.x());
            to = std::max(to, pair.x());
        }
    }
    return from <= to ? widened(from, to) : Interval<double>{0, 100};
}

/// The times of the curve and its band, and of the pairs up to half of that further away.
Interval<double> timesOf(const RetentionTimePlotData &data, const Interval<double> &indices)
{
    double from = data.timeAt(indices.start) - data.width95 / 2;
    double to = data.timeAt(indices.end) + data.width95 / 2;
    const double lowest = from - (to - from) / 2;
    const double highest = to + (to - from) / 2;
    for (const QPointF &pair : data.pairs) {
        if (isFinite(pair) && pair.y() >= lowest && pair.y() <= highest) {
            from = std::min(from, pair.y());
            to = std::max(to, pair.y());
        }
    }
    return widened(from, to);
}

/// A number of the user's unit, which may be seconds or hours.
QString shortText(double value)
{
    return QString::number(value, 'g', 3);
}

// The whole picture: heading, band, pairs, curve, axes and legend.
class CalibrationFigure
{
public:
    // `data` has to outlive the figure.
    explicit CalibrationFigure(const RetentionTimePlotData &data);

    // On a white page.
    void paint(QPainter *painter) const;

private:
    double pageY(double time) const { return std::clamp(m_time.at(time), m_time.end, m_time.start); }
    QList<QPointF> curveShiftedBy(double time) const;
    bool isInPicture(const QPointF &pair) const;
    QString note() const;
    void paintHeading(QPainter *painter) const;
    void paintBand(QPainter *painter) const;
    void paintPairs(QPainter *painter) const;
    void paintFooter(QPainter *painter) const;

    const RetentionTimePlotData &m_data;
    PlotScale m_index;
    PlotScale m_time;
};

CalibrationFigure::CalibrationFigure(const RetentionTimePlotData &data) : m_data(data)
{
    const Interval<double> indices = indicesOf(data.pairs);
    const Interval<double> times = timesOf(data, indices);
    m_index = {indices.start, indices.end, LEFT, WIDTH - RIGHT};
    m_time = {times.start, times.end, PLOT_BOTTOM, PLOT_TOP};
}

QList<QPointF> CalibrationFigure::curveShiftedBy(double time) const
{
    QList<QPointF> line;
    for (int i = 0; i <= CURVE_STEPS; ++i) {
        const double index = std::lerp(m_index.from, m_index.to, static_cast<double>(i) / CURVE_STEPS);
        line.append({m_index.at(index), pageY(m_data.timeAt(index) + time)});
    }
    return line;
}

bool CalibrationFigure::isInPicture(const QPointF &pair) const
{
    return isFinite(pair) && pair.y() >= m_time.from && pair.y() <= m_time.to;
}

QString CalibrationFigure::note() const
{
    const auto omitted = std::count_if(m_data.pairs.begin(), m_data.pairs.end(),
                                       [this](const QPointF &pair) { return !isInPicture(pair); });
    return omitted == 0
               ? QString()
               : QStringLiteral("%1 of %2 pairs are outside the picture").arg(omitted).arg(m_data.pairs.size());
}

void CalibrationFigure::paint(QPainter *painter) const
{
    paintHeading(painter);
    paintBand(painter);
    paintPairs(painter);
    painter->setPen(curvePen());
    const QList<QPointF> curve = curveShiftedBy(0);
    painter->drawPolyline(curve.constData(), static_cast<int>(curve.size()));
    LeftAxis{m_time, LEFT, QStringLiteral("Observed time"), TITLE_DISTANCE}.paint(painter);
    BottomAxis{m_index, PLOT_BOTTOM, QStringLiteral("Predicted index (about iRT)"), INDEX_DISTANCE}.paint(painter);
    paintFooter(painter);
}

void CalibrationFigure::paintHeading(QPainter *painter) const
{
    painter->setFont(plotStyle::font(HEADING_SIZE));
    painter->setPen(plotStyle::textColor());
    painter->drawText(QPointF(LEFT, HEADING_BASELINE),
                      QStringLiteral("%1 pairs, %2, 95 % of the others within ±%3 of the curve")
                          .arg(QString::number(m_data.pairs.size()),
                               m_data.outlierCount == 1 ? QStringLiteral("1 outlier")
                                                        : QStringLiteral("%1 outliers").arg(m_data.outlierCount),
                               shortText(m_data.width95 / 2)));
    painter->setFont(plotStyle::font(SMALL_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    const QFontMetricsF metrics(painter->font());
    painter->drawText(QPointF(LEFT, SOURCE_BASELINE),
                      metrics.elidedText(printable(m_data.source), Qt::ElideMiddle, WIDTH - LEFT - RIGHT));
}

void CalibrationFigure::paintBand(QPainter *painter) const
{
    QList<QPointF> area = curveShiftedBy(m_data.width95 / 2);
    const QList<QPointF> lower = curveShiftedBy(-m_data.width95 / 2);
    std::copy(lower.rbegin(), lower.rend(), std::back_inserter(area));
    painter->setPen(Qt::NoPen);
    painter->setBrush(bandColor());
    painter->drawPolygon(area.constData(), static_cast<int>(area.size()));
}

void CalibrationFigure::paintPairs(QPainter *painter) const
{
    painter->setPen(Qt::NoPen);
    QSet<QPoint> drawn;
    for (const QPointF &pair : m_data.pairs) {
        if (!isInPicture(pair))
            continue;
        const QPointF place(m_index.at(pair.x()), m_time.at(pair.y()));
        const auto before = drawn.size();
        drawn.insert(place.toPoint());
        if (drawn.size() == before)
            continue;
        painter->setBrush(pointColor(std::abs(pair.y() - m_data.timeAt(pair.x())) <= m_data.width95 / 2));
        painter->drawEllipse(place, POINT_RADIUS, POINT_RADIUS);
    }
    painter->setBrush(Qt::NoBrush);
}

void CalibrationFigure::paintFooter(QPainter *painter) const
{
    const auto stroke = [](const QColor &color, double width) {
        return QPen(color, width, Qt::SolidLine, Qt::FlatCap);
    };
    paintLegend(painter,
                {{{stroke(pointColor(true), 4)}, QStringLiteral("pair in the band")},
                 {{stroke(pointColor(false), 4)}, QStringLiteral("outside")},
                 {{curvePen()}, QStringLiteral("fitted curve")},
                 {{stroke(bandColor(), BAND_STROKE)}, QStringLiteral("95 %")}},
                WIDTH - RIGHT, PLOT_BOTTOM + LEGEND_DISTANCE);
    painter->setFont(plotStyle::font(SMALL_TEXT_SIZE));
    painter->setPen(plotStyle::faintTextColor());
    painter->drawText(QPointF(LEFT, PLOT_BOTTOM + LEGEND_DISTANCE),
                      QFontMetricsF(painter->font()).elidedText(note(), Qt::ElideRight, NOTE_WIDTH));
}

} // namespace

Error drawRetentionTimes(const RetentionTimePlotData &data, const QString &path)
{
    const CalibrationFigure figure(data);
    return writePicture({printable(data.source), QStringLiteral("Calibration of retention times drawn by zav"),
                         QSizeF(WIDTH, HEIGHT), [&](QPainter *painter) { figure.paint(painter); }},
                        path);
}

} // namespace zav
