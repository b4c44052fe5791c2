// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

/// While an object of this class lives, nothing that the process writes to standard error is seen.
///
/// The TensorFlow runtime greets there when it is loaded, whatever its own log level, and the library repeats as plain
/// lines what its errors say. One object at a time; has no effect on Windows.
class QuietStandardError
{
public:
    explicit QuietStandardError(bool isQuiet);
    ~QuietStandardError();

    QuietStandardError(const QuietStandardError &) = delete;
    QuietStandardError &operator=(const QuietStandardError &) = delete;

private:
    int m_original = -1; ///< a copy of the true descriptor; -1 when nothing was changed
};

} // namespace zav
