// SPDX-License-Identifier: Apache-2.0
#include "GraphOperations.h"

#include <QtCore/QByteArrayView>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace zav {

namespace {

/// A field of a message in protobuf's wire format (protobuf.dev, "Encoding").
struct Field
{
    quint64 number = 0;
    bool isBytes = false; ///< of those fields alone the content is kept
    QByteArrayView bytes;
};

/// Reads the fields of one message in turn.
class FieldReader
{
public:
    explicit FieldReader(QByteArrayView message) : m_rest(message) {}

    bool atEnd() const { return m_rest.isEmpty(); }

    /// The next field; nothing where the bytes are none.
    std::optional<Field> next()
    {
        const std::optional<quint64> key = varint();
        if (!key || *key >> 3U == 0)
            return {};
        Field field{*key >> 3U, (*key & 7U) == BYTES, {}};
        switch (*key & 7U) {
        case VARINT:
            return varint() ? std::optional(field) : std::nullopt;
        case EIGHT_BYTES:
            return take(8) ? std::optional(field) : std::nullopt;
        case FOUR_BYTES:
            return take(4) ? std::optional(field) : std::nullopt;
        case BYTES:
            break;
        default: // groups, which no graph has
            return {};
        }
        const std::optional<quint64> size = varint();
        const std::optional<QByteArrayView> bytes = size ? take(*size) : std::nullopt;
        if (!bytes)
            return {};
        field.bytes = *bytes;
        return field;
    }

private:
    enum WireType : quint64 { VARINT = 0, EIGHT_BYTES = 1, BYTES = 2, FOUR_BYTES = 5 };

    std::optional<quint64> varint()
    {
        quint64 value = 0;
        for (unsigned shift = 0; shift < 64 && !m_rest.isEmpty(); shift += 7) {
            const auto byte = static_cast<quint8>(m_rest.front());
            m_rest = m_rest.sliced(1);
            value |= quint64(byte & 0x7FU) << shift;
            if (byte < 0x80U)
                return value;
        }
        return {};
    }

    std::optional<QByteArrayView> take(quint64 size)
    {
        if (size > static_cast<quint64>(m_rest.size()))
            return {};
        const QByteArrayView taken = m_rest.first(static_cast<qsizetype>(size));
        m_rest = m_rest.sliced(taken.size());
        return taken;
    }

    QByteArrayView m_rest;
};

// Fields of GraphDef and NodeDef (tensorflow/core/framework/graph.proto, node_def.proto).
constexpr quint64 GRAPH_NODE = 1, GRAPH_LIBRARY = 2, NODE_OPERATION = 2;

Error noGraph()
{
    return Error(Failure, QStringLiteral("it is not a graph of TensorFlow"));
}

/// Appends the kind of a node; a node that names its kind twice counts with both.
Error readNode(QByteArrayView node, QList<QByteArray> *operations)
{
    for (FieldReader fields(node); !fields.atEnd();) {
        const std::optional<Field> field = fields.next();
        if (!field || (field->number == NODE_OPERATION && !field->isBytes))
            return noGraph();
        if (field->number == NODE_OPERATION)
            operations->append(field->bytes.toByteArray());
    }
    return {};
}

// Of the operations of TensorFlow 2 (tensorflow/core/ops), in the order of their names.
constexpr auto COMPUTING = std::to_array<std::string_view>({"Abs",
                                                            "Acos",
                                                            "Add",
                                                            "AddN",
                                                            "AddV2",
                                                            "All",
                                                            "Any",
                                                            "ArgMax",
                                                            "ArgMin",
                                                            "Asin",
                                                            "Atan",
                                                            "Atan2",
                                                            "AvgPool",
                                                            "BatchMatMul",
                                                            "BatchMatMulV2",
                                                            "BatchToSpaceND",
                                                            "BiasAdd",
                                                            "BroadcastTo",
                                                            "Cast",
                                                            "Ceil",
                                                            "ClipByValue",
                                                            "Concat",
                                                            "ConcatV2",
                                                            "Const",
                                                            "Conv1D",
                                                            "Conv2D",
                                                            "Conv2DBackpropInput",
                                                            "Conv3D",
                                                            "Cos",
                                                            "Cosh",
                                                            "Cumprod",
                                                            "Cumsum",
                                                            "DepthToSpace",
                                                            "DepthwiseConv2dNative",
                                                            "Div",
                                                            "DivNoNan",
                                                            "Einsum",
                                                            "Elu",
                                                            "Equal",
                                                            "Erf",
                                                            "Erfc",
                                                            "Exp",
                                                            "ExpandDims",
                                                            "Expm1",
                                                            "Fill",
                                                            "Floor",
                                                            "FloorDiv",
                                                            "FloorMod",
                                                            "FusedBatchNorm",
                                                            "FusedBatchNormV2",
                                                            "FusedBatchNormV3",
                                                            "Gather",
                                                            "GatherNd",
                                                            "GatherV2",
                                                            "Greater",
                                                            "GreaterEqual",
                                                            "Identity",
                                                            "IdentityN",
                                                            "Inv",
                                                            "InvertPermutation",
                                                            "IsFinite",
                                                            "IsInf",
                                                            "IsNan",
                                                            "L2Loss",
                                                            "LeakyRelu",
                                                            "Less",
                                                            "LessEqual",
                                                            "LinSpace",
                                                            "Log",
                                                            "Log1p",
                                                            "LogSoftmax",
                                                            "LogicalAnd",
                                                            "LogicalNot",
                                                            "LogicalOr",
                                                            "MatMul",
                                                            "MatrixBandPart",
                                                            "MatrixDiag",
                                                            "Max",
                                                            "MaxPool",
                                                            "Maximum",
                                                            "Mean",
                                                            "Min",
                                                            "Minimum",
                                                            "MirrorPad",
                                                            "Mod",
                                                            "Mul",
                                                            "MulNoNan",
                                                            "Neg",
                                                            "NoOp",
                                                            "NotEqual",
                                                            "OneHot",
                                                            "OnesLike",
                                                            "Pack",
                                                            "Pad",
                                                            "PadV2",
                                                            "Placeholder",
                                                            "PlaceholderWithDefault",
                                                            "Pow",
                                                            "PreventGradient",
                                                            "Prod",
                                                            "Range",
                                                            "Rank",
                                                            "RealDiv",
                                                            "Reciprocal",
                                                            "Relu",
                                                            "Relu6",
                                                            "Reshape",
                                                            "ResizeBilinear",
                                                            "ResizeNearestNeighbor",
                                                            "Reverse",
                                                            "ReverseSequence",
                                                            "ReverseV2",
                                                            "Rint",
                                                            "Roll",
                                                            "Round",
                                                            "Rsqrt",
                                                            "ScatterNd",
                                                            "Select",
                                                            "SelectV2",
                                                            "Selu",
                                                            "Shape",
                                                            "ShapeN",
                                                            "Sigmoid",
                                                            "Sign",
                                                            "Sin",
                                                            "Sinh",
                                                            "Size",
                                                            "Slice",
                                                            "Softmax",
                                                            "Softplus",
                                                            "Softsign",
                                                            "SpaceToBatchND",
                                                            "SpaceToDepth",
                                                            "Split",
                                                            "SplitV",
                                                            "Sqrt",
                                                            "Square",
                                                            "SquaredDifference",
                                                            "Squeeze",
                                                            "StopGradient",
                                                            "StridedSlice",
                                                            "Sub",
                                                            "Sum",
                                                            "Tan",
                                                            "Tanh",
                                                            "Tile",
                                                            "TopKV2",
                                                            "Transpose",
                                                            "Unpack",
                                                            "UnsortedSegmentMax",
                                                            "UnsortedSegmentMin",
                                                            "UnsortedSegmentSum",
                                                            "Where",
                                                            "Xlogy",
                                                            "ZerosLike"});
static_assert(std::is_sorted(COMPUTING.begin(), COMPUTING.end()));

} // namespace

Result<QList<QByteArray>> graphOperations(const QByteArray &graph)
{
    QList<QByteArray> operations;
    for (FieldReader fields(graph); !fields.atEnd();) {
        const std::optional<Field> field = fields.next();
        if (!field)
            return noGraph();
        if (field->number == GRAPH_LIBRARY && !field->bytes.isEmpty())
            return Error(Failure, QStringLiteral("it has functions of its own"));
        if (field->number != GRAPH_NODE)
            continue;
        if (Error error = field->isBytes ? readNode(field->bytes, &operations) : noGraph(); error.hasError())
            return error;
    }
    if (operations.isEmpty())
        return noGraph();
    std::sort(operations.begin(), operations.end());
    operations.erase(std::unique(operations.begin(), operations.end()), operations.end());
    return operations;
}

bool onlyComputes(const QByteArray &operation)
{
    return std::binary_search(COMPUTING.begin(), COMPUTING.end(),
                              std::string_view(operation.constData(), static_cast<size_t>(operation.size())));
}

} // namespace zav
