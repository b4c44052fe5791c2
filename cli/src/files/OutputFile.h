// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QFileDevice>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// Where a run's result goes: a file or standard output.
///
/// A regular file appears under its name only with `commit`; until then an older one of that name stays, and an object
/// that goes without `commit` leaves it untouched. Devices and pipes are written directly.
class OutputFile
{
public:
    /// `path` empty or "-": standard output.
    explicit OutputFile(const QString &path);
    ~OutputFile();
    Q_DISABLE_COPY_MOVE(OutputFile)

    /// Has to come first and succeed.
    Error open();

    Error write(const QByteArray &bytes);

    /// Writes what is left and gives the file its name. Nothing may be written afterwards.
    Error commit();

    /// What messages call it.
    QString name() const;

private:
    Error flush();
    Error failure(const char *what) const;
    bool isStandardOutput() const;

    QString m_path;
    QByteArray m_pending;
    std::unique_ptr<QFileDevice> m_file;
};

} // namespace zav
