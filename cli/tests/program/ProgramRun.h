// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <string>

namespace zav {

/// One run of a program to its end.
struct ProgramRun
{
    int exitCode = -1; ///< -1 when it crashed, did not start or did not end
    std::string standardOutput;
    std::string standardError;
};

/// Runs the program under test as a user would, from `folder` (the current one when empty).
ProgramRun runZav(const QStringList &arguments, const QByteArray &standardInput = {}, const QString &folder = {});

/// The same for a program at any path.
ProgramRun runProgramAt(const QString &program, const QStringList &arguments, const QByteArray &standardInput = {},
                        const QString &folder = {});

/// Reads and writes whole files, failing the test when that is impossible.
QByteArray readFile(const QString &path);
void writeFile(const QString &path, const QByteArray &bytes);

/// The lines of a text without their ends.
QStringList linesOf(const std::string &text);

} // namespace zav
