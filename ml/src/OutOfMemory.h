// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <new>

namespace zav {

/// The error of a public call in which memory ran out, with the place of the call where memory suffices to note it.
inline Error outOfMemory(const char *functionSignature, const char *sourceFile, int line)
{
    Error error(Failure, QStringLiteral("Out of memory")); // the text is part of the program
    try {
        error.ecatch(functionSignature, sourceFile, line);
    } catch (const std::bad_alloc &) { // NOLINT(bugprone-empty-catch): the message has to do
    }
    return error;
}

} // namespace zav
