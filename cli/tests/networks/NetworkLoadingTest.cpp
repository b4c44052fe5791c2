// SPDX-License-Identifier: Apache-2.0
#include "NetworkLoading.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <new>

namespace zav {
namespace {

/// A folder that holds the networks of charge 1 and 2 and, for charge 3, a file that is no network.
class LoadedFolder : public testing::Test
{
protected:
    void SetUp() override
    {
        for (const char *name : {"msms_charge1.pb", "msms_charge1.json", "msms_charge2.pb", "msms_charge2.json"})
            ASSERT_TRUE(QFile::copy(QStringLiteral(ZAV_MODELS "/") + name, m_folder.filePath(name)));
        QFile broken(m_folder.filePath("msms_charge3.pb"));
        ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
        broken.write("no graph");
    }

    Error load(const QList<int> &charges, bool trusted = false)
    {
        m_failedCharge = 0;
        return loadFragmentationNetworks(ModelFolder(m_folder.path(), trusted), charges, &m_predictor, &m_failedCharge);
    }

    QTemporaryDir m_folder;
    MsMsFragmentationPredictomatic m_predictor;
    int m_failedCharge = 0;
};

TEST_F(LoadedFolder, OnlyTheChargesThatAreAskedForNeedAFile)
{
    const Error error = load({1, 2});
    EXPECT_FALSE(error.hasError()) << error.toString().toStdString();
    QList<QPointF> spectrum;
    EXPECT_FALSE(m_predictor.predictMsMsFragmentation(QStringLiteral("PEPTIDEK"), 2, &spectrum).hasError());
    EXPECT_FALSE(spectrum.isEmpty());
}

TEST_F(LoadedFolder, MissingFileFailsItsCharge)
{
    const Error error = load({2, 5});
    EXPECT_EQ(error.message(), QStringLiteral("no network for charge 5 in ") + m_folder.path());
    EXPECT_EQ(m_failedCharge, 5);
}

TEST_F(LoadedFolder, BrokenFileThatIsTrustedIsNamedAndFailsItsCharge)
{
    for (const QList<int> &charges : {QList<int>{3}, QList<int>{2, 3}}) {
        const Error error = load(charges, true);
        EXPECT_TRUE(error.message().startsWith("cannot load msms_charge3.pb: ")) << error.message().toStdString();
        EXPECT_FALSE(error.trail().isEmpty());
        EXPECT_EQ(m_failedCharge, 3);
    }
}

TEST_F(LoadedFolder, FileWithoutAContractIsNotLoadedUnlessItIsTrusted)
{
    ASSERT_TRUE(QFile::remove(m_folder.filePath("msms_charge2.json")));
    const Error error = load({1, 2});
    EXPECT_TRUE(error.message().startsWith("cannot load msms_charge2.pb: ")) << error.message().toStdString();
    EXPECT_TRUE(error.message().contains("msms_charge2.json"));
    EXPECT_EQ(m_failedCharge, 2);
    EXPECT_FALSE(load({1, 2}, true).hasError());
}

TEST(NetworkLoading, FailureWithoutAMessageIsANetworkThatCannotBeUsed)
{
    EXPECT_EQ(loadingError(Error(Failure), QStringLiteral("some/folder/xic_split.pb")).message(),
              QStringLiteral("cannot load xic_split.pb: not a usable network"));
}

TEST(NetworkLoading, PredictionThatFailsWithoutAMessageIsANetworkOfAnotherCharge)
{
    EXPECT_EQ(predictionError(Error(Failure), 4).message(),
              QStringLiteral("msms_charge4.pb is not a network for charge 4"));
    EXPECT_EQ(predictionError(Error(Failure, QStringLiteral("a reason")), 4).message(), QStringLiteral("a reason"));
    EXPECT_FALSE(predictionError(Error(), 4).hasError());
}

TEST(NetworkLoading, MemoryThatRanOutInAPredictorEndsTheRun)
{
    const Error outOfMemory(Failure, QStringLiteral("Out of memory"));
    EXPECT_THROW(throwIfOutOfMemory(outOfMemory), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(loadingError(outOfMemory, QStringLiteral("msms_charge1.pb"))), std::bad_alloc);
    EXPECT_THROW(static_cast<void>(predictionError(outOfMemory, 1)), std::bad_alloc);
    for (const Error &other : {Error(), Error(Failure), Error(Failure, QStringLiteral("no file")),
                               Error(InvalidInput, outOfMemory.message())})
        EXPECT_NO_THROW(throwIfOutOfMemory(other));
}

} // namespace
} // namespace zav
