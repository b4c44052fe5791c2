// SPDX-License-Identifier: Apache-2.0
#include "TfApi.h"

#include "RuntimeFile.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>
#include <QtCore/QStringList>

#include <cstring>

#if defined(Q_OS_WIN)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

// The functions in the order of the record.
#define ZAV_TF_FUNCTIONS(APPLY)                                                                                        \
    APPLY(TF_Version)                                                                                                  \
    APPLY(TF_SetConfig)                                                                                                \
    APPLY(TF_DeleteSessionOptions)                                                                                     \
    APPLY(TF_NewStatus)                                                                                                \
    APPLY(TF_DeleteStatus)                                                                                             \
    APPLY(TF_NewSession)                                                                                               \
    APPLY(TF_DeleteSession)                                                                                            \
    APPLY(TF_SessionRun)                                                                                               \
    APPLY(TF_NewGraph)                                                                                                 \
    APPLY(TF_NewImportGraphDefOptions)                                                                                 \
    APPLY(TF_GraphImportGraphDef)                                                                                      \
    APPLY(TF_DeleteImportGraphDefOptions)                                                                              \
    APPLY(TF_GraphOperationByName)                                                                                     \
    APPLY(TF_GraphNextOperation)                                                                                       \
    APPLY(TF_AllocateTensor)                                                                                           \
    APPLY(TF_NewTensor)                                                                                                \
    APPLY(TF_DeleteTensor)                                                                                             \
    APPLY(TF_TensorData)                                                                                               \
    APPLY(TF_StringEncode)                                                                                             \
    APPLY(TF_StringEncodedSize)                                                                                        \
    APPLY(TF_NewBufferFromString)                                                                                      \
    APPLY(TF_DeleteBuffer)                                                                                             \
    APPLY(TF_OperationName)                                                                                            \
    APPLY(TF_GetCode)                                                                                                  \
    APPLY(TF_GraphGetTensorNumDims)                                                                                    \
    APPLY(TF_NumDims)                                                                                                  \
    APPLY(TF_Dim)                                                                                                      \
    APPLY(TF_DataTypeSize)                                                                                             \
    APPLY(TF_TensorByteSize)                                                                                           \
    APPLY(TF_OperationOutputType)                                                                                      \
    APPLY(TF_GraphGetTensorShape)                                                                                      \
    APPLY(TF_NewSessionOptions)                                                                                        \
    APPLY(TF_TensorType)                                                                                               \
    APPLY(TF_DeleteGraph)

namespace zav {

namespace {

const QString &runtimeProblem();

QFunctionPointer resolve(const char *name)
{
    return runtimeProblem().isEmpty() ? QLibrary::resolve(TfApi::runtimeFileName(), name) : nullptr;
}

#define ZAV_TF_RESOLVER(name)                                                                                          \
    decltype(TfApi::name) resolve##name()                                                                              \
    {                                                                                                                  \
        return reinterpret_cast<decltype(TfApi::name)>(resolve(#name));                                                \
    }
ZAV_TF_FUNCTIONS(ZAV_TF_RESOLVER)
#undef ZAV_TF_RESOLVER

/// The configured name or path, else the platform's usual name.
QString configuredName()
{
#if defined(Q_OS_WIN)
    const QString usualName = QStringLiteral("tensorflow.dll");
#elif defined(Q_OS_MACOS)
    const QString usualName = QStringLiteral("libtensorflow.2.dylib");
#else
    const QString usualName = QStringLiteral("libtensorflow.so.2");
#endif
    const QString configured = QStringLiteral(ZAV_TENSORFLOW_LIBRARY);
    return configured.isEmpty() ? usualName : configured;
}

/// The file of the shared library or program that holds the function; empty if the system does not say.
QString fileOf(QFunctionPointer function)
{
#if defined(Q_OS_WIN)
    HMODULE module = nullptr;
    wchar_t path[MAX_PATH] = {};
    const DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, reinterpret_cast<LPCWSTR>(function), &module) ||
        GetModuleFileNameW(module, path, MAX_PATH) == 0)
        return {};
    return QFileInfo(QString::fromWCharArray(path)).absoluteFilePath();
#else
    Dl_info module;
    if (dladdr(reinterpret_cast<void *>(function), &module) == 0)
        return {};
    return QFileInfo(QFile::decodeName(module.dli_fname)).absoluteFilePath();
#endif
}

/// The folder `zav` beside the library or program that this code was linked into; empty if the system does not say.
QString folderBesideLibrary()
{
    const QString own = fileOf(reinterpret_cast<QFunctionPointer>(&fileOf));
    return own.isEmpty() ? QString() : QFileInfo(own).absolutePath() + QStringLiteral("/zav");
}

struct RuntimeChoice
{
    QString fileName;
    RuntimeOrigin origin = RuntimeOrigin::System;
};

QString &hostFolder()
{
    static QString folder;
    return folder;
}

bool systemFinds(const QString &name)
{
    return QLibrary(name).load(); // it stays open
}

RuntimeChoice findRuntime()
{
    const QString name = configuredName();
    if (QDir::isAbsolutePath(name))
        return {name, RuntimeOrigin::ConfiguredPath};
    const auto isIn = [&name](const QString &folder) {
        return !folder.isEmpty() && QFileInfo::exists(folder + QLatin1Char('/') + name);
    };
    const QString buildFolder = QStringLiteral(ZAV_TENSORFLOW_DIR);
    if (const QString beside = folderBesideLibrary(); isIn(beside))
        return {beside + QLatin1Char('/') + name, RuntimeOrigin::BesideLibrary};
    if (isIn(buildFolder))
        return {buildFolder + QLatin1Char('/') + name, RuntimeOrigin::BuildFolder};
    if (isIn(hostFolder()) && !systemFinds(name))
        return {hostFolder() + QLatin1Char('/') + name, RuntimeOrigin::HostFolder};
    return {name, RuntimeOrigin::System};
}

const RuntimeChoice &runtimeChoice()
{
    // Each prediction looks the table up twice: asking the file system every time would cost more than the network.
    static const RuntimeChoice choice = findRuntime();
    return choice;
}

/// Why the runtime must not be opened; found out once, as its name is.
const QString &runtimeProblem()
{
    static const QString problem = problemOfRuntimeFile(TfApi::runtimeFileName());
    return problem;
}

/// Why a function is missing from a file: the loader's reason, or that the file lacks it.
QString reasonFor(const QString &fileName)
{
    if (!runtimeProblem().isEmpty())
        return runtimeProblem();
    QLibrary library(fileName);
    return library.load() ? QStringLiteral("the file has no such function") : library.errorString();
}

Error missingFunction(const char *name)
{
    const QString fileName = TfApi::runtimeFileName();
    return {Failure, QStringLiteral("TensorFlow's function %1 was not found in \"%2\" (%3). The networks need the "
                                    "TensorFlow C library, version 2: 'zav runtime install' fetches it for the "
                                    "program zav, scripts/setup for a build; or put it into a folder \"zav\" beside "
                                    "this library or where the system looks for libraries.")
                         .arg(QLatin1String(name), fileName, reasonFor(fileName))};
}

bool isOptional(const char *name)
{
    return std::strcmp(name, "TF_StringEncode") == 0 || std::strcmp(name, "TF_StringEncodedSize") == 0;
}

} // namespace

void TfApi::load()
{
#define ZAV_TF_LOAD(name) name = resolve##name();
    ZAV_TF_FUNCTIONS(ZAV_TF_LOAD)
#undef ZAV_TF_LOAD
}

bool TfApi::isLoaded() const
{
    return TF_Version != nullptr && TF_NewGraph != nullptr && TF_TensorByteSize != nullptr;
}

Error TfApi::checkComplete() const
{
#define ZAV_TF_CHECK(name)                                                                                             \
    if ((name) == nullptr && !isOptional(#name))                                                                       \
        return missingFunction(#name);
    ZAV_TF_FUNCTIONS(ZAV_TF_CHECK)
#undef ZAV_TF_CHECK
    return {};
}

QString TfApi::runtimeFileName()
{
    return runtimeChoice().fileName;
}

RuntimeOrigin TfApi::runtimeOrigin()
{
    return runtimeChoice().origin;
}

QString TfApi::openedFile() const
{
    return runtimeChoice().origin == RuntimeOrigin::System ? fileOf(reinterpret_cast<QFunctionPointer>(TF_Version))
                                                           : runtimeChoice().fileName;
}

void TfApi::setHostFolder(const QString &folder)
{
    hostFolder() = folder;
}

} // namespace zav
