// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

namespace zav {

/// Files that live as long as the test's fixture, under the names that the test chose.
class TemporaryFiles
{
public:
    QString path(const QString &name) const { return m_folder.filePath(name); }

    std::string withoutFolder(QString message) const
    {
        return message.remove(m_folder.path() + QLatin1Char('/')).remove(m_folder.path()).toStdString();
    }

    QString write(const QString &name, const QByteArray &content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path(name);
    }

    QByteArray read(const QString &name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

private:
    QTemporaryDir m_folder;
};

} // namespace zav
