// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QByteArray>
#include <QtCore/QFileDevice>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// Whether a path is that of a regular file, or of one that is yet to be made, rather than "-", a pipe or a device.
bool isRegularFile(const QString &path);

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

    /// Writes what is left, waits until the disk holds it and gives the file its name. Nothing may be written
    /// afterwards. When the folder cannot be written to the disk, that is a failure although the file has its name.
    Error commit();

    /// What messages call it.
    QString name() const;

private:
    Error flush();
    Error cannotFinish(const QString &reason) const;
    Error failure(const char *what) const;
    bool isStandardOutput() const;

    QString m_path;
    QByteArray m_pending;
    std::unique_ptr<QFileDevice> m_file;
};

/// Writes a text to standard output.
Error writeToStandardOutput(const QString &text);

/// A file that others write, by its path, such as SQLite. They write it under a name of its own beside the final one,
/// which it gets with `commit` only: until then an older file of that name stays, and an object that goes without
/// `commit` removes the unfinished file. Errors name the final one.
class UnfinishedFile
{
public:
    UnfinishedFile() = default;
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile &) = delete;
    UnfinishedFile &operator=(const UnfinishedFile &) = delete;

    /// Makes the file, empty, for the final `path`. Has to come first and succeed. `InvalidInput` where that is no
    /// regular file.
    Error create(const QString &path);

    /// Where to write.
    QString temporaryPath() const { return m_temporaryPath; }

    /// Gives the file its name. It has to be closed, and on the disk.
    Error commit();

private:
    QString m_path;
    QString m_temporaryPath; // empty: nothing to remove
    QByteArray m_encodedTemporaryPath;
};

} // namespace zav
