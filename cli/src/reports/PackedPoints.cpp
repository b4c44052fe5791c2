// SPDX-License-Identifier: Apache-2.0
#include "PackedPoints.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace zav {

namespace {

constexpr qsizetype POINTS_A_STRETCH = 4;
constexpr int FLOAT_SIZE = 4;

template <typename Integer>
void append(Integer value, QByteArray *bytes)
{
    const Integer ordered = qToLittleEndian(value);
    bytes->append(reinterpret_cast<const char *>(&ordered), sizeof ordered);
}

void append(double value, QByteArray *bytes)
{
    append(std::bit_cast<quint64>(value), bytes);
}

/// By rank: the lowest bytes first.
void append(const QList<float> &values, QByteArray *bytes)
{
    for (int rank = 0; rank < FLOAT_SIZE; ++rank) {
        for (const float value : values)
            bytes->append(static_cast<char>(std::bit_cast<quint32>(value) >> (8 * rank)));
    }
}

/// Beyond single precision, a power of two that brings the highest intensity to below 1: the digits stay as they are.
double factorOf(const QList<QPointF> &points)
{
    double highest = 0;
    for (const QPointF &point : points)
        highest = std::max(highest, std::abs(point.y()));
    if (highest < std::numeric_limits<float>::max())
        return 1;
    int exponent = 0;
    std::frexp(highest, &exponent);
    return std::ldexp(1, exponent - 1); // the power itself may be too large
}

/// What lies beyond single precision becomes infinite, and no part of the picture.
float single(double value)
{
    if (std::abs(value) <= std::numeric_limits<float>::max())
        return static_cast<float>(value);
    return value > 0 ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
}

/// The first, the lowest, the highest and the last point from `from` to before `to`, each once, in their order.
void appendOutline(const QList<QPointF> &points, qsizetype from, qsizetype to, QList<QPointF> *outline)
{
    const auto isLower = [](const QPointF &a, const QPointF &b) { return a.y() < b.y(); };
    const auto [lowest, highest] = std::minmax_element(points.begin() + from, points.begin() + to, isLower);
    QList<qsizetype> places = {from, lowest - points.begin(), highest - points.begin(), to - 1};
    std::sort(places.begin(), places.end());
    places.erase(std::unique(places.begin(), places.end()), places.end());
    for (const qsizetype place : places)
        outline->append(points[place]);
}

} // namespace

QList<QPointF> reportedPoints(const QList<QPointF> &points)
{
    if (points.size() <= MOST_REPORTED_POINTS)
        return points;
    const qsizetype stretches = MOST_REPORTED_POINTS / POINTS_A_STRETCH;
    QList<QPointF> outline;
    outline.reserve(MOST_REPORTED_POINTS);
    for (qsizetype i = 0; i < stretches; ++i)
        appendOutline(points, points.size() * i / stretches, points.size() * (i + 1) / stretches, &outline);
    return outline;
}

QByteArray packedPoints(const QList<QPointF> &points)
{
    const double start = points.isEmpty() ? 0 : points.first().x();
    const double factor = factorOf(points);
    QList<float> distances;
    QList<float> intensities;
    for (const QPointF &point : points) {
        distances.append(single(point.x() - start));
        intensities.append(single(point.y() / factor));
    }
    QByteArray bytes;
    append(static_cast<quint32>(points.size()), &bytes);
    append(start, &bytes);
    append(factor, &bytes);
    append(distances, &bytes);
    append(intensities, &bytes);
    return bytes;
}

} // namespace zav
