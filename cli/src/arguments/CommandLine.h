// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Command.h"
#include "InspectCommand.h"
#include "LibraryOptions.h"
#include "LimitsCommand.h"
#include "RetentionCommand.h"
#include "RuntimeCommand.h"
#include "RuntimeInstallCommand.h"
#include "SpectrumOptions.h"
#include "SplitCommand.h"

#include <QtCore/QString>

#include <variant>

namespace zav {

/// Nothing is left to do: help was asked for, or the arguments were wrong. The texts are for the two standard streams.
struct EarlyExit
{
    int code = AllDone;
    QString standardOutput;
    QString standardError;
};

/// What the arguments ask for. The options of a command say whether it is `verbose` and whether it draws pictures.
using CommandLine =
    std::variant<EarlyExit, SpectrumOptions, LimitsOptions, SplitOptions, InspectOptions, LibraryOptions,
                 LibraryMergeOptions, RetentionOptions, RuntimeOptions, RuntimeInstallOptions>;

/// Reads the program's arguments (UTF-8). Needs no application object.
CommandLine parseCommandLine(int argc, const char *const *argv);

} // namespace zav
