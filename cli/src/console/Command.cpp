// SPDX-License-Identifier: Apache-2.0
#include "Command.h"

#include "Terminal.h"

namespace zav {

Command::~Command() = default;

int Command::run()
{
    const Error error = work();
    if (error.hasError())
        m_messages.failure(error);
    if (error.hasError() && isInterrupted())
        return m_interruption->exitCode();
    return error.hasError() || m_someFailed ? SomeFailed : AllDone;
}

void Command::fail(const Error &error, const QString &subject)
{
    m_someFailed = true;
    m_messages.failure(error, subject);
}

void Command::noteInterrupts()
{
    if (!m_interruption)
        m_interruption.emplace();
}

Error Command::checkForInterrupt() const
{
    return isInterrupted() ? Error(Failure, QStringLiteral("interrupted")) : Error();
}

Progress Command::startProgress(qint64 total, const QString &unit, const QString &outputPath)
{
    const bool mixesWithOutput = terminal::isStandardOutput(outputPath) && terminal::standardOutputIsTerminal();
    return Progress(total, unit, terminal::standardErrorIsTerminal() && !mixesWithOutput, &m_messages);
}

} // namespace zav
