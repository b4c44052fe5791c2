// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QString>

#include <exception>

namespace zav {

/// The one place where ProteoWizard's exceptions become errors: runs `step` and returns what it returns, a `Failure` of
/// the message `subject: what it threw` where it throws.
template <typename Step>
auto caughtAs(const QString &subject, const Step &step) -> decltype(step());

/// Likewise, with a message that the file is no mzML that can be read.
template <typename Step>
auto caught(const QString &path, const Step &step) -> decltype(step())
{
    return caughtAs(path + QStringLiteral(": is not mzML that can be read"), step);
}

/// An error for a folder and for a file that is missing, unreadable or empty: ProteoWizard's own messages for these
/// name its sources rather than the file.
Error checkFile(const QString &path);

/// A message of ProteoWizard's without the names of its functions and its places in the text that it was given.
QString plainMessage(const char *what);

template <typename Step>
auto caughtAs(const QString &subject, const Step &step) -> decltype(step())
{
    try {
        return step();
    } catch (const std::exception &exception) {
        return Error(Failure, subject + QStringLiteral(": ") + plainMessage(exception.what()));
    } catch (const char *what) { // as its numpress decoders do
        return Error(Failure, subject + QStringLiteral(": ") + plainMessage(what));
    } catch (...) {
        return Error(Failure, subject);
    }
}

} // namespace zav
