// SPDX-License-Identifier: Apache-2.0
#include "TraceAnalysis.h"

#include "Messages.h"

#include <QtCore/QFileInfo>

namespace zav {

TraceAnalysis::~TraceAnalysis() = default;

QString thinningRemark(qsizetype pointCount, int size)
{
    if (pointCount <= size)
        return {};
    return QStringLiteral("%1 points thinned to %2 for the network").arg(pointCount).arg(size);
}

Error analysisError(const Error &error, const QString &modelFilePath, int size)
{
    if (!error.message().isEmpty())
        return error;
    return explainedError(
        error,
        QStringLiteral("%1 does not work on an input of %2 points").arg(QFileInfo(modelFilePath).fileName()).arg(size));
}

} // namespace zav
