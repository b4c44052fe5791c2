// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ReturnIfError.h"
#include "TfApi.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zav {

/// The TensorFlow element type of a C++ type. Only `float` has one: nothing else compiles.
template <typename T>
struct TensorElement;

template <>
struct TensorElement<float>
{
    static constexpr TF_DataType TYPE = TF_FLOAT;
};

/// One named operation output of a model's graph, with the data that goes in or comes out there.
///
/// `init` binds the tensor to a graph; then an input is filled with `setData`, `Model::run` consumes it and fills the
/// outputs, and `getData` reads those. A failed check of any of the three makes the tensor invalid: each later call
/// fails with "Tensor is not valid" until an `init` succeeds again. Failures are `Error(Failure)`, their text is a
/// critical message of the category "zav.ml".
///
/// The tensor refers into its graph: after the model is gone or initialised again, only `init` and destruction are
/// left. One thread at a time, together with its model.
class Tensor
{
public:
    Tensor();
    ~Tensor();

    Q_DISABLE_COPY_MOVE(Tensor)

    /// Binds the tensor to output 0 of the operation `operationName`; data held before is dropped. The declared shape
    /// of an operation of unknown rank, or of a scalar, leaves `getShape` as it was.
    ///
    /// Without the TensorFlow runtime the error carries the message of `TfApi::checkComplete`.
    Error init(TF_Graph *graph, TF_Status *status, const std::string &operationName);

    /// Fills the tensor with a copy of `values`, in row-major order of the declared shape; data held before is dropped
    /// first, even when this fails.
    ///
    /// The number of values must be a multiple of the product of the known dimensions, a product over zero elements
    /// never fits; each unknown dimension (-1) becomes the quotient. With one unknown dimension that is its size: 12
    /// values in [-1, 4] make [3, 4]. With none, surplus values are accepted and not looked at; with several, every
    /// one gets the same quotient, and the runtime refuses the data where it is too short.
    template <typename T>
    Error setData(std::vector<T> values);

    /// Replaces `values` by a copy of the data, in row-major order; may be repeated. On failure `values` stays.
    template <typename T>
    Error getData(std::vector<T> *values);

    /// Success if the condition holds. Otherwise drops the data, makes the tensor invalid, logs the message and returns
    /// a `Failure` without it.
    Error errorCheck(bool condition, const QString &message);

    /// The declared shape, -1 for an unknown dimension, empty where it is unknown or a scalar; after a run, the shape
    /// of the result.
    std::vector<std::int64_t> getShape() const { return shape; }

    /// Drops the data.
    void release();

    /// Takes the shape from the data. Only while there is some.
    void updateShape();

private:
    friend class Model;
    friend class TensorInspector; // the unit tests' view of the fields

    static constexpr char SOURCE_FILE[] = "ml/src/Tensor";

    std::ptrdiff_t unknownDimensionCount() const;
    bool fitsShape(std::size_t count) const;
    void setDataShape(std::size_t count);
    void fill(const void *values, std::size_t byteCount);
    void take(TF_Tensor *result);
    std::size_t elementCount() const;

    TF_Tensor *tensor = nullptr; ///< owned while `state` is 1
    TF_Output output;
    TF_DataType type = {};
    std::vector<std::int64_t> shape;
    std::unique_ptr<std::vector<std::int64_t>> dataShape; ///< of the last `setData`, without unknown dimensions
    void *data = nullptr;                                 ///< of the last `setData`; TensorFlow owns it
    int state = 0;                                        ///< -1: invalid; 0: holds no data; 1: holds `tensor`
    TfApi api;
};

template <typename T>
Error Tensor::setData(std::vector<T> values)
{
    release();
    ZAV_RETURN_IF_ERROR(errorCheck(state != -1, QStringLiteral("Tensor is not valid")), __LINE__);
    ZAV_RETURN_IF_ERROR(errorCheck(type == TensorElement<T>::TYPE,
                                   QStringLiteral("Provided type is different from Tensor expected type")),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(errorCheck(!shape.empty(), QStringLiteral("Shape of the input Tensor is not known, please "
                                                                  "provide a shape")),
                        __LINE__);
    // Never fails, for several unknown dimensions are accepted: each gets the same size.
    ZAV_RETURN_IF_ERROR(errorCheck(unknownDimensionCount() >= -1, QStringLiteral("At most one dimension can be "
                                                                                 "unknown, please provide a shape")),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(
        errorCheck(fitsShape(values.size()), QStringLiteral("Expected and provided number of elements do not match")),
        __LINE__);
    setDataShape(values.size());
    fill(values.data(), values.size() * sizeof(T));
    ZAV_RETURN_IF_ERROR(errorCheck(tensor != nullptr, QStringLiteral("An error occurred allocating the Tensor memory")),
                        __LINE__);
    state = 1;
    return {};
}

template <typename T>
Error Tensor::getData(std::vector<T> *values)
{
    ZAV_RETURN_IF_ERROR(errorCheck(state != -1, QStringLiteral("Tensor is not valid")), __LINE__);
    ZAV_RETURN_IF_ERROR(errorCheck(type == TensorElement<T>::TYPE,
                                   QStringLiteral("Expected return type is different from Tensor type")),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(errorCheck(state != 0, QStringLiteral("Tensor is empty")), __LINE__);
    const T *first = static_cast<const T *>(api.TF_TensorData(tensor));
    ZAV_RETURN_IF_ERROR(errorCheck(first != nullptr, QStringLiteral("Tensor data is empty")), __LINE__);
    values->assign(first, first + elementCount());
    return {};
}

} // namespace zav
