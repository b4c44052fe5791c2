// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"

namespace zav {

/// What `zav runtime install` was asked for.
struct RuntimeInstallOptions
{
    bool verbose = false;

    bool drawsPictures() const { return false; }
};

/// `zav runtime install`: the process becomes the script that installs TensorFlow, so that the script gets the signals
/// and gives the exit code.
class RuntimeInstallCommand : public Command
{
public:
    explicit RuntimeInstallCommand(const RuntimeInstallOptions &options) : Command(options.verbose) {}

private:
    /// Returns only where the script cannot be started.
    Error work() override;
};

} // namespace zav
