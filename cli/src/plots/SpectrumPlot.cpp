// SPDX-License-Identifier: Apache-2.0
#include "SpectrumPlot.h"

#include "PeptideDiagram.h"
#include "PictureFile.h"
#include "PlotAxis.h"
#include "PlotStyle.h"
#include "SpectrumPanel.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zav {

namespace {

// In page units.
constexpr double WIDTH = 900;
constexpr double SINGLE_HEIGHT = 460;
constexpr double MIRROR_HEIGHT = 620;
constexpr double LEFT = 68;
constexpr double RIGHT = 24;
constexpr double HEADING_BASELINE = 26;
constexpr double HEADING_SIZE = 13;
constexpr double HEADING_GAP = 16;
constexpr double PEPTIDE_TOP = 38;
constexpr double PEPTIDE_HEIGHT = 58;
constexpr double PLOT_TOP = 102;
constexpr double BOTTOM_ROOM = 52;     // for tick labels, axis title and legend
constexpr double FOOTER_DISTANCE = 38; // of the last line of text from the plot
constexpr double SOURCE_TEXT_SIZE = 11;
constexpr double SOURCE_GAP = 36; // to the axis title

// Where the m/z axis ends when there is no peak to say so.
constexpr double EMPTY_FROM = 100;
constexpr double EMPTY_TO = 1000;
constexpr double MIN_SPAN = 100;
constexpr double MARGIN_SHARE = 0.03; // of the m/z range, left free at its ends

PlotScale mzScale(const QList<PlotPeak> &a, const QList<PlotPeak> &b)
{
    double from = std::numeric_limits<double>::max();
    double to = 0;
    for (const PlotPeak &peak : a + b) {
        from = std::min(from, peak.mz);
        to = std::max(to, peak.mz);
    }
    if (to <= 0) {
        from = EMPTY_FROM;
        to = EMPTY_TO;
    }
    const double margin = std::max(MARGIN_SHARE * (to - from), (MIN_SPAN - (to - from)) / 2);
    return {std::max(0.0, from - margin), to + margin, LEFT, WIDTH - RIGHT};
}

QString percent(double share)
{
    return QString::number(100 * share, 'f', 0) + QStringLiteral(" %");
}

QString placeText(int position, const QString &sequence)
{
    if (position < 1)
        return QStringLiteral("N-term");
    return position > sequence.size() ? QStringLiteral("C-term")
                                      : sequence.at(position - 1) + QString::number(position);
}

QString precursorText(const SpectrumPlotData &data)
{
    QString text = QStringLiteral("%1+").arg(data.charge);
    if (!std::isnan(data.collisionEnergy))
        text += QStringLiteral(", NCE %1").arg(data.collisionEnergy);
    if (data.precursorMz > 0)
        text += QStringLiteral(", m/z ") + QString::number(data.precursorMz, 'f', 4);
    return text;
}

// "Carbamidomethyl C2, C7; Oxidation M4; Acetyl N-term", in the order of their first places.
QString modificationsText(const Peptidoform &peptidoform)
{
    QStringList names;
    QMap<QString, QStringList> places;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        const QString &name = placed.modification.name;
        if (!names.contains(name))
            names.append(name);
        places[name].append(placeText(placed.position, peptidoform.sequence()));
    }
    for (QString &name : names)
        name += QLatin1Char(' ') + places.value(name).join(QStringLiteral(", "));
    return names.join(QStringLiteral("; "));
}

QString comparisonText(const SpectrumComparison &comparison)
{
    return QStringLiteral("spectral angle %1, %2 of %3 peaks explained (%4 of the intensity)")
        .arg(QString::number(comparison.spectralAngle, 'f', 3), QString::number(comparison.explainedPeaks),
             QString::number(comparison.observedPeaks), percent(comparison.explainedIntensity));
}

QSet<int> ionNumbers(const SpectrumPlotData &data, QChar ionType)
{
    QSet<int> numbers;
    const auto add = [&](const FragmentPeak &peak) {
        if (peak.ionType == ionType && peak.isotope == 0 && peak.neutralLoss.isEmpty())
            numbers.insert(peak.ionNumber);
    };
    if (data.comparison) {
        for (const PeakMatch &match : data.comparison->matches)
            add(data.predicted[match.predicted]);
    } else {
        std::for_each(data.predicted.begin(), data.predicted.end(), add);
    }
    return numbers;
}

template <typename Predicate>
bool anyPredicted(const SpectrumPlotData &data, const Predicate &predicate)
{
    return std::any_of(data.predicted.begin(), data.predicted.end(), predicate);
}

QPen legendPen(const QColor &color)
{
    return QPen(color, 3, Qt::SolidLine, Qt::FlatCap);
}

// The colours that the picture uses, and no others.
QList<LegendEntry> legendOf(const SpectrumPlotData &data)
{
    QList<LegendEntry> entries;
    for (const QChar series : {u'b', u'y', u'a'}) {
        if (anyPredicted(data, [&](const FragmentPeak &peak) { return peak.ionType == series; }))
            entries.append({{legendPen(plotStyle::ionColor(series))}, series});
    }
    if (anyPredicted(data, [](const FragmentPeak &peak) { return peak.isotope > 0 || !peak.neutralLoss.isEmpty(); }))
        entries.append({{legendPen(plotStyle::lighterIonColor(u'y')), legendPen(plotStyle::lighterIonColor(u'b'))},
                        QStringLiteral("loss, isotope (thin)")});
    if (data.observed)
        entries.append({{legendPen(plotStyle::unmatchedColor())}, QStringLiteral("unmatched")});
    return entries;
}

// The whole picture: heading, peptide, one panel or two mirrored ones, m/z axis and legend.
class SpectrumFigure
{
public:
    // `data` has to outlive the figure.
    explicit SpectrumFigure(const SpectrumPlotData &data);

    // Page size in page units, 1/96 inch.
    QSizeF size() const;

    // On a white page.
    void paint(QPainter *painter) const;

private:
    double plotBottom() const;
    void paintHeading(QPainter *painter) const;
    void paintPeptide(QPainter *painter) const;
    void paintPanels(QPainter *painter) const;
    void paintSource(QPainter *painter) const;

    const SpectrumPlotData &m_data;
    QList<PlotPeak> m_predicted;
    QList<PlotPeak> m_observed;
    PlotScale m_mz;
};

SpectrumFigure::SpectrumFigure(const SpectrumPlotData &data)
    : m_data(data), m_predicted(predictedPlotPeaks(data)),
      m_observed(data.observed ? observedPlotPeaks(data) : QList<PlotPeak>()), m_mz(mzScale(m_predicted, m_observed))
{}

QSizeF SpectrumFigure::size() const
{
    return {WIDTH, m_data.observed ? MIRROR_HEIGHT : SINGLE_HEIGHT};
}

double SpectrumFigure::plotBottom() const
{
    return size().height() - BOTTOM_ROOM;
}

void SpectrumFigure::paint(QPainter *painter) const
{
    paintHeading(painter);
    paintPeptide(painter);
    paintPanels(painter);
    BottomAxis{m_mz, plotBottom(), QStringLiteral("m/z"), FOOTER_DISTANCE, true}.paint(painter);
    paintSource(painter);
    paintLegend(painter, legendOf(m_data), m_mz.end, plotBottom() + FOOTER_DISTANCE);
}

void SpectrumFigure::paintHeading(QPainter *painter) const
{
    painter->setFont(plotStyle::font(HEADING_SIZE));
    painter->setPen(plotStyle::textColor());
    const QFontMetricsF metrics(painter->font());
    double right = WIDTH - RIGHT;
    if (m_data.comparison) {
        const QString figures = comparisonText(*m_data.comparison);
        right -= metrics.horizontalAdvance(figures);
        painter->drawText(QPointF(right, HEADING_BASELINE), figures);
    }
    const QString precursor = precursorText(m_data);
    painter->drawText(QPointF(LEFT, HEADING_BASELINE), precursor);
    const QString modifications = modificationsText(m_data.peptidoform);
    if (modifications.isEmpty())
        return;
    const double left = LEFT + metrics.horizontalAdvance(precursor) + HEADING_GAP;
    painter->setPen(plotStyle::modificationColor());
    painter->drawText(QPointF(left, HEADING_BASELINE),
                      metrics.elidedText(modifications, Qt::ElideRight, right - HEADING_GAP - left));
}

void SpectrumFigure::paintPeptide(QPainter *painter) const
{
    const PeptideDiagram diagram{m_data.peptidoform, ionNumbers(m_data, u'b'), ionNumbers(m_data, u'y')};
    diagram.paint(painter, QRectF(LEFT, PEPTIDE_TOP, WIDTH - LEFT - RIGHT, PEPTIDE_HEIGHT));
}

void SpectrumFigure::paintPanels(QPainter *painter) const
{
    if (!m_data.observed) {
        SpectrumPanel{m_predicted, QStringLiteral("Predicted intensity (%)"), m_mz, plotBottom(), PLOT_TOP}.paint(
            painter);
        return;
    }
    const double middle = (PLOT_TOP + plotBottom()) / 2;
    SpectrumPanel{m_observed, QStringLiteral("Observed (%)"), m_mz, middle, PLOT_TOP}.paint(painter);
    SpectrumPanel{m_predicted, QStringLiteral("Predicted (%)"), m_mz, middle, plotBottom()}.paint(painter);
    painter->setPen(QPen(plotStyle::axisColor(), 1));
    painter->drawLine(QPointF(m_mz.start, middle), QPointF(m_mz.end, middle));
}

void SpectrumFigure::paintSource(QPainter *painter) const
{
    if (!m_data.observed)
        return;
    painter->setFont(plotStyle::font(SOURCE_TEXT_SIZE));
    painter->setPen(plotStyle::textColor());
    const QString text = QFontMetricsF(painter->font())
                             .elidedText(QStringLiteral("Observed: ") + m_data.observed->title, Qt::ElideRight,
                                         (m_mz.end - m_mz.start) / 2 - SOURCE_GAP);
    painter->drawText(QPointF(LEFT, plotBottom() + FOOTER_DISTANCE), text);
}

} // namespace

Error drawSpectrum(const SpectrumPlotData &data, const QString &path)
{
    const SpectrumFigure figure(data);
    return writePicture({QStringLiteral("%1/%2").arg(data.peptidoform.toProForma()).arg(data.charge),
                         QStringLiteral("Fragment spectrum drawn by zav"), figure.size(),
                         [&](QPainter *painter) { figure.paint(painter); }},
                        path);
}

} // namespace zav
