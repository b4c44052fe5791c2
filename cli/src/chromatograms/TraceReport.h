// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TraceFindings.h"

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

/// What became of one trace, for output and messages.
struct TraceReport
{
    qint64 number = 0; ///< from 1, over all files
    QString file;      ///< as the user named it
    QString id;
    QString timeUnit;
    QString intensityUnit;
    qsizetype points = 0;
    TraceFindings findings;
    Error problem;         ///< why there are none
    bool isBroken = false; ///< the problem is that the trace cannot be read: its message says file and trace
    Error pictureProblem;  ///< why it could not be drawn
};

} // namespace zav
