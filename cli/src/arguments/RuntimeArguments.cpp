// SPDX-License-Identifier: Apache-2.0
#include "CommandArguments.h"

#include <CLI/CLI.hpp>

namespace zav {

namespace {

constexpr char EXAMPLES[] =
    R"(Says which TensorFlow the networks run on: its version, its file, and how that was found. Looked at are, in this
order, the path given to cmake as ZAV_TENSORFLOW_LIBRARY, the folder zav beside the library libzav_ml, the folder given
to cmake as ZAV_TENSORFLOW_DIR, the system's own search for libraries (LD_LIBRARY_PATH included), and the folder of
zav runtime install.

Exit code: 0 TensorFlow was found and has all that is needed, 1 it was not (standard error says why), 2 wrong usage.

Examples:
  zav runtime
  zav runtime install
)";

constexpr char INSTALL_EXAMPLES[] =
    R"(Fetches TensorFlow (280 MB, 850 MB unpacked) from PyPI with pip, checks its SHA-256 and puts it into
$XDG_CACHE_HOME/zav, or ~/.cache/zav. Does nothing when it is there. A run that fails or is interrupted leaves nothing
half done. The settings of pip hold, for example an index or a proxy of your own.

Exit code: 0 TensorFlow is installed, 1 it is not (standard error says why), 2 wrong usage.

Example:
  zav runtime install
)";

/// `zav runtime` and, below it, `zav runtime install`.
class RuntimeArguments : public CommandArguments
{
public:
    const char *name() const override { return "runtime"; }
    const char *summary() const override { return "Say which TensorFlow is used, or install it"; }
    void addTo(CLI::App *command) override;
    Result<CommandLine> options() const override;

private:
    CLI::App *m_install = nullptr;
    bool m_verbose = false;
};

} // namespace

void RuntimeArguments::addTo(CLI::App *command)
{
    command->add_flag("-v,--verbose", m_verbose, "also show where in the program each failure occurred");
    command->footer(EXAMPLES);
    m_install = command->add_subcommand("install", "Fetch TensorFlow and put it where zav finds it");
    m_install->footer(INSTALL_EXAMPLES);
}

Result<CommandLine> RuntimeArguments::options() const
{
    if (m_install->parsed())
        return CommandLine(RuntimeInstallOptions{m_verbose});
    return CommandLine(RuntimeOptions{m_verbose});
}

std::unique_ptr<CommandArguments> runtimeArguments()
{
    return std::make_unique<RuntimeArguments>();
}

} // namespace zav
