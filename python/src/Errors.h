// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>
#include <zav/Result.h>

namespace zav::python {

/// Raises zav.Error, or zav.InvalidInput where that is its code, in Python. Needs the GIL.
[[noreturn]] void raise(const Error &error);

/// Raises the error, if it is one; an error of code `NoError` with warnings as zav.InvalidInput of the first warning.
/// The predictors warn of input that they left out, which Python refuses.
void raiseIfError(const Error &error);

/// The value, or the error raised.
template <typename T>
T valueOrRaise(Result<T> &&result)
{
    if (result.hasError())
        raise(result.error());
    return std::move(result).value();
}

} // namespace zav::python
