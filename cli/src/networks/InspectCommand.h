// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "InspectOptions.h"
#include "Messages.h"
#include "NetworkInspection.h"

namespace zav {

/// `zav inspect`: one table of the networks of a folder, what is wrong with them on standard error.
class InspectCommand
{
public:
    explicit InspectCommand(const InspectOptions &options) : m_options(options), m_messages(options.verbose) {}

    /// Runs the command to its end. Needs the application object. The result is an `ExitCode`.
    int run();

private:
    void reportProblems(const NetworkInspection &inspection);

    InspectOptions m_options;
    Messages m_messages;
};

} // namespace zav
