// SPDX-License-Identifier: Apache-2.0
#include "GraphDefBuilder.h"

#include <fstream>
#include <numeric>

namespace zav {

namespace {

// Field numbers of tensorflow/core/framework/{graph,node_def,attr_value,tensor_shape,tensor,versions}.proto.
namespace graphDef {
constexpr int NODE = 1;
constexpr int VERSIONS = 4;
} // namespace graphDef
namespace versionDef {
constexpr int PRODUCER = 1;
} // namespace versionDef
namespace nodeDef {
constexpr int NAME = 1;
constexpr int OPERATION = 2;
constexpr int INPUT = 3;
constexpr int ATTRIBUTE = 5;
} // namespace nodeDef
namespace mapEntry {
constexpr int KEY = 1;
constexpr int VALUE = 2;
} // namespace mapEntry
namespace attrValue {
constexpr int LIST = 1;
constexpr int TEXT = 2;
constexpr int INTEGER = 3;
constexpr int BOOL = 5;
constexpr int TYPE = 6;
constexpr int SHAPE = 7;
constexpr int TENSOR = 8;
} // namespace attrValue
namespace listValue {
constexpr int TYPE = 6;
} // namespace listValue
namespace shapeProto {
constexpr int DIMENSION = 2;
constexpr int UNKNOWN_RANK = 3;
constexpr int SIZE = 1; // of a dimension
} // namespace shapeProto
namespace tensorProto {
constexpr int TYPE = 1;
constexpr int SHAPE = 2;
constexpr int CONTENT = 4;
constexpr int TEXT = 8;
} // namespace tensorProto

// A version of the graph format from 2019, which TensorFlow 1.15 and later read.
constexpr int GRAPH_PRODUCER = 134;

ProtobufMessage shapeMessage(const std::optional<GraphDefBuilder::Shape> &shape)
{
    ProtobufMessage message;
    if (!shape)
        return message.integer(shapeProto::UNKNOWN_RANK, 1);
    for (const std::int64_t size : *shape)
        message.message(shapeProto::DIMENSION, ProtobufMessage().integer(shapeProto::SIZE, size));
    return message;
}

template <typename T>
std::string rawBytes(const std::vector<T> &values)
{
    return std::string(reinterpret_cast<const char *>(values.data()), values.size() * sizeof(T));
}

std::vector<std::int32_t> narrowed(const GraphDefBuilder::Shape &shape)
{
    return std::vector<std::int32_t>(shape.begin(), shape.end());
}

} // namespace

ProtobufMessage GraphDefBuilder::typeValue(Type type)
{
    return ProtobufMessage().integer(attrValue::TYPE, type);
}

ProtobufMessage GraphDefBuilder::typesValue(const std::vector<Type> &types)
{
    ProtobufMessage list;
    for (const Type type : types)
        list.integer(listValue::TYPE, type);
    return ProtobufMessage().message(attrValue::LIST, list);
}

ProtobufMessage GraphDefBuilder::shapeValue(const std::optional<Shape> &shape)
{
    return ProtobufMessage().message(attrValue::SHAPE, shapeMessage(shape));
}

ProtobufMessage GraphDefBuilder::integerValue(std::int64_t value)
{
    return ProtobufMessage().integer(attrValue::INTEGER, value);
}

ProtobufMessage GraphDefBuilder::boolValue(bool value)
{
    return ProtobufMessage().integer(attrValue::BOOL, value ? 1 : 0);
}

ProtobufMessage GraphDefBuilder::textValue(const std::string &value)
{
    return ProtobufMessage().bytes(attrValue::TEXT, value);
}

ProtobufMessage GraphDefBuilder::tensorValue(Type type, const Shape &shape, const std::string &content)
{
    ProtobufMessage tensor;
    tensor.integer(tensorProto::TYPE, type).message(tensorProto::SHAPE, shapeMessage(shape));
    tensor.bytes(tensorProto::CONTENT, content);
    return ProtobufMessage().message(attrValue::TENSOR, tensor);
}

GraphDefBuilder &GraphDefBuilder::node(const std::string &name, const std::string &operation,
                                       const std::vector<std::string> &inputs, const Attributes &attributes)
{
    ProtobufMessage message;
    message.bytes(nodeDef::NAME, name).bytes(nodeDef::OPERATION, operation);
    for (const std::string &input : inputs)
        message.bytes(nodeDef::INPUT, input);
    for (const auto &[key, value] : attributes)
        message.message(nodeDef::ATTRIBUTE,
                        ProtobufMessage().bytes(mapEntry::KEY, key).message(mapEntry::VALUE, value));
    m_graph.message(graphDef::NODE, message);
    return *this;
}

GraphDefBuilder &GraphDefBuilder::placeholder(const std::string &name, const std::optional<Shape> &shape, Type type)
{
    return node(name, "Placeholder", {}, {{"dtype", typeValue(type)}, {"shape", shapeValue(shape)}});
}

GraphDefBuilder &GraphDefBuilder::constant(const std::string &name, const Shape &shape,
                                           const std::vector<float> &values)
{
    return node(name, "Const", {},
                {{"dtype", typeValue(FLOAT)}, {"value", tensorValue(FLOAT, shape, rawBytes(values))}});
}

GraphDefBuilder &GraphDefBuilder::integerConstant(const std::string &name, const Shape &shape,
                                                  const std::vector<std::int32_t> &values)
{
    return node(name, "Const", {},
                {{"dtype", typeValue(INT32)}, {"value", tensorValue(INT32, shape, rawBytes(values))}});
}

GraphDefBuilder &GraphDefBuilder::textConstant(const std::string &name, const Shape &shape,
                                               const std::vector<std::string> &values)
{
    ProtobufMessage tensor;
    tensor.integer(tensorProto::TYPE, STRING).message(tensorProto::SHAPE, shapeMessage(shape));
    for (const std::string &value : values)
        tensor.bytes(tensorProto::TEXT, value);
    return node(name, "Const", {},
                {{"dtype", typeValue(STRING)}, {"value", ProtobufMessage().message(attrValue::TENSOR, tensor)}});
}

GraphDefBuilder &GraphDefBuilder::identity(const std::string &name, const std::string &input, Type type)
{
    return node(name, "Identity", {input}, {{"T", typeValue(type)}});
}

GraphDefBuilder &GraphDefBuilder::matMul(const std::string &name, const std::string &left, const std::string &right)
{
    return node(name, "MatMul", {left, right}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::add(const std::string &name, const std::string &left, const std::string &right)
{
    return node(name, "AddV2", {left, right}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::multiply(const std::string &name, const std::string &left, const std::string &right)
{
    return node(name, "Mul", {left, right}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::biasAdd(const std::string &name, const std::string &input, const std::string &bias)
{
    return node(name, "BiasAdd", {input, bias}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::sigmoid(const std::string &name, const std::string &input)
{
    return node(name, "Sigmoid", {input}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::reshape(const std::string &name, const std::string &input, const Shape &shape)
{
    integerConstant(name + "/shape", {static_cast<std::int64_t>(shape.size())}, narrowed(shape));
    return node(name, "Reshape", {input, name + "/shape"}, {{"T", typeValue(FLOAT)}, {"Tshape", typeValue(INT32)}});
}

GraphDefBuilder &GraphDefBuilder::slice(const std::string &name, const std::string &input, const Shape &begin,
                                        const Shape &size)
{
    const Shape rank{static_cast<std::int64_t>(begin.size())};
    integerConstant(name + "/begin", rank, narrowed(begin));
    integerConstant(name + "/size", rank, narrowed(size));
    return node(name, "Slice", {input, name + "/begin", name + "/size"},
                {{"T", typeValue(FLOAT)}, {"Index", typeValue(INT32)}});
}

GraphDefBuilder &GraphDefBuilder::cast(const std::string &name, const std::string &input, Type from, Type to)
{
    return node(name, "Cast", {input}, {{"SrcT", typeValue(from)}, {"DstT", typeValue(to)}});
}

GraphDefBuilder &GraphDefBuilder::shapeOf(const std::string &name, const std::string &input)
{
    return node(name, "Shape", {input}, {{"T", typeValue(FLOAT)}, {"out_type", typeValue(INT32)}});
}

GraphDefBuilder &GraphDefBuilder::fill(const std::string &name, const std::string &dimensions, const std::string &value)
{
    return node(name, "Fill", {dimensions, value}, {{"T", typeValue(FLOAT)}, {"index_type", typeValue(INT32)}});
}

GraphDefBuilder &GraphDefBuilder::noOp(const std::string &name, const std::vector<std::string> &controlInputs)
{
    return node(name, "NoOp", controlInputs, {});
}

GraphDefBuilder &GraphDefBuilder::variable(const std::string &name, const Shape &shape, const std::string &initialValue)
{
    node(name, "VariableV2", {}, {{"dtype", typeValue(FLOAT)}, {"shape", shapeValue(shape)}});
    return assign(name + "/Assign", name, initialValue);
}

GraphDefBuilder &GraphDefBuilder::assign(const std::string &name, const std::string &variable, const std::string &value)
{
    return node(name, "Assign", {variable, value}, {{"T", typeValue(FLOAT)}});
}

GraphDefBuilder &GraphDefBuilder::saver(const std::vector<std::string> &variables)
{
    const Shape shape{static_cast<std::int64_t>(variables.size())};
    const std::vector<Type> types(variables.size(), FLOAT);
    textConstant("save/Const", {}, {"model"});
    textConstant("save/tensor_names", shape, variables);
    textConstant("save/shape_and_slices", shape, std::vector<std::string>(variables.size()));
    const std::vector<std::string> restoreInputs{"save/Const", "save/tensor_names", "save/shape_and_slices"};

    std::vector<std::string> saveInputs = restoreInputs;
    saveInputs.insert(saveInputs.end(), variables.begin(), variables.end());
    node("save/SaveV2", "SaveV2", saveInputs, {{"dtypes", typesValue(types)}});
    node("save/control_dependency", "Identity", {"save/Const", "^save/SaveV2"}, {{"T", typeValue(STRING)}});
    node("save/RestoreV2", "RestoreV2", restoreInputs, {{"dtypes", typesValue(types)}});

    std::vector<std::string> assignments;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        const std::string assignment = "save/Assign_" + std::to_string(i);
        assign(assignment, variables[i], "save/RestoreV2:" + std::to_string(i));
        assignments.push_back("^" + assignment);
    }
    return noOp("save/restore_all", assignments);
}

std::string GraphDefBuilder::serialised() const
{
    const ProtobufMessage versions = ProtobufMessage().integer(versionDef::PRODUCER, GRAPH_PRODUCER);
    return m_graph.serialised() + ProtobufMessage().message(graphDef::VERSIONS, versions).serialised();
}

bool GraphDefBuilder::write(const std::string &path) const
{
    const std::string bytes = serialised();
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(file.flush());
}

} // namespace zav
