// SPDX-License-Identifier: Apache-2.0
#include "PredictorPool.h"

#include "Messages.h"

#include <QtCore/QFileInfo>

#include <algorithm>

namespace zav {

namespace {

QPointF joined(const QList<QPointF> &points, qsizetype first, qsizetype end)
{
    double sum = 0;
    for (qsizetype i = first; i < end; ++i)
        sum += points[i].y();
    return {points[first].x(), sum / static_cast<double>(end - first)};
}

QString fileName(const QString &path)
{
    return QFileInfo(path).fileName();
}

} // namespace

int networkSizeFor(qsizetype pointCount)
{
    const auto holding =
        std::find_if(NETWORK_SIZES.begin(), NETWORK_SIZES.end(), [pointCount](int size) { return size >= pointCount; });
    return holding == NETWORK_SIZES.end() ? NETWORK_SIZES.back() : *holding;
}

QList<QPointF> thinnedTo(int size, const QList<QPointF> &points)
{
    if (points.size() <= size)
        return points;
    QList<QPointF> thinned;
    thinned.reserve(size);
    for (qsizetype i = 0; i < size; ++i)
        thinned.append(joined(points, i * points.size() / size, (i + 1) * points.size() / size));
    return thinned;
}

QString thinningRemark(qsizetype pointCount, int size)
{
    if (pointCount <= size)
        return {};
    return QStringLiteral("%1 points thinned to %2 for the network").arg(pointCount).arg(size);
}

Error runError(const Error &error, const QString &modelFilePath, int size)
{
    throwIfOutOfMemory(error);
    if (!error.message().isEmpty())
        return error;
    return explainedError(
        error, QStringLiteral("%1 does not work on an input of %2 points").arg(fileName(modelFilePath)).arg(size));
}

} // namespace zav
