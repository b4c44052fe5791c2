// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ProgramRun.h"
#include "TemporaryFiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

namespace zav {

/// Random proteins, the same ones everywhere: of all 20 residues, cut about every tenth.
QByteArray randomProteins(int count, int length);

/// A folder in which the tests run `zav library`.
class LibraryRun : public testing::Test
{
protected:
    /// Runs `zav library` with the arguments in the folder, where it has to end with `exitCode`.
    ProgramRun run(const QStringList &arguments, int exitCode = 0) const;

    /// The bytes that a run with these arguments and `-o name` makes.
    QByteArray library(const QString &name, const QStringList &arguments) const;

    /// The values of a column of a TSV library, row by row.
    QStringList everyCell(const QString &name, const QString &title) const;

    /// The distinct ones among them, in their order.
    QStringList column(const QString &name, const QString &title) const;

    /// Every file in the folder.
    QStringList fileNames() const;

    TemporaryFiles m_files;
};

} // namespace zav
