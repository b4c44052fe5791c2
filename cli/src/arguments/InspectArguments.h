// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandArguments.h"

namespace zav {

class InspectArguments : public CommandArguments
{
public:
    const char *name() const override { return "inspect"; }
    const char *summary() const override { return "Check a folder of networks and try each"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    std::string m_folder, m_models;
    bool m_verbose = false;
};

} // namespace zav
