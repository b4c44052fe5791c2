// SPDX-License-Identifier: Apache-2.0
#include "LimitsCommand.h"

#include "LimitsAnalysis.h"

namespace zav {

std::unique_ptr<TraceAnalysis> LimitsCommand::makeAnalysis(const QString &modelFilePath) const
{
    return std::make_unique<LimitsAnalysis>(m_options, modelFilePath);
}

} // namespace zav
