// SPDX-License-Identifier: Apache-2.0
#include "Program.h"

#include "Application.h"
#include "CommandLine.h"
#include "InspectCommand.h"
#include "SpectrumCommand.h"

#include <QtCore/QLoggingCategory>

#include <cstdio>

namespace zav {

namespace {

/// What the libraries below log of their own accord: only for those who asked for more than one line a failure.
void quietenLibraries()
{
    QLoggingCategory::setFilterRules(QStringLiteral("zav.ml=false"));
    if (!qEnvironmentVariableIsSet("TF_CPP_MIN_LOG_LEVEL"))
        qputenv("TF_CPP_MIN_LOG_LEVEL", "3");
}

int finish(const EarlyExit &exit)
{
    std::fputs(qUtf8Printable(exit.standardOutput), stdout);
    std::fputs(qUtf8Printable(exit.standardError), stderr);
    return exit.code;
}

} // namespace

int runProgram(int argc, char **argv)
{
    const CommandLine commandLine = parseCommandLine(argc, argv);
    if (const auto *exit = std::get_if<EarlyExit>(&commandLine))
        return finish(*exit);

    const auto *spectrum = std::get_if<SpectrumOptions>(&commandLine);
    const auto *inspect = std::get_if<InspectOptions>(&commandLine);
    // The application object reads arguments of its own; ours are none of its business.
    int applicationArgc = 1;
    const auto application = createApplication(applicationArgc, argv, spectrum && !spectrum->picturePath.isEmpty());
    if (!(spectrum ? spectrum->verbose : inspect->verbose))
        quietenLibraries();
    return spectrum ? SpectrumCommand(*spectrum).run() : InspectCommand(*inspect).run();
}

} // namespace zav
