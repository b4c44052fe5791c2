// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"

#include <CLI/CLI.hpp>

namespace zav {

namespace {

constexpr char EXAMPLES[] =
    R"(Exit code: 0 every network is the one its contract describes and runs, 1 otherwise, 2 wrong usage.

Examples:
  zav inspect
  zav inspect models
)";

class InspectArguments : public CommandArguments
{
public:
    const char *name() const override { return "inspect"; }
    const char *summary() const override { return "Check a folder of networks and run each once"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    std::string m_folder;
    NetworkArguments m_networks;
    bool m_verbose = false;
};

} // namespace

void InspectArguments::addTo(CLI::App *command)
{
    command->add_option("DIR", m_folder, "folder of the networks; default: the installed ones")->type_name("");
    m_networks.addTo(command);
    command->add_flag("-v,--verbose", m_verbose, "also show where in the program each failure occurred");
    command->footer(EXAMPLES);
}

Result<CommandLine> InspectArguments::options() const
{
    NetworkChoice networks = m_networks.choice();
    if (!m_folder.empty() && !networks.folder.isEmpty())
        return wrongArgument(QStringLiteral("DIR and --models cannot be used together"));
    if (!m_folder.empty())
        networks.folder = text(m_folder);
    return CommandLine(InspectOptions{networks, m_verbose});
}

std::unique_ptr<CommandArguments> inspectArguments()
{
    return std::make_unique<InspectArguments>();
}

} // namespace zav
