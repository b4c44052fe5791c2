// SPDX-License-Identifier: Apache-2.0
#include "Tensor.h"

#include "LcMl.h"

#include <QtCore/QLibrary>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

namespace zav {

namespace {

constexpr std::int64_t UNKNOWN_DIMENSION = -1;

// TensorFlow copies a buffer that its vector units cannot read in place: 64 bytes suit every one of them.
constexpr std::align_val_t BUFFER_ALIGNMENT{64};

void *newBuffer(const void *values, std::size_t byteCount)
{
    void *buffer = ::operator new(byteCount, BUFFER_ALIGNMENT, std::nothrow);
    if (buffer != nullptr && byteCount != 0)
        std::memcpy(buffer, values, byteCount);
    return buffer;
}

void freeBuffer(void *buffer, std::size_t /*byteCount*/, void * /*argument*/)
{
    ::operator delete(buffer, BUFFER_ALIGNMENT);
}

/// The magnitude of the product of the dimensions, in 32 bits with wrap-around; an unknown one counts as -1. Not
/// positive where it is a multiple of 2^31, or zero.
std::int32_t knownElementCount(const std::vector<std::int64_t> &shape)
{
    std::uint32_t product = 1;
    for (const std::int64_t dimension : shape)
        product *= static_cast<std::uint32_t>(dimension);
    return static_cast<std::int32_t>(static_cast<std::int32_t>(product) < 0 ? 0U - product : product);
}

/// Whether the number of bytes is an int64. TensorFlow ends the process over a shape whose elements are not, and takes
/// too short a buffer for one whose bytes wrap around.
bool isCountable(const std::vector<std::int64_t> &dimensions, std::size_t elementSize)
{
    const std::int64_t limit = std::numeric_limits<std::int64_t>::max() / static_cast<std::int64_t>(elementSize);
    std::int64_t count = 1;
    for (const std::int64_t dimension : dimensions) {
        if (dimension < 0 || (dimension > 0 && count > limit / dimension))
            return false;
        count *= dimension;
    }
    return true;
}

/// TensorFlow does not check that the operation has the output it is asked about. The function that tells is no part of
/// the table; a runtime that lacks it is trusted.
bool hasOutput(TF_Operation *operation)
{
    using OutputCount = int (*)(TF_Operation *);
    const auto outputCount =
        reinterpret_cast<OutputCount>(QLibrary::resolve(TfApi::runtimeFileName(), "TF_OperationNumOutputs"));
    return outputCount == nullptr || outputCount(operation) > 0;
}

} // namespace

Tensor::Tensor() = default;

Tensor::~Tensor()
{
    release();
}

Error Tensor::init(TF_Graph *graph, TF_Status *status, const std::string &operationName)
{
    release();
    state = -1;
    api.load();
    ZAV_RETURN_IF_ERROR(api.checkComplete(), __LINE__);

    output.oper = graph != nullptr ? api.TF_GraphOperationByName(graph, operationName.c_str()) : nullptr;
    output.index = 0;
    const QString name = QString::fromStdString(operationName);
    ZAV_RETURN_IF_ERROR(errorCheck(output.oper != nullptr, QStringLiteral("No operation named %1 exists").arg(name)),
                        __LINE__);
    ZAV_RETURN_IF_ERROR(
        errorCheck(hasOutput(output.oper), QStringLiteral("Operation named %1 has no output").arg(name)), __LINE__);

    const int dimensionCount = api.TF_GraphGetTensorNumDims(graph, output, status);
    type = api.TF_OperationOutputType(output);
    if (dimensionCount > 0) {
        std::vector<std::int64_t> dimensions(dimensionCount);
        api.TF_GraphGetTensorShape(graph, output, dimensions.data(), dimensionCount, status);
        shape = std::move(dimensions);
    }
    state = 0;
    tensor = nullptr;
    data = nullptr;
    return {};
}

Error Tensor::errorCheck(bool condition, const QString &message)
{
    if (condition)
        return NoError;
    release(); // what an invalid tensor holds is never freed
    state = -1;
    qCCritical(lcMl).noquote() << message;
    return Error(Failure).ecatch(Q_FUNC_INFO, SOURCE_FILE, __LINE__);
}

void Tensor::release()
{
    if (state == 1) {
        api.TF_DeleteTensor(tensor);
        state = 0;
    }
    data = nullptr;
}

void Tensor::updateShape()
{
    const int dimensionCount = api.TF_NumDims(tensor);
    if (dimensionCount <= 0)
        return;
    shape.resize(dimensionCount);
    for (int i = 0; i < dimensionCount; ++i)
        shape[i] = api.TF_Dim(tensor, i);
}

std::ptrdiff_t Tensor::unknownDimensionCount() const
{
    return std::count(shape.begin(), shape.end(), UNKNOWN_DIMENSION);
}

bool Tensor::fitsShape(std::size_t count) const
{
    const std::int32_t expected = knownElementCount(shape);
    return expected > 0 && count % static_cast<std::uint64_t>(expected) == 0;
}

void Tensor::setDataShape(std::size_t count)
{
    const std::int64_t size = static_cast<std::int64_t>(count) / knownElementCount(shape);
    dataShape = std::make_unique<std::vector<std::int64_t>>(shape);
    std::replace(dataShape->begin(), dataShape->end(), UNKNOWN_DIMENSION, size);
}

void Tensor::fill(const void *values, std::size_t byteCount)
{
    data = isCountable(*dataShape, api.TF_DataTypeSize(type)) ? newBuffer(values, byteCount) : nullptr;
    // TensorFlow owns the buffer from here on: where it refuses the data, it has called the deallocator.
    tensor = data == nullptr ? nullptr
                             : api.TF_NewTensor(type, dataShape->data(), static_cast<int>(dataShape->size()), data,
                                                byteCount, freeBuffer, nullptr);
}

void Tensor::take(TF_Tensor *result)
{
    release();
    tensor = result;
    state = 1;
    updateShape();
}

std::size_t Tensor::elementCount() const
{
    return api.TF_TensorByteSize(tensor) / api.TF_DataTypeSize(api.TF_TensorType(tensor));
}

} // namespace zav
