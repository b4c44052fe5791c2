// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"

#include <zav/XicPeakSplitter.h>

#include <Eigen/Core>

namespace zav {

class XicPeakSplitter::Private
{
public:
    Error init(const XicPeakSplitterOptions &newOptions);
    Result<QList<std::pair<double, double>>> splitXIC(const QList<QPointF> &points);

    Model model;
    XicPeakSplitterOptions options;
    bool initialised = false;
    Eigen::VectorXd smoothingKernel;
};

} // namespace zav
