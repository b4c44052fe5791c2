// SPDX-License-Identifier: Apache-2.0
#include "Messages.h"

#include "Progress.h"

#include <cstdio>
#include <new>

namespace zav {

namespace {

/// The message on one line. Some failures have a code and a trail, but no message.
QString oneLine(const Error &error)
{
    const QString message = error.message().simplified();
    return message.isEmpty() ? QStringLiteral("failed without a message (--verbose shows where)") : message;
}

} // namespace

void Messages::note(const QString &text)
{
    writeLine(QStringLiteral("zav: ") + text);
}

void Messages::failure(const Error &error, const QString &subject)
{
    note((subject.isEmpty() ? QString() : subject + QStringLiteral(": ")) + oneLine(error));
    if (m_verbose)
        writeLine(error.toString());
}

void Messages::writeLine(const QString &line)
{
    if (m_progress)
        m_progress->clear();
    std::fputs(qUtf8Printable(line + QLatin1Char('\n')), stderr);
}

void throwIfOutOfMemory(const Error &error)
{
    if (error.equals(Failure) && error.message() == QLatin1String("Out of memory"))
        throw std::bad_alloc();
}

Error explainedError(const Error &error, const QString &message)
{
    Error explained(error.code(), message);
    for (const CaughtAt &place : error.trail())
        explained.ecatch(qUtf8Printable(place.functionSignature), qUtf8Printable(place.sourceFile), place.line);
    explained.addWarnings(error.warnings());
    return explained;
}

} // namespace zav
