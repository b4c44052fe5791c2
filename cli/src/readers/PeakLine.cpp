// SPDX-License-Identifier: Apache-2.0
#include "PeakLine.h"

#include <algorithm>
#include <cmath>

namespace zav {

bool isPeak(const QPointF &peak)
{
    return std::isfinite(peak.x()) && peak.x() > 0 && std::isfinite(peak.y()) && peak.y() >= 0;
}

std::optional<QPointF> parsePeakLine(const QByteArray &line)
{
    const QList<QByteArray> fields = line.simplified().split(' ');
    if (fields.size() < 2)
        return std::nullopt;
    bool isMz = false;
    bool isIntensity = false;
    const QPointF peak(fields[0].toDouble(&isMz), fields[1].toDouble(&isIntensity));
    return isMz && isIntensity && isPeak(peak) ? std::optional(peak) : std::nullopt;
}

void tidyPeaks(QList<QPointF> *peaks)
{
    peaks->removeIf([](const QPointF &peak) { return !(peak.y() > 0); });
    std::stable_sort(peaks->begin(), peaks->end(), [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
}

} // namespace zav
