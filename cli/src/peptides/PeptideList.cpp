// SPDX-License-Identifier: Apache-2.0
#include "PeptideList.h"

#include "PrintableText.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

#include <cstdio>

namespace zav {

namespace {

struct Columns
{
    int peptide = 0;
    int charge = 1;
};

QStringList splitRow(const QString &line)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QStringList cells = line.contains(QLatin1Char('\t')) ? line.split(QLatin1Char('\t')) : line.trimmed().split(blanks);
    for (QString &cell : cells)
        cell = cell.trimmed();
    return cells;
}

bool readHeader(const QStringList &cells, Columns *columns)
{
    Columns found{-1, -1};
    for (int i = 0; i < cells.size(); ++i) {
        const QString name = cells[i].toLower();
        if (found.peptide < 0 && (name == QLatin1String("peptide") || name == QLatin1String("sequence")))
            found.peptide = i;
        if (found.charge < 0 && name == QLatin1String("charge"))
            found.charge = i;
    }
    if (found.peptide < 0 || found.charge < 0)
        return false;
    *columns = found;
    return true;
}

PeptideListRow readRow(const QStringList &cells, const Columns &columns, int line)
{
    PeptideListRow row;
    row.line = line;
    row.precursor.peptide = cells.value(columns.peptide);
    const QString charge = cells.value(columns.charge);
    bool isNumber = false;
    row.precursor.charge = charge.toInt(&isNumber);
    if (charge.isEmpty())
        row.problem = QStringLiteral("the charge is missing");
    else if (!isNumber)
        row.problem = QStringLiteral("charge '%1' is not a whole number").arg(displayText(charge, 20));
    return row;
}

} // namespace

Result<QList<PeptideListRow>> readPeptideList(QIODevice &input)
{
    QList<PeptideListRow> rows;
    Columns columns;
    bool headerIsPossible = true;
    for (int number = 1;; ++number) {
        const QByteArray bytes = input.readLine();
        if (bytes.isEmpty())
            break;
        QString line = QString::fromUtf8(bytes);
        if (number == 1 && line.startsWith(QChar::ByteOrderMark))
            line.remove(0, 1);
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QStringList cells = splitRow(line);
        if (!(headerIsPossible && readHeader(cells, &columns)))
            rows.append(readRow(cells, columns, number));
        headerIsPossible = false;
    }
    return rows;
}

Result<QList<PeptideListRow>> readPeptideList(const QString &path)
{
    const bool isStandardInput = path == QLatin1String("-");
    QFile file(path);
    const bool isOpen = isStandardInput ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        return Error(Failure, QStringLiteral("cannot read %1: %2").arg(displayText(path, 300), file.errorString()));
    Result<QList<PeptideListRow>> rows = readPeptideList(file);
    if (file.error() != QFileDevice::NoError)
        return Error(Failure, QStringLiteral("cannot read %1: %2").arg(displayText(path, 300), file.errorString()));
    return rows;
}

} // namespace zav
