// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceFindings.h"

#include <zav/Error.h>
#include <zav/Result.h>

#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// What a command looks for in each trace. Belongs to one thread.
class TraceAnalysis
{
public:
    virtual ~TraceAnalysis();

    /// Loads the network once, so that what is wrong with it is known before any trace is read.
    virtual Error load() = 0;

    virtual Result<TraceFindings> analyse(const QList<QPointF> &points) = 0;
};

/// What to tell of a trace that is longer than the network's input.
QString thinningRemark(qsizetype pointCount, int size);

/// The error with a message in any case: the library tells a network that does not fit by code and trail alone.
Error analysisError(const Error &error, const QString &modelFilePath, int size);

} // namespace zav
