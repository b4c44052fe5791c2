// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "ModelFolder.h"

namespace zav {

/// What `zav inspect` was asked for.
struct InspectOptions
{
    NetworkChoice networks;
    bool verbose = false;

    bool drawsPictures() const { return false; }
};

/// `zav inspect`: one table of the networks of a folder, what is wrong with them on standard error.
class InspectCommand : public Command
{
public:
    explicit InspectCommand(const InspectOptions &options) : Command(options.verbose), m_options(options) {}

private:
    Error work() override;

    InspectOptions m_options;
};

} // namespace zav
