// SPDX-License-Identifier: Apache-2.0
#include "Terminal.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#define ZAV_IS_TERMINAL(stream) (_isatty(_fileno(stream)) != 0)
#else
#include <unistd.h>
#define ZAV_IS_TERMINAL(stream) (isatty(fileno(stream)) != 0)
#endif

namespace zav::terminal {

bool standardOutputIsTerminal()
{
    return ZAV_IS_TERMINAL(stdout);
}

bool standardErrorIsTerminal()
{
    return ZAV_IS_TERMINAL(stderr);
}

} // namespace zav::terminal
