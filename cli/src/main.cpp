// SPDX-License-Identifier: Apache-2.0
#include "Application.h"
#include "CommandLine.h"
#include "InspectCommand.h"
#include "LibraryCommand.h"
#include "LibraryMergeCommand.h"
#include "LimitsCommand.h"
#include "Messages.h"
#include "OutputFile.h"
#include "RetentionCommand.h"
#include "RuntimeCache.h"
#include "RuntimeCommand.h"
#include "RuntimeInstallCommand.h"
#include "SpectrumCommand.h"
#include "SplitCommand.h"
#include "Terminal.h"

#include <QtCore/QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace zav {

namespace {

/// Keeps the log of the libraries and the warnings of Qt off standard error, where each failure has one line of the
/// program's own.
void quietenLibraries()
{
    QLoggingCategory::setFilterRules(QStringLiteral("zav.ml=false\ndefault.warning=false"));
    if (!qEnvironmentVariableIsSet("TF_CPP_MIN_LOG_LEVEL"))
        qputenv("TF_CPP_MIN_LOG_LEVEL", "3");
}

int finish(const EarlyExit &exit)
{
    std::fputs(qUtf8Printable(exit.standardError), stderr);
    const Error error = exit.standardOutput.isEmpty() ? Error() : writeToStandardOutput(exit.standardOutput);
    if (!error.hasError())
        return exit.code;
    Messages(false).failure(error);
    return SomeFailed;
}

int run(const SpectrumOptions &options)
{
    return SpectrumCommand(options).run();
}

int run(const RetentionOptions &options)
{
    return RetentionCommand(options).run();
}

int run(const LimitsOptions &options)
{
    return LimitsCommand(options).run();
}

int run(const SplitOptions &options)
{
    return SplitCommand(options).run();
}

int run(const InspectOptions &options)
{
    return InspectCommand(options).run();
}

int run(const LibraryOptions &options)
{
    return LibraryCommand(options).run();
}

int run(const LibraryMergeOptions &options)
{
    return LibraryMergeCommand(options).run();
}

int run(const RuntimeOptions &options)
{
    return RuntimeCommand(options).run();
}

int run(const RuntimeInstallOptions &options)
{
    return RuntimeInstallCommand(options).run();
}

/// Leaves without destroying the application: Qt Gui stays locked where std::bad_alloc passes through it, and its
/// destructor would wait for that lock.
[[noreturn]] void endWithoutMemory()
{
    QuietStandardError::end();
    std::fputs("zav: out of memory\n", stderr);
    std::_Exit(SomeFailed);
}

/// Runs a command in the surroundings that it asks for.
template <typename Options>
int runCommand(const Options &options, char **argv)
{
    if (!options.verbose)
        quietenLibraries();
    // The application object would take some of the arguments for its own.
    int applicationArgc = 1;
    const auto application = createApplication(applicationArgc, argv, options.drawsPictures());
    useRuntimeCache();
    try {
        return run(options);
    } catch (const std::bad_alloc &) { // all that the run began has been removed
        std::fflush(stdout);
        endWithoutMemory();
    }
}

int runCommand(const EarlyExit &exit, char ** /*argv*/)
{
    return finish(exit);
}

std::terminate_handler otherTermination = nullptr;

/// Some libraries cannot pass std::bad_alloc on: they take memory in destructors, or in functions that must not throw.
[[noreturn]] void onTerminate()
{
    try {
        if (const std::exception_ptr thrown = std::current_exception())
            std::rethrow_exception(thrown);
    } catch (const std::bad_alloc &) {
        endWithoutMemory();
    } catch (...) { // NOLINT(bugprone-empty-catch): not ours
    }
    otherTermination();
    std::abort();
}

} // namespace

} // namespace zav

// NOLINTNEXTLINE(bugprone-exception-escape): what else is thrown is a fault, and ends the process
int main(int argc, char **argv)
try {
    zav::otherTermination = std::set_terminate(zav::onTerminate);
    return std::visit([&](const auto &asked) { return zav::runCommand(asked, argv); },
                      zav::parseCommandLine(argc, argv));
} catch (const std::bad_alloc &) {
    zav::endWithoutMemory();
}
