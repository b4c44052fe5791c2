// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ProtobufMessage.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zav {

/// Writes small TensorFlow graphs for the tests, without TensorFlow: every network that a test runs is built from the
/// known answer, and no binary file is committed.
///
///     GraphDefBuilder graph;
///     graph.placeholder("x", {{-1, 2}});
///     graph.constant("w", {2, 1}, {3.0F, 4.0F});
///     graph.matMul("y", "x", "w");
///     graph.noOp("init");
///     graph.write("model.pb");
///
/// An input is the name of an operation (its output 0), "name:1" for another output, "^name" for a control input.
/// Operations may be added in any order. Nothing is checked here: TensorFlow refuses what is wrong.
class GraphDefBuilder
{
public:
    using Shape = std::vector<std::int64_t>; ///< -1: an unknown dimension; empty: a scalar

    /// TensorFlow's element types, by their published numbers.
    enum Type : int { FLOAT = 1, DOUBLE = 2, INT32 = 3, STRING = 7, INT64 = 9, BOOL = 10 };

    /// The attribute values of an operation.
    static ProtobufMessage typeValue(Type type);
    static ProtobufMessage typesValue(const std::vector<Type> &types);
    static ProtobufMessage shapeValue(const std::optional<Shape> &shape);
    static ProtobufMessage integerValue(std::int64_t value);
    static ProtobufMessage boolValue(bool value);
    static ProtobufMessage textValue(const std::string &value);
    static ProtobufMessage tensorValue(Type type, const Shape &shape, const std::string &content);

    using Attributes = std::vector<std::pair<std::string, ProtobufMessage>>;

    /// Any operation.
    GraphDefBuilder &node(const std::string &name, const std::string &operation, const std::vector<std::string> &inputs,
                          const Attributes &attributes = {});

    /// An input of the network; no shape: of unknown rank.
    GraphDefBuilder &placeholder(const std::string &name, const std::optional<Shape> &shape, Type type = FLOAT);

    /// Constants, the values in row-major order.
    GraphDefBuilder &constant(const std::string &name, const Shape &shape, const std::vector<float> &values);
    GraphDefBuilder &integerConstant(const std::string &name, const Shape &shape,
                                     const std::vector<std::int32_t> &values);
    GraphDefBuilder &textConstant(const std::string &name, const Shape &shape, const std::vector<std::string> &values);

    // On FLOAT, inputs by name.
    GraphDefBuilder &identity(const std::string &name, const std::string &input, Type type = FLOAT);
    GraphDefBuilder &matMul(const std::string &name, const std::string &left, const std::string &right);
    GraphDefBuilder &add(const std::string &name, const std::string &left, const std::string &right);
    GraphDefBuilder &multiply(const std::string &name, const std::string &left, const std::string &right);
    GraphDefBuilder &biasAdd(const std::string &name, const std::string &input, const std::string &bias);
    GraphDefBuilder &sigmoid(const std::string &name, const std::string &input);

    /// To the shape, of which one dimension may be -1.
    GraphDefBuilder &reshape(const std::string &name, const std::string &input, const Shape &shape);

    /// From `begin`, `size` elements in each dimension, -1 for all that are left.
    GraphDefBuilder &slice(const std::string &name, const std::string &input, const Shape &begin, const Shape &size);

    GraphDefBuilder &cast(const std::string &name, const std::string &input, Type from, Type to);

    /// The shape of a FLOAT input, as INT32.
    GraphDefBuilder &shapeOf(const std::string &name, const std::string &input);

    /// A tensor of the shape that the INT32 vector `dimensions` gives, every element equal to the scalar `value`.
    GraphDefBuilder &fill(const std::string &name, const std::string &dimensions, const std::string &value);

    /// Does nothing, after its control inputs ("^name").
    GraphDefBuilder &noOp(const std::string &name, const std::vector<std::string> &controlInputs = {});

    /// A FLOAT variable, `<name>`, and `<name>/Assign`, which gives it the value of `initialValue`. Read it through
    /// `identity`, and run the assignment before (from "init").
    GraphDefBuilder &variable(const std::string &name, const Shape &shape, const std::string &initialValue);
    GraphDefBuilder &assign(const std::string &name, const std::string &variable, const std::string &value);

    /// The saver of those variables: "save/Const", "save/control_dependency" and "save/restore_all".
    GraphDefBuilder &saver(const std::vector<std::string> &variables);

    /// The graph as a serialised GraphDef.
    std::string serialised() const;

    /// Writes it to a file; false if that fails.
    bool write(const std::string &path) const;

private:
    ProtobufMessage m_graph;
};

} // namespace zav
