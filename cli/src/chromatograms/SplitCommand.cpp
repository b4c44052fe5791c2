// SPDX-License-Identifier: Apache-2.0
#include "SplitCommand.h"

#include "SplitAnalysis.h"

namespace zav {

std::unique_ptr<TraceAnalysis> SplitCommand::makeAnalysis(const QString &modelFilePath) const
{
    return std::make_unique<SplitAnalysis>(m_options, modelFilePath);
}

} // namespace zav
