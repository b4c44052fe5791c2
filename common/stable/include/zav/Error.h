// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Warnings.h>

namespace zav {

/// The kind of a failure. `Failure`: a step did not work (a file, the network, the runtime).
/// `InvalidInput`: what the caller gave contradicts itself or a documented range.
enum ErrorCode { NoError = 0, Failure = 1, InvalidInput = 2 };

/// One place that an error passed on its way up to the host.
struct CaughtAt
{
    QString functionSignature; ///< as the compiler spells it
    QString sourceFile;        ///< path in the source tree without ending, `ml/src/Model`
    int line = 0;
};

/// The outcome of a call that returns nothing else: success, or a code with a message and the trail of the places
/// that the error passed. Every function of the library returns its failures this way; none throws for them.
class [[nodiscard]] ZAV_COMMON_STABLE_EXPORT Error : public Warnings
{
public:
    /// Success: no error.
    Error();
    /// Implicit, so that a check reads `equal(count, expected, Failure)`.
    Error(ErrorCode code); // NOLINT(google-explicit-constructor)
    /// A failure with what it is about, in one line.
    Error(ErrorCode code, const QString &message);
    Error(const Error &other);
    Error(Error &&other) noexcept;
    Error &operator=(const Error &other);
    Error &operator=(Error &&other) noexcept;
    ~Error() override;

    /// The kind of the failure.
    ErrorCode code() const { return m_code; }
    /// Whether the call failed. Warnings alone are no error.
    bool hasError() const { return m_code != NoError; }
    /// Whether the code is this one.
    bool equals(ErrorCode code) const { return m_code == code; }

    /// English, not localised, possibly empty: some failures are told by their code and trail alone.
    QString message() const { return m_message; }

    /// Every place recorded by `ecatch`, the innermost first.
    QList<CaughtAt> trail() const { return m_trail; }

    /// Code, message, warnings and trail over several lines, for a log or a terminal; "NoError" for success.
    QString toString() const;

    /// Records where the error was caught and returns this object, to be returned at once.
    Error &ecatch(const char *functionSignature, const char *sourceFile, int line);

    /// As that of `Warnings`, for chains of calls.
    Error &addWarning(const QString &warning);
    /// As that of `Warnings`, for chains of calls.
    Error &addWarnings(const QList<QString> &warnings);
    /// As that of `Warnings`, for chains of calls.
    Error &clearWarnings();

private:
    ErrorCode m_code = NoError;
    QString m_message;
    QList<CaughtAt> m_trail;
};

} // namespace zav
