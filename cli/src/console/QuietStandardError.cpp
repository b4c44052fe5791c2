// SPDX-License-Identifier: Apache-2.0
#include "QuietStandardError.h"

#ifndef _WIN32
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace zav {

#ifdef _WIN32

QuietStandardError::QuietStandardError(bool) {}
QuietStandardError::~QuietStandardError() = default;

#else

QuietStandardError::QuietStandardError(bool isQuiet)
{
    const int nowhere = isQuiet ? open("/dev/null", O_WRONLY | O_CLOEXEC) : -1;
    if (nowhere < 0)
        return;
    std::fflush(stderr);
    m_original = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    if (m_original >= 0)
        dup2(nowhere, STDERR_FILENO);
    close(nowhere);
}

QuietStandardError::~QuietStandardError()
{
    if (m_original < 0)
        return;
    std::fflush(stderr);
    dup2(m_original, STDERR_FILENO);
    close(m_original);
}

#endif

} // namespace zav
