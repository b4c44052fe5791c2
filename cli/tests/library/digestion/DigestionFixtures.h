// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace zav {

/// The path of a file that the tests of the digestion come with.
inline QString digestionFile(const char *name)
{
    return QStringLiteral(ZAV_TEST_DATA_DIR "/digestion/") + QString::fromUtf8(name);
}

/// The rows of such a table below its header, in cells.
inline QList<QStringList> digestionTable(const char *name)
{
    QFile file(digestionFile(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QList<QStringList> rows;
    while (!file.atEnd())
        rows.append(QString::fromUtf8(file.readLine()).remove(QLatin1Char('\n')).split(QLatin1Char('\t')));
    EXPECT_GT(rows.size(), 1);
    return rows.mid(1);
}

inline QByteArray randomSequence(std::mt19937 &random, int length, std::string_view letters = "ACDEFGHIKLMNPQRSTVWY")
{
    QByteArray sequence;
    for (int i = 0; i < length; ++i)
        sequence.append(letters[random() % letters.size()]);
    return sequence;
}

} // namespace zav
