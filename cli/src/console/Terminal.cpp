// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include <atomic>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#define ZAV_IS_TERMINAL(stream) (_isatty(_fileno(stream)) != 0)
#else
#include <fcntl.h>
#include <unistd.h>
#define ZAV_IS_TERMINAL(stream) (isatty(fileno(stream)) != 0)
#endif

namespace zav {

namespace terminal {

bool standardOutputIsTerminal()
{
    return ZAV_IS_TERMINAL(stdout);
}

bool standardErrorIsTerminal()
{
    return ZAV_IS_TERMINAL(stderr);
}

bool isStandardOutput(const QString &path)
{
    return path.isEmpty() || path == QLatin1String("-");
}

} // namespace terminal

#ifdef _WIN32

QuietStandardError::QuietStandardError(bool) {}
QuietStandardError::~QuietStandardError() = default;
void QuietStandardError::end() {}

#else

namespace {

std::atomic<int> trueStandardError = -1; // a copy of the descriptor while it is quiet

} // namespace

QuietStandardError::QuietStandardError(bool isQuiet)
{
    const int nowhere = isQuiet ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (nowhere < 0)
        return;
    std::fflush(stderr);
    trueStandardError = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    m_isQuiet = trueStandardError >= 0;
    if (m_isQuiet)
        dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietStandardError::~QuietStandardError()
{
    if (m_isQuiet)
        end();
}

void QuietStandardError::end()
{
    const int original = trueStandardError.exchange(-1);
    if (original < 0)
        return;
    std::fflush(stderr);
    dup2(original, STDERR_FILENO);
    close(original);
}

#endif

} // namespace zav
