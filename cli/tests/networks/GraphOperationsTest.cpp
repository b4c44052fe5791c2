// SPDX-License-Identifier: Apache-2.0
#include "GraphOperations.h"

#include "GraphDefBuilder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <string>

namespace zav {
namespace {

QByteArray bytesOf(const std::string &message)
{
    return QByteArray::fromStdString(message);
}

QString problemOf(const QByteArray &graph)
{
    const Result<QList<QByteArray>> operations = graphOperations(graph);
    return operations.hasError() ? operations.error().message() : QString();
}

TEST(GraphOperations, AreSortedAndEachOnce)
{
    GraphDefBuilder graph;
    graph.placeholder("x", {{-1, 2}});
    graph.constant("w", {2, 1}, {3, 4});
    graph.constant("v", {1, 1}, {5});
    graph.matMul("y", "x", "w");
    graph.noOp("init");
    const Result<QList<QByteArray>> operations = graphOperations(bytesOf(graph.serialised()));
    ASSERT_FALSE(operations.hasError());
    EXPECT_EQ(operations.value(), QList<QByteArray>({"Const", "MatMul", "NoOp", "Placeholder"}));
}

TEST(GraphOperations, ShippedNetworksOnlyCompute)
{
    const QDir models(QStringLiteral(ZAV_MODELS));
    const QStringList graphs = models.entryList({"*.pb"});
    ASSERT_EQ(graphs.size(), 9);
    for (const QString &graph : graphs) {
        QFile file(models.filePath(graph));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const Result<QList<QByteArray>> operations = graphOperations(file.readAll());
        ASSERT_FALSE(operations.hasError()) << graph.toStdString();
        for (const QByteArray &operation : operations.value())
            EXPECT_TRUE(onlyComputes(operation)) << operation.toStdString();
    }
}

TEST(GraphOperations, FilesNetworksVariablesAndCodeDoMoreThanCompute)
{
    for (const char *operation :
         {"ReadFile",        "WriteFile",  "MatchingFiles", "SaveV2",    "RestoreV2", "PrintV2", "PyFunc",
          "EagerPyFunc",     "VariableV2", "VarHandleOp",   "Assign",    "_Send",     "_Recv",   "LoadLibrary",
          "PartitionedCall", "RemoteCall", "XlaLaunch",     "DecodeRaw", "Add ",      "add",     ""})
        EXPECT_FALSE(onlyComputes(operation)) << operation;
    EXPECT_TRUE(onlyComputes("Add"));
    EXPECT_TRUE(onlyComputes("ZerosLike"));
}

TEST(GraphOperations, OperationNamedTwiceInOneNodeCountsWithBothNames)
{
    const ProtobufMessage node =
        ProtobufMessage().bytes(1, "x").bytes(2, "ReadFile").bytes(2, "NoOp"); // TensorFlow takes the last one
    const Result<QList<QByteArray>> operations =
        graphOperations(bytesOf(ProtobufMessage().message(1, node).serialised()));
    ASSERT_FALSE(operations.hasError());
    EXPECT_EQ(operations.value(), QList<QByteArray>({"NoOp", "ReadFile"}));
}

TEST(GraphOperations, GraphWithFunctionsOfItsOwnIsRefused)
{
    GraphDefBuilder graph;
    graph.noOp("init");
    const ProtobufMessage library = ProtobufMessage().message(1, ProtobufMessage().bytes(1, "f"));
    EXPECT_EQ(problemOf(bytesOf(graph.serialised() + ProtobufMessage().message(2, library).serialised())),
              "it has functions of its own");
    EXPECT_EQ(problemOf(bytesOf(graph.serialised() + ProtobufMessage().bytes(2, "").serialised())), "");
}

TEST(GraphOperations, BytesThatAreNoGraphAreRefused)
{
    const QString problem = QStringLiteral("it is not a graph of TensorFlow");
    EXPECT_EQ(problemOf({}), problem);
    EXPECT_EQ(problemOf("no graph"), problem);
    EXPECT_EQ(problemOf(QByteArray(11, '\xFF')), problem); // a number that does not end
    EXPECT_EQ(problemOf(QByteArray("\x0A\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F", 10)), problem); // longer than the file
    EXPECT_EQ(problemOf(QByteArray("\x0B\x0C", 2)), problem);                                  // a group
    EXPECT_EQ(problemOf(QByteArray("\x08\x01", 2)), problem);         // a node that is a number
    EXPECT_EQ(problemOf(QByteArray("\x0A\x02\x10\x01", 4)), problem); // an operation that is one
}

TEST(GraphOperations, GraphCutAnywhereInsideItsNodeIsRefused)
{
    const ProtobufMessage node = ProtobufMessage().bytes(1, "x").bytes(2, "Placeholder").bytes(4, "/device:CPU:0");
    const QByteArray whole = bytesOf(ProtobufMessage().message(1, node).serialised());
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(graphOperations(whole.first(size)).hasError()) << size;
    EXPECT_FALSE(graphOperations(whole).hasError());
}

} // namespace
} // namespace zav
