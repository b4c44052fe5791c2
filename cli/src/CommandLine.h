// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MassTolerance.h"
#include "SpectrumWriter.h"

#include <QtCore/QString>

#include <optional>
#include <variant>

namespace zav {

/// How the program ends.
enum ExitCode {
    AllDone = 0,    ///< everything that was asked for was done
    SomeFailed = 1, ///< something was not, and standard error says what and why
    WrongUsage = 2  ///< the arguments contradict the manual; nothing was done
};

/// What `zav spectrum` was asked for.
struct SpectrumOptions
{
    QString peptide; ///< with `charge`, or empty and `peptideList` instead
    int charge = 0;
    QString peptideList;            ///< path, "-" for standard input
    QString modelFolder;            ///< empty: where the networks are installed
    double cysteineMass = 57.02146; ///< Da
    std::optional<OutputFormat> format;
    QString outputPath; ///< empty: standard output
    bool isotopes = true;
    bool annotate = false;
    QString picturePath;  ///< empty: none
    QString observedPath; ///< a measured spectrum to compare with; empty: none
    QString scan;         ///< which of that file's spectra
    MassTolerance tolerance;
    bool verbose = false;
};

/// What `zav inspect` was asked for.
struct InspectOptions
{
    QString modelFolder; ///< empty: where the networks are installed
    bool verbose = false;
};

/// Nothing is left to do: help was asked for, or the arguments were wrong. The texts are for the two standard streams.
struct EarlyExit
{
    int code = AllDone;
    QString standardOutput;
    QString standardError;
};

using CommandLine = std::variant<EarlyExit, SpectrumOptions, InspectOptions>;

/// Reads the program's arguments (UTF-8). Needs no application object.
CommandLine parseCommandLine(int argc, const char *const *argv);

} // namespace zav
