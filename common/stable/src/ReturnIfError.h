// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <utility>

// ZAV_RETURN_IF_ERROR(step, line): runs a step that yields an `Error`; when it has one, tags it with the enclosing
// function, the source path and the line, and returns it. The one form in which failures travel upward; it serves in
// functions that return `Error` or `Result`. A source file that uses it defines at file scope
//     constexpr char SOURCE_FILE[] = "ml/src/Model";
// Lines are part of the trail that hosts read and log: where one is written as a number it is a promise and stays,
// elsewhere pass __LINE__.
#define ZAV_RETURN_IF_ERROR(step, line)                                                                                \
    do {                                                                                                               \
        if (::zav::Error zavCaught = (step); zavCaught.hasError())                                                     \
            return std::move(zavCaught.ecatch(Q_FUNC_INFO, SOURCE_FILE, line));                                        \
    } while (false)
