// SPDX-License-Identifier: Apache-2.0
#include "LibraryRun.h"

#include <QtCore/QDir>

#include <random>

namespace zav {

QByteArray randomProteins(int count, int length)
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    std::mt19937 generator(11);
    QByteArray fasta;
    for (int protein = 1; protein <= count; ++protein) {
        const QByteArray number = QByteArray::number(protein);
        fasta += ">sp|P" + number + "|NAME" + number + "_TEST Protein OS=Test GN=GENE" + number + " PE=1 SV=1\nM";
        for (int i = 0; i < length; ++i)
            fasta += RESIDUES[generator() % 20];
        fasta += '\n';
    }
    return fasta;
}

ProgramRun LibraryRun::run(const QStringList &arguments, int exitCode) const
{
    ProgramRun result = runZav(QStringList{"library"} + arguments, {}, m_files.path(QString()));
    EXPECT_EQ(result.exitCode, exitCode) << arguments.join(QLatin1Char(' ')).toStdString() << '\n'
                                         << result.standardError;
    return result;
}

QByteArray LibraryRun::library(const QString &name, const QStringList &arguments) const
{
    run(arguments + QStringList{"-o", name});
    return m_files.read(name);
}

QStringList LibraryRun::everyCell(const QString &name, const QString &title) const
{
    QStringList values;
    const QStringList lines = linesOf(m_files.read(name).toStdString());
    const qsizetype column = lines.value(0).split(QLatin1Char('\t')).indexOf(title);
    EXPECT_GE(column, 0) << title.toStdString();
    for (const QString &line : lines.mid(1))
        values.append(line.split(QLatin1Char('\t')).value(column));
    return values;
}

QStringList LibraryRun::column(const QString &name, const QString &title) const
{
    QStringList values = everyCell(name, title);
    values.removeDuplicates();
    return values;
}

QStringList LibraryRun::fileNames() const
{
    return QDir(m_files.path(QString())).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace zav
