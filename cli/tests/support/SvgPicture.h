// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QXmlStreamReader>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace zav {

struct SvgLine
{
    QString color;
    QPointF from;
    QPointF to;
    bool isDashed = false;

    bool isVertical() const { return from.x() == to.x() && from.y() != to.y(); }
};

/// A line of more than two points, or the outline of an area.
struct SvgShape
{
    QString color;
    double opacity = 1;
    QList<QPointF> points;
};

/// The texts, straight lines and shapes of a picture.
struct SvgPicture
{
    QStringList texts;
    QList<SvgLine> lines;
    QList<SvgShape> polylines;
    QList<SvgShape> areas;
    QList<SvgShape> rectangles; ///< top left and bottom right
    int circles = 0;
    QByteArray source;

    QList<SvgLine> verticals(const QString &color) const
    {
        QList<SvgLine> found;
        std::copy_if(lines.begin(), lines.end(), std::back_inserter(found),
                     [&](const SvgLine &line) { return line.isVertical() && line.color == color; });
        return found;
    }
};

inline QPointF parsePoint(const QString &text)
{
    return {text.section(u',', 0, 0).toDouble(), text.section(u',', 1, 1).toDouble()};
}

/// Points separated by blanks, with or without the commands of a path before them.
inline QList<QPointF> parsePoints(QString text)
{
    QList<QPointF> points;
    for (const QString &point : text.remove(u'M').remove(u'L').split(u' ', Qt::SkipEmptyParts))
        points.append(parsePoint(point));
    return points;
}

inline SvgPicture parseSvg(const QByteArray &source)
{
    SvgPicture picture;
    picture.source = source;
    QXmlStreamReader xml(source);
    QXmlStreamAttributes group;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes own = xml.attributes();
        const auto number = [&](const char *name) { return own.value(QLatin1String(name)).toDouble(); };
        const QString stroke = group.value("stroke").toString();
        const SvgShape filled{group.value("fill").toString(), group.value("fill-opacity").toDouble(), {}};
        if (xml.name() == u"g" && own.hasAttribute("stroke"))
            group = own;
        if (xml.name() == u"polyline") {
            const QList<QPointF> points = parsePoints(own.value("points").toString());
            if (points.size() == 2)
                picture.lines.append({stroke, points[0], points[1], group.hasAttribute("stroke-dasharray")});
            else
                picture.polylines.append({stroke, 1, points});
        }
        if (xml.name() == u"path" && stroke == u"none")
            picture.areas.append({filled.color, filled.opacity, parsePoints(own.value("d").toString())});
        if (xml.name() == u"rect") {
            const QPointF corner(number("x"), number("y"));
            picture.rectangles.append(
                {filled.color, filled.opacity, {corner, corner + QPointF(number("width"), number("height"))}});
        }
        if (xml.name() == u"circle" || xml.name() == u"ellipse")
            ++picture.circles;
        if (xml.name() == u"text")
            picture.texts.append(xml.readElementText().trimmed());
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return picture;
}

} // namespace zav
