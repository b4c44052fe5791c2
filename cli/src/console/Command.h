// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Interruption.h"
#include "Messages.h"
#include "Progress.h"

#include <zav/Error.h>

#include <QtCore/QString>

#include <initializer_list>
#include <optional>

namespace zav {

/// How the program ends.
enum ExitCode {
    AllDone = 0,    ///< everything that was asked for was done
    SomeFailed = 1, ///< something was not, and standard error says what and why
    WrongUsage = 2  ///< the arguments contradict the manual; nothing was done
};

/// A command of the program. The base class does what all commands do around their work: it reports the failure that
/// ends the run, counts the failures that do not, notes interrupts, shows progress, and turns all this into an exit
/// code.
class Command
{
public:
    /// `verbose`: with each failure, where in the sources it passed.
    explicit Command(bool verbose) : m_messages(verbose) {}
    virtual ~Command();

    Command(const Command &) = delete;
    Command &operator=(const Command &) = delete;

    /// Runs the command to its end, once. Needs the application object. The result is an `ExitCode`, or what a shell
    /// expects of a program that was interrupted: 130, 143 or 129.
    int run();

protected:
    /// Takes the steps of a command (member functions that return an `Error`) in turn, up to the first that fails.
    template <typename Derived, typename Step>
    static Error inTurn(Derived *command, std::initializer_list<Step> steps)
    {
        for (const Step step : steps) {
            if (Error error = (command->*step)(); error.hasError())
                return error;
        }
        return {};
    }

    Messages &messages() { return m_messages; }

    /// Reports a failure that does not end the run; its exit code is then `SomeFailed`. `subject` as in `Messages`.
    void fail(const Error &error, const QString &subject);

    /// From here on an interrupt is noted instead of ending the process. For work that asks for it.
    void noteInterrupts();
    bool isInterrupted() const { return m_interruption && m_interruption->isRequested(); }

    /// `Failure` "interrupted" after an interrupt.
    Error checkForInterrupt() const;

    /// A bar for the `total` pieces of work that follow, as `Progress` has it, on a terminal and only where the output
    /// (to the path, or to standard output) does not go to the same terminal. It is cleared before each message.
    Progress startProgress(qint64 total, const QString &unit, const QString &outputPath);

private:
    /// What the command does. The error is the one that ends the run.
    virtual Error work() = 0;

    Messages m_messages;
    bool m_someFailed = false;
    std::optional<Interruption> m_interruption;
};

} // namespace zav
