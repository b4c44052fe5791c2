// SPDX-License-Identifier: Apache-2.0
#include "RuntimeFile.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace zav {
namespace {

#ifdef Q_OS_LINUX

class RuntimeFile : public testing::Test
{
protected:
    /// This program, which is an ELF file as a library is.
    void SetUp() override
    {
        QFile self(QStringLiteral("/proc/self/exe"));
        ASSERT_TRUE(self.open(QIODevice::ReadOnly));
        m_whole = self.readAll();
    }

    QString put(const char *name, const QByteArray &bytes) const
    {
        QFile file(m_folder.filePath(QString::fromUtf8(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(bytes), bytes.size());
        return file.fileName();
    }

    QTemporaryDir m_folder;
    QByteArray m_whole;
};

TEST_F(RuntimeFile, WholeOneIsFine)
{
    EXPECT_EQ(problemOfRuntimeFile(put("libtensorflow.so.2", m_whole)), QString());
}

TEST_F(RuntimeFile, OneThatIsCutShortIsNamed)
{
    for (const qsizetype size : {100, 1000, 10000})
        EXPECT_EQ(problemOfRuntimeFile(put("libtensorflow.so.2", m_whole.first(size))),
                  QStringLiteral("libtensorflow.so.2 is cut short"))
            << size;
}

TEST_F(RuntimeFile, PartBesideItThatIsCutShortIsNamed)
{
    const QString runtime = put("libtensorflow.so.2", m_whole);
    put("libtensorflow_framework.so.2", m_whole.first(1000));
    EXPECT_EQ(problemOfRuntimeFile(runtime), QStringLiteral("libtensorflow_framework.so.2 is cut short"));
}

TEST_F(RuntimeFile, WhatTheLoaderRefusesByItselfIsLeftToIt)
{
    EXPECT_EQ(problemOfRuntimeFile(put("a", "no library")), QString());
    EXPECT_EQ(problemOfRuntimeFile(put("b", m_whole.first(20))), QString());
    EXPECT_EQ(problemOfRuntimeFile(m_folder.filePath(QStringLiteral("none"))), QString());
}

#endif

} // namespace
} // namespace zav
