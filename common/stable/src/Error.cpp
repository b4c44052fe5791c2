// SPDX-License-Identifier: Apache-2.0
#include <zav/Error.h>

#include <QtCore/QStringList>

namespace zav {

namespace {

QString nameOf(ErrorCode code)
{
    switch (code) {
    case NoError:
        return QStringLiteral("NoError");
    case Failure:
        return QStringLiteral("Failure");
    case InvalidInput:
        return QStringLiteral("InvalidInput");
    }
    return QStringLiteral("ErrorCode(%1)").arg(static_cast<int>(code));
}

} // namespace

Error::Error() = default;

Error::Error(ErrorCode code) : m_code(code) {}

Error::Error(ErrorCode code, const QString &message) : m_code(code), m_message(message) {}

Error::Error(const Error &other) = default;
Error::Error(Error &&other) noexcept = default;
Error &Error::operator=(const Error &other) = default;
Error &Error::operator=(Error &&other) noexcept = default;
Error::~Error() = default;

QString Error::toString() const
{
    QStringList lines{m_message.isEmpty() ? nameOf(m_code) : nameOf(m_code) + QStringLiteral(": ") + m_message};
    for (const QString &warning : warnings())
        lines.append(QStringLiteral("  warning: ") + warning);
    for (const CaughtAt &place : m_trail)
        lines.append(QStringLiteral("  at %1:%2 in %3")
                         .arg(place.sourceFile, QString::number(place.line), place.functionSignature));
    return lines.join(QLatin1Char('\n'));
}

Error &Error::ecatch(const char *functionSignature, const char *sourceFile, int line)
{
    m_trail.append({QString::fromUtf8(functionSignature), QString::fromUtf8(sourceFile), line});
    return *this;
}

Error &Error::addWarning(const QString &warning)
{
    Warnings::addWarning(warning);
    return *this;
}

Error &Error::addWarnings(const QList<QString> &warnings)
{
    Warnings::addWarnings(warnings);
    return *this;
}

Error &Error::clearWarnings()
{
    Warnings::clearWarnings();
    return *this;
}

} // namespace zav
