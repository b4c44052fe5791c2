// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Export.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace zav {

/// A list of warning texts that travels with an outcome: remarks on a call that did not make it fail.
///
/// The public operations forward to the protected virtual ones, so that a derived class can mirror every change
/// (`Result` keeps the warnings of a stored error equal to its own). One thread at a time per object.
class ZAV_COMMON_STABLE_EXPORT Warnings
{
public:
    Warnings();
    Warnings(const Warnings &other);
    Warnings(Warnings &&other) noexcept;
    Warnings &operator=(const Warnings &other);
    Warnings &operator=(Warnings &&other) noexcept;
    virtual ~Warnings();

    /// The texts, oldest first.
    QList<QString> warnings() const { return m_warnings; }
    /// Whether there is any.
    bool hasWarnings() const { return !m_warnings.isEmpty(); }

    /// Appends one text. Equal texts are kept.
    void addWarning(const QString &warning) { addWarningInternal(warning); }
    /// Appends several texts in their order. Equal texts are kept.
    void addWarnings(const QList<QString> &warnings) { addWarningsInternal(warnings); }

    /// Removes every text.
    void clearWarnings() { clearWarningsInternal(); }

    /// Replaces every text by the one given.
    void resetWarning(const QString &warning) { resetWarningInternal(warning); }
    /// Replaces every text by the ones given.
    void resetWarnings(const QList<QString> &warnings) { resetWarningsInternal(warnings); }

protected:
    virtual void addWarningInternal(const QString &warning);
    virtual void addWarningsInternal(const QList<QString> &warnings);
    virtual void clearWarningsInternal();
    virtual void resetWarningInternal(const QString &warning);
    virtual void resetWarningsInternal(const QList<QString> &warnings);

private:
    QList<QString> m_warnings;
};

} // namespace zav
