// SPDX-License-Identifier: Apache-2.0
//
// Door: the graph of a network, whose operations are read before TensorFlow sees it.
// Promises: operations, sorted and each once, or a message; a written graph has the operations that were written; two
// graphs one after the other, which protobuf takes for one, have the operations of both.
#include "FuzzSupport.h"
#include "GraphOperations.h"

#include <algorithm>

namespace zav::fuzz {
namespace {

/// A field of bytes of a message in protobuf's wire format.
QByteArray fieldOf(int number, const QByteArray &bytes)
{
    QByteArray field(1, static_cast<char>(number << 3 | 2));
    for (qsizetype size = bytes.size();; size >>= 7) {
        field += static_cast<char>(size < 0x80 ? size : (size & 0x7F) | 0x80);
        if (size < 0x80)
            return field + bytes;
    }
}

QByteArray graphOf(const QList<QByteArray> &operations)
{
    QByteArray graph;
    for (const QByteArray &operation : operations)
        graph += fieldOf(1, fieldOf(1, "node") + fieldOf(2, operation));
    return graph;
}

QList<QByteArray> eachOnce(QList<QByteArray> operations)
{
    std::sort(operations.begin(), operations.end());
    operations.erase(std::unique(operations.begin(), operations.end()), operations.end());
    return operations;
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QList<QByteArray> words = input.split('\n');
    const QByteArray written = graphOf(words);
    require(graphOperations(written).value() == eachOnce(words), "what is written is read");

    const Result<QList<QByteArray>> read = graphOperations(input);
    require(read.hasError() == !read.error().message().isEmpty(), "operations or a message");
    for (const QByteArray &joined : {written + input, input + written}) {
        const Result<QList<QByteArray>> both = graphOperations(joined);
        if (!read.hasError())
            require(!both.hasError() && both.value() == eachOnce(read.value() + words),
                    "a second graph adds its operations");
    }
    if (read.hasError())
        return;
    require(read.value() == eachOnce(read.value()), "sorted, each once");
}

} // namespace zav::fuzz
