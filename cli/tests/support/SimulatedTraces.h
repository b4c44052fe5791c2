// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QString>

#include <cmath>

namespace zav {

/// A peak of Gaussian shape.
struct SimulatedPeak
{
    double apex = 0;
    double height = 0;
    double sigma = 0;

    double at(double time) const { return height * std::exp(-0.5 * std::pow((time - apex) / sigma, 2)); }
    double area() const { return height * sigma * std::sqrt(2 * 3.14159265358979); }
};

/// A trace of `count` points, one a second from 0, with the peaks on a baseline of 20 that flickers by 5.
inline QList<QPointF> simulatedTrace(int count, const QList<SimulatedPeak> &peaks)
{
    QList<QPointF> points;
    for (int second = 0; second < count; ++second) {
        double intensity = 20 + second * 7919 % 11 - 5;
        for (const SimulatedPeak &peak : peaks)
            intensity += peak.at(second);
        points.append({double(second), intensity});
    }
    return points;
}

/// The rows of a trace, without header; `id` empty: without that column.
inline QByteArray tsvRows(const QList<QPointF> &points, const QByteArray &id = {})
{
    QByteArray text;
    for (const QPointF &point : points)
        text += (id.isEmpty() ? QByteArray() : id + '\t') + QByteArray::number(point.x(), 'g', 17) + '\t' +
                QByteArray::number(point.y(), 'g', 17) + '\n';
    return text;
}

/// A file of one trace.
inline QByteArray tsvFile(const QList<QPointF> &points)
{
    return "rt\tintensity\n" + tsvRows(points);
}

inline QByteArray jsonArray(const QList<double> &values)
{
    QByteArray text;
    for (const double value : values)
        text += (text.isEmpty() ? "" : ", ") + QByteArray::number(value, 'g', 17);
    return '[' + text + ']';
}

/// A JSON line.
inline QByteArray jsonLine(const QList<QPointF> &points, const QByteArray &id, const QByteArray &timeUnit = {})
{
    QList<double> times;
    QList<double> intensities;
    for (const QPointF &point : points) {
        times.append(point.x());
        intensities.append(point.y());
    }
    const QByteArray unit = timeUnit.isEmpty() ? QByteArray() : ", \"rt_unit\": \"" + timeUnit + '"';
    return "{\"id\": \"" + id + "\", \"rt\": " + jsonArray(times) + ", \"intensity\": " + jsonArray(intensities) +
           unit + "}\n";
}

} // namespace zav
