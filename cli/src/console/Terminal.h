// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QString>

namespace zav {

namespace terminal {

/// Whether a person reads what the program writes there.
bool standardOutputIsTerminal();
bool standardErrorIsTerminal();

/// Whether output to that path is standard output: an empty path or "-".
bool isStandardOutput(const QString &path);

} // namespace terminal

/// While an object of this class lives, nothing that the process writes to standard error is seen.
///
/// The TensorFlow runtime writes there when it is loaded, whatever its own log level, and the library repeats as plain
/// lines what its errors say. One object at a time; has no effect on Windows.
class QuietStandardError
{
public:
    explicit QuietStandardError(bool isQuiet);
    ~QuietStandardError();

    QuietStandardError(const QuietStandardError &) = delete;
    QuietStandardError &operator=(const QuietStandardError &) = delete;

    /// Ends the quiet of the object that lives, if there is one: for the last words of a process that is about to end.
    /// Any thread may call it.
    static void end();

private:
    bool m_isQuiet = false;
};

} // namespace zav
