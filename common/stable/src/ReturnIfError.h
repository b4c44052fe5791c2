// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

#include <utility>

namespace zav {

/// The error to pass on, of a step that has one.
inline Error errorToPassOn(Error error)
{
    return error;
}

template <typename T>
Error errorToPassOn(const Result<T> &result)
{
    return result.error();
}

} // namespace zav

// ZAV_RETURN_IF_ERROR(step, line): runs a step that yields an `Error` or a `Result`; when it has an error, tags it with
// the enclosing function, the source path and the line, and returns it. The one form in which failures travel upward;
// it serves in functions that return `Error` or `Result`. The step itself is asked, not the code of its error: a
// `Result` made from an `Error` without a code has no value either, and only a `Result` can pass that on.
// A source file that uses it defines at file scope
//     constexpr char SOURCE_FILE[] = "ml/src/Model";
// Lines are part of the trail that hosts read and log: where one has a name or is written as a number it is a promise
// and stays, elsewhere pass __LINE__.
#define ZAV_RETURN_IF_ERROR(step, line)                                                                                \
    do {                                                                                                               \
        if (auto &&zavStep = (step); zavStep.hasError())                                                               \
            return std::move(::zav::errorToPassOn(std::forward<decltype(zavStep)>(zavStep))                            \
                                 .ecatch(Q_FUNC_INFO, SOURCE_FILE, line));                                             \
    } while (false)
