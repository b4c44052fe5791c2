// SPDX-License-Identifier: Apache-2.0
#include "NetworkCheck.h"

#include "GraphDefBuilder.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace zav {
namespace {

const QString HINT = QStringLiteral(" (--trust-networks loads it all the same)");

class CheckedNetwork : public testing::Test
{
protected:
    QString path(const char *name) const { return m_folder.filePath(name); }

    void write(const char *name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    /// The graph, and a contract with its true SHA-256.
    void writeNetwork(const GraphDefBuilder &graph) const
    {
        const QByteArray bytes = QByteArray::fromStdString(graph.serialised());
        write("n.pb", bytes);
        const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
        write("n.json", "{\"kind\": \"xic_split\", \"sha256\": \"" + hash + "\"}");
    }

    QString problem() const { return checkNetwork(path("n.pb")).message(); }

    QTemporaryDir m_folder;
    GraphDefBuilder m_graph;
};

TEST_F(CheckedNetwork, GraphOfItsContractThatComputesPasses)
{
    m_graph.placeholder("x", {{-1}}).noOp("init");
    writeNetwork(m_graph);
    EXPECT_FALSE(checkNetwork(path("n.pb")).hasError()) << problem().toStdString();
}

TEST_F(CheckedNetwork, OperationsThatDoMoreAreNamed)
{
    m_graph.textConstant("name", {}, {"/etc/passwd"}).node("content", "ReadFile", {"name"}).noOp("init");
    writeNetwork(m_graph);
    EXPECT_EQ(problem(), "cannot load n.pb: it may do more than compute: ReadFile" + HINT);
}

TEST_F(CheckedNetwork, GraphOtherThanThatOfItsContractIsRefused)
{
    m_graph.noOp("init");
    writeNetwork(m_graph);
    m_graph.noOp("more");
    write("n.pb", QByteArray::fromStdString(m_graph.serialised()));
    EXPECT_EQ(problem(), "cannot load n.pb: the SHA-256 differs from the contract's" + HINT);
}

TEST_F(CheckedNetwork, ContractWithoutEndIsNotReadToItsEnd)
{
    m_graph.noOp("init");
    writeNetwork(m_graph);
    write("n.json", QByteArray(2 << 20, ' ') + "{\"kind\": \"xic_split\"}");
    EXPECT_EQ(problem(), "cannot load n.pb: " + path("n.json") + " is not the contract of a network" + HINT);
}

TEST_F(CheckedNetwork, NumbersOfAContractThatNoIntHoldsCountForNothing)
{
    write("n.json", "{\"kind\": \"msms\", \"charge\": 4294967298, \"maxPointCount\": -9223372036854775808,"
                    " \"inputShape\": [18446744073709551615, -1, 21]}");
    const NetworkContract contract = readNetworkContract(path("n.json")).value();
    EXPECT_EQ(contract.charge, 0);
    EXPECT_EQ(contract.maxPointCount, 0);
    EXPECT_EQ(contract.inputShape, (QList<int>{0, -1, 21}));
}

TEST_F(CheckedNetwork, ContractThatIsMissingOrSaysNothingIsRefused)
{
    m_graph.noOp("init");
    writeNetwork(m_graph);
    write("n.json", "{\"kind\": \"xic_split\"}");
    EXPECT_EQ(problem(), "cannot load n.pb: the contract names no SHA-256" + HINT);
    ASSERT_TRUE(QFile::remove(path("n.json")));
    EXPECT_EQ(problem(), "cannot load n.pb: cannot read " + path("n.json") + ": No such file or directory" + HINT);
}

} // namespace
} // namespace zav
