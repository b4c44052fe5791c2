// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

class QPainter;

namespace zav {

/// A linear axis: data from `from` to `to` lie at `start` to `end` on the page (any direction).
struct PlotScale
{
    double from = 0;
    double to = 1;
    double start = 0;
    double end = 1;

    double at(double value) const { return start + (value - from) / (to - from) * (end - start); }
};

/// Multiples of 1, 2 or 5 times a power of ten within [from, to], as many as fit but at most `maxCount` (2 or more).
QList<double> niceTicks(double from, double to, int maxCount);

/// What stands beside the ticks: numbers with the decimals that tell neighbours apart. When the largest is 100,000 or
/// more, or below 0.001, all share a power of ten that is a multiple of three: "0.5e6", "1.0e6". Zero is always "0".
QStringList tickTexts(const QList<double> &ticks);

/// A value as precisely as an axis of this length shows it: to about a thousandth of the length, with seven decimals
/// at most.
QString textOnAxis(double value, double axisLength);

/// An axis below a plot, at the page height `y`: its line, ticks, their texts and its title `titleDistance` below.
struct BottomAxis
{
    PlotScale scale; ///< to page x
    double y = 0;
    QString title;
    double titleDistance = 0;
    bool isSymbol = false; ///< the title is a symbol rather than words: in italics

    void paint(QPainter *painter) const;
};

/// An axis at the left of a plot, at the page's `x`, with its title turned upward `titleDistance` away.
struct LeftAxis
{
    PlotScale scale; ///< to page y
    double x = 0;
    QString title;
    double titleDistance = 0;

    void paint(QPainter *painter) const;

private:
    void paintTick(QPainter *painter, double value, const QString &text) const;
};

} // namespace zav
