// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

namespace zav {

class Progress;

/// What the program tells its user on standard error: one line a message, `zav: <message>`.
///
/// An error's trail (where in the sources it passed) follows only when the user asked for it. A progress bar on the
/// same terminal is cleared before a line is written.
class Messages
{
public:
    explicit Messages(bool verbose) : m_verbose(verbose) {}

    void setProgress(Progress *progress) { m_progress = progress; }

    /// A remark: the run goes on and nothing failed.
    void note(const QString &text);

    /// A failure. `subject` is what it is about (a peptide, a file); empty where the message names it.
    void failure(const Error &error, const QString &subject = QString());

private:
    void writeLine(const QString &line);

    bool m_verbose = false;
    Progress *m_progress = nullptr;
};

/// Throws std::bad_alloc for the error of a predictor that ran out of memory. The predictor could go on, but the
/// program ends as it does elsewhere without memory.
void throwIfOutOfMemory(const Error &error);

/// The error with another message and the same code and trail: for a failure that has no message yet, or one that says
/// nothing to the user.
Error explainedError(const Error &error, const QString &message);

} // namespace zav
