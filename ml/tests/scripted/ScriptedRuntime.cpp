// SPDX-License-Identifier: Apache-2.0
#include "ScriptedRuntime.h"

#include "TfTypes.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace zav {

struct TF_Operation
{
    ScriptedOperation script;
};

struct TF_Graph
{
    std::vector<std::unique_ptr<TF_Operation>> operations;
};

struct TF_Status
{
    int code = 0;
};

struct TF_Buffer
{
    std::string bytes;
};

struct TF_Session
{};

struct TF_SessionOptions
{};

struct TF_ImportGraphDefOptions
{};

struct TF_Tensor
{
    using Deallocator = void (*)(void *data, std::size_t byteCount, void *argument);

    TF_DataType type = TF_FLOAT;
    std::vector<std::int64_t> dimensions;
    void *data = nullptr;
    std::size_t byteCount = 0;
    Deallocator deallocator = nullptr;
    void *argument = nullptr;

    ~TF_Tensor() { deallocator(data, byteCount, argument); }
};

namespace {

ScriptedRuntime atStart()
{
    ScriptedRuntime state;
#if defined(WITH_LIMITS_NETWORK) // for a program that nothing scripts
    state.operations = {{"init"}, {"import/img", 1, {-1, 1, 1}}, {"import/conv2d_19/Sigmoid"}};
#endif
    return state;
}

ScriptedRuntime runtime = atStart();
std::set<const void *> living;

void called(const std::string &call)
{
    runtime.calls.push_back(call);
}

template <typename T>
T *created(const char *type, T *object)
{
    living.insert(object);
    ++runtime.liveCount[type];
    return object;
}

template <typename T>
void deleted(const char *type, T *object)
{
    if (living.erase(object) == 0) {
        ++runtime.wrongDeletions;
        return;
    }
    if (--runtime.liveCount[type] == 0)
        runtime.liveCount.erase(type);
    delete object;
}

void freeBytes(void *data, std::size_t /*byteCount*/, void * /*argument*/)
{
    ::operator delete(data);
}

std::string bytesOf(const TF_Tensor &tensor)
{
    return std::string(static_cast<const char *>(tensor.data), tensor.byteCount);
}

TF_Tensor *newResult()
{
    const std::vector<float> &values = runtime.results;
    const std::size_t byteCount = values.size() * sizeof(float);
    void *bytes = ::operator new(byteCount);
    std::copy(values.begin(), values.end(), static_cast<float *>(bytes));
    std::vector<std::int64_t> shape = runtime.resultShape;
    if (shape.empty())
        shape.push_back(static_cast<std::int64_t>(values.size()));
    return created("tensor", new TF_Tensor{TF_FLOAT, shape, bytes, byteCount, freeBytes, nullptr});
}

std::string runCall(const TF_Output *inputs, int inputCount, int outputCount, const TF_Operation *const *targets,
                    int targetCount)
{
    std::string call = "TF_SessionRun(";
    for (int i = 0; i < inputCount; ++i)
        call += inputs[i].oper->script.name + ":" + std::to_string(inputs[i].index) + " ";
    call += "-> " + std::to_string(outputCount) + " outputs";
    for (int i = 0; i < targetCount; ++i)
        call += ", " + targets[i]->script.name;
    return call + ")";
}

} // namespace
} // namespace zav

using namespace zav;

EXPORTED ScriptedRuntime *scriptedRuntime()
{
    return &runtime;
}

EXPORTED const char *TF_Version()
{
    return "scripted";
}

EXPORTED void TF_SetConfig(TF_SessionOptions *, const void *bytes, std::size_t count, TF_Status *status)
{
    called("TF_SetConfig");
    runtime.configBytes.assign(static_cast<const char *>(bytes), count);
    status->code = 0;
}

EXPORTED TF_SessionOptions *TF_NewSessionOptions()
{
    called("TF_NewSessionOptions");
    return created("session options", new TF_SessionOptions);
}

EXPORTED void TF_DeleteSessionOptions(TF_SessionOptions *options)
{
    called("TF_DeleteSessionOptions");
    deleted("session options", options);
}

EXPORTED TF_Status *TF_NewStatus()
{
    called("TF_NewStatus");
    return created("status", new TF_Status);
}

EXPORTED void TF_DeleteStatus(TF_Status *status)
{
    called("TF_DeleteStatus");
    deleted("status", status);
}

EXPORTED int TF_GetCode(const TF_Status *status)
{
    return status->code;
}

EXPORTED TF_Session *TF_NewSession(TF_Graph *, const TF_SessionOptions *, TF_Status *status)
{
    called("TF_NewSession");
    status->code = runtime.newSessionStatus;
    return status->code == 0 ? created("session", new TF_Session) : nullptr;
}

EXPORTED void TF_DeleteSession(TF_Session *session, TF_Status *status)
{
    called("TF_DeleteSession");
    status->code = runtime.deleteSessionStatus;
    deleted("session", session);
}

EXPORTED void TF_SessionRun(TF_Session *, const TF_Buffer *, const TF_Output *inputs, TF_Tensor *const *inputValues,
                            int inputCount, const TF_Output *, TF_Tensor **outputValues, int outputCount,
                            const TF_Operation *const *targets, int targetCount, TF_Buffer *, TF_Status *status)
{
    called(runCall(inputs, inputCount, outputCount, targets, targetCount));
    for (int i = 0; i < inputCount; ++i)
        runtime.fedBytes.push_back(bytesOf(*inputValues[i]));
    status->code = runtime.runStatus;
    for (int i = 0; i < outputCount; ++i)
        outputValues[i] = status->code == 0 ? newResult() : nullptr;
}

EXPORTED TF_Graph *TF_NewGraph()
{
    called("TF_NewGraph");
    return created("graph", new TF_Graph);
}

EXPORTED void TF_DeleteGraph(TF_Graph *graph)
{
    called("TF_DeleteGraph");
    deleted("graph", graph);
}

EXPORTED TF_ImportGraphDefOptions *TF_NewImportGraphDefOptions()
{
    called("TF_NewImportGraphDefOptions");
    return created("import options", new TF_ImportGraphDefOptions);
}

EXPORTED void TF_DeleteImportGraphDefOptions(TF_ImportGraphDefOptions *options)
{
    called("TF_DeleteImportGraphDefOptions");
    deleted("import options", options);
}

EXPORTED void TF_GraphImportGraphDef(TF_Graph *graph, const TF_Buffer *buffer, const TF_ImportGraphDefOptions *,
                                     TF_Status *status)
{
    called("TF_GraphImportGraphDef");
    runtime.importedBytes = buffer->bytes;
    status->code = runtime.importStatus;
    for (const ScriptedOperation &operation : runtime.operations)
        graph->operations.push_back(std::make_unique<TF_Operation>(TF_Operation{operation}));
}

EXPORTED TF_Operation *TF_GraphOperationByName(TF_Graph *graph, const char *name)
{
    called("TF_GraphOperationByName(" + std::string(name) + ")");
    for (const auto &operation : graph->operations) {
        if (operation->script.name == name)
            return operation.get();
    }
    return nullptr;
}

EXPORTED TF_Operation *TF_GraphNextOperation(TF_Graph *graph, std::size_t *position)
{
    return *position < graph->operations.size() ? graph->operations[(*position)++].get() : nullptr;
}

EXPORTED const char *TF_OperationName(TF_Operation *operation)
{
    return operation->script.name.c_str();
}

EXPORTED int TF_OperationOutputType(TF_Output output)
{
    return output.oper->script.type;
}

EXPORTED int TF_GraphGetTensorNumDims(TF_Graph *, TF_Output output, TF_Status *)
{
    const std::vector<std::int64_t> &shape = output.oper->script.shape;
    return shape.empty() ? -1 : static_cast<int>(shape.size());
}

EXPORTED void TF_GraphGetTensorShape(TF_Graph *, TF_Output output, std::int64_t *dimensions, int count, TF_Status *)
{
    std::copy_n(output.oper->script.shape.begin(), count, dimensions);
}

EXPORTED TF_Buffer *TF_NewBufferFromString(const void *bytes, std::size_t count)
{
    called("TF_NewBufferFromString");
    return created("buffer", new TF_Buffer{std::string(static_cast<const char *>(bytes), count)});
}

EXPORTED void TF_DeleteBuffer(TF_Buffer *buffer)
{
    called("TF_DeleteBuffer");
    deleted("buffer", buffer);
}

EXPORTED TF_Tensor *TF_AllocateTensor(TF_DataType type, const std::int64_t *, int dimensionCount, std::size_t byteCount)
{
    called("TF_AllocateTensor(type " + std::to_string(type) + ", " + std::to_string(dimensionCount) + " dimensions, " +
           std::to_string(byteCount) + " bytes)");
    if (runtime.refusesAllocation)
        return nullptr;
    void *bytes = std::memset(::operator new(byteCount), 0xee, byteCount);
    return created("tensor", new TF_Tensor{type, {}, bytes, byteCount, freeBytes, nullptr});
}

#if !defined(WITHOUT_NEW_TENSOR)
EXPORTED TF_Tensor *TF_NewTensor(TF_DataType type, const std::int64_t *dimensions, int dimensionCount, void *data,
                                 std::size_t byteCount, TF_Tensor::Deallocator deallocator, void *argument)
{
    called("TF_NewTensor");
    if (runtime.refusesNewTensor) {
        deallocator(data, byteCount, argument);
        return nullptr;
    }
    const std::vector<std::int64_t> shape(dimensions, dimensions + dimensionCount);
    return created("tensor", new TF_Tensor{type, shape, data, byteCount, deallocator, argument});
}
#endif

EXPORTED void TF_DeleteTensor(TF_Tensor *tensor)
{
    called("TF_DeleteTensor");
    deleted("tensor", tensor);
}

EXPORTED void *TF_TensorData(const TF_Tensor *tensor)
{
    return runtime.hidesTensorData ? nullptr : tensor->data;
}

EXPORTED int TF_TensorType(const TF_Tensor *tensor)
{
    return tensor->type;
}

EXPORTED int TF_NumDims(const TF_Tensor *tensor)
{
    return static_cast<int>(tensor->dimensions.size());
}

EXPORTED std::int64_t TF_Dim(const TF_Tensor *tensor, int index)
{
    return tensor->dimensions[index];
}

EXPORTED std::size_t TF_TensorByteSize(const TF_Tensor *tensor)
{
    return tensor->byteCount;
}

EXPORTED std::size_t TF_DataTypeSize(TF_DataType type)
{
    return type == TF_FLOAT ? sizeof(float) : 0;
}

#if !defined(WITHOUT_STRINGS)
// As TensorFlow wrote strings up to 2.3: the length as a varint, then the characters. Names here are short.
EXPORTED std::size_t TF_StringEncodedSize(std::size_t size)
{
    called("TF_StringEncodedSize(" + std::to_string(size) + ")");
    return size + 1;
}

EXPORTED std::size_t TF_StringEncode(const char *source, std::size_t sourceSize, char *target, std::size_t targetSize,
                                     TF_Status *status)
{
    called("TF_StringEncode(" + std::string(source, sourceSize) + ", " + std::to_string(targetSize) + ")");
    status->code = runtime.failingEncodes != 0 ? runtime.encodeStatus : 0;
    if (runtime.failingEncodes > 0)
        --runtime.failingEncodes;
    target[0] = static_cast<char>(sourceSize);
    std::memcpy(target + 1, source, sourceSize);
    return sourceSize + 1;
}
#endif
