// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TfTypes.h"

#include <zav/Error.h>
#include <zav/TensorFlowRuntime.h>

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

namespace zav {

/// The functions of the TensorFlow C API, found by name at run time: TensorFlow is not linked.
///
/// A plain record, one pointer a function, null until `load` has found it. Each `Model` and each `Tensor` fills a
/// table of its own; nothing is shared between them, so the look-ups take no lock.
struct TfApi
{
    bool reserved = false; ///< always false

    const char *(*TF_Version)() = nullptr;
    void (*TF_SetConfig)(TF_SessionOptions *options, const void *proto, std::size_t protoSize,
                         TF_Status *status) = nullptr;
    void (*TF_DeleteSessionOptions)(TF_SessionOptions *options) = nullptr;
    TF_Status *(*TF_NewStatus)() = nullptr;
    void (*TF_DeleteStatus)(TF_Status *status) = nullptr;
    TF_Session *(*TF_NewSession)(TF_Graph *graph, const TF_SessionOptions *options, TF_Status *status) = nullptr;
    void (*TF_DeleteSession)(TF_Session *session, TF_Status *status) = nullptr;
    void (*TF_SessionRun)(TF_Session *session, const TF_Buffer *runOptions, const TF_Output *inputs,
                          TF_Tensor *const *inputValues, int inputCount, const TF_Output *outputs,
                          TF_Tensor **outputValues, int outputCount, const TF_Operation *const *targets,
                          int targetCount, TF_Buffer *runMetadata, TF_Status *status) = nullptr;
    TF_Graph *(*TF_NewGraph)() = nullptr;
    TF_ImportGraphDefOptions *(*TF_NewImportGraphDefOptions)() = nullptr;
    void (*TF_GraphImportGraphDef)(TF_Graph *graph, const TF_Buffer *graphDef, const TF_ImportGraphDefOptions *options,
                                   TF_Status *status) = nullptr;
    void (*TF_DeleteImportGraphDefOptions)(TF_ImportGraphDefOptions *options) = nullptr;
    TF_Operation *(*TF_GraphOperationByName)(TF_Graph *graph, const char *name) = nullptr;
    TF_Operation *(*TF_GraphNextOperation)(TF_Graph *graph, std::size_t *position) = nullptr;
    TF_Tensor *(*TF_AllocateTensor)(TF_DataType type, const std::int64_t *dims, int dimCount,
                                    std::size_t byteCount) = nullptr;
    TF_Tensor *(*TF_NewTensor)(TF_DataType type, const std::int64_t *dims, int dimCount, void *data,
                               std::size_t byteCount, void (*deallocator)(void *data, std::size_t byteCount, void *arg),
                               void *deallocatorArg) = nullptr;
    void (*TF_DeleteTensor)(TF_Tensor *tensor) = nullptr;
    void *(*TF_TensorData)(const TF_Tensor *tensor) = nullptr;
    std::size_t (*TF_StringEncode)(const char *source, std::size_t sourceSize, char *target, std::size_t targetSize,
                                   TF_Status *status) = nullptr;
    std::size_t (*TF_StringEncodedSize)(std::size_t size) = nullptr;
    TF_Buffer *(*TF_NewBufferFromString)(const void *proto, std::size_t protoSize) = nullptr;
    void (*TF_DeleteBuffer)(TF_Buffer *buffer) = nullptr;
    const char *(*TF_OperationName)(TF_Operation *operation) = nullptr;
    TF_Code (*TF_GetCode)(const TF_Status *status) = nullptr;
    int (*TF_GraphGetTensorNumDims)(TF_Graph *graph, TF_Output output, TF_Status *status) = nullptr;
    int (*TF_NumDims)(const TF_Tensor *tensor) = nullptr;
    std::int64_t (*TF_Dim)(const TF_Tensor *tensor, int index) = nullptr;
    std::size_t (*TF_DataTypeSize)(TF_DataType type) = nullptr;
    std::size_t (*TF_TensorByteSize)(const TF_Tensor *tensor) = nullptr;
    TF_DataType (*TF_OperationOutputType)(TF_Output output) = nullptr;
    void (*TF_GraphGetTensorShape)(TF_Graph *graph, TF_Output output, std::int64_t *dims, int dimCount,
                                   TF_Status *status) = nullptr;
    TF_SessionOptions *(*TF_NewSessionOptions)() = nullptr;
    TF_DataType (*TF_TensorType)(const TF_Tensor *tensor) = nullptr;
    void (*TF_DeleteGraph)(TF_Graph *graph) = nullptr;

    /// Looks every function up again, in the order above; what is not found becomes null. Opens the runtime if no one
    /// has opened it yet (0.3 to 1.4 s), and never unloads it.
    void load();

    /// True when a sample of the table, `TF_Version`, `TF_NewGraph` and `TF_TensorByteSize`, was found.
    bool isLoaded() const;

    /// Success when every function is there that a model needs to run. Otherwise `Failure`, whose message names the
    /// file that was tried and the first missing function, and says how to get the runtime. `TF_StringEncode` and
    /// `TF_StringEncodedSize` are not asked for: TensorFlow 2.4 dropped them, see `FileNameTensor`.
    Error checkComplete() const;

    /// The file that functions are looked up in: the absolute path that the build was configured with; or the first
    /// that exists of the folder `zav` beside the library that holds this code and the folder that the build was
    /// configured with; or the bare file name, where the system finds a file that it can open; or the file in the
    /// host's folder, where it exists; or the bare file name. Chosen once, at the first call.
    static QString runtimeFileName();

    /// How that file was chosen.
    static RuntimeOrigin runtimeOrigin();

    /// The path of the file that the functions were found in: where the system searched, the one that it found. For a
    /// complete table.
    QString openedFile() const;

    /// The folder that is looked at last; see `TensorFlowRuntime`. Without effect once the file was chosen.
    static void setHostFolder(const QString &folder);
};

} // namespace zav
