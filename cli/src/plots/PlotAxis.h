// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PlotScale.h"

#include <QtCore/QString>

class QPainter;

namespace zav {

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
