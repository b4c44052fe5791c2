// SPDX-License-Identifier: Apache-2.0
#include "FileNameTensor.h"

#include <QtCore/QLibrary>

#include <cstring>

namespace zav {

namespace {

constexpr std::size_t OFFSET_SIZE = 8;
constexpr std::size_t STRING_SIZE = 24; // sizeof(TF_TString), on every platform

template <typename Function>
void resolve(Function *function, const char *name)
{
    *function = reinterpret_cast<Function>(QLibrary::resolve(TfApi::runtimeFileName(), name));
}

} // namespace

void FileNameTensor::StringFunctions::load()
{
    resolve(&TF_StringInit, "TF_StringInit");
    resolve(&TF_StringCopy, "TF_StringCopy");
    resolve(&TF_StringDealloc, "TF_StringDealloc");
}

bool FileNameTensor::StringFunctions::isLoaded() const
{
    return TF_StringInit != nullptr && TF_StringCopy != nullptr && TF_StringDealloc != nullptr;
}

FileNameTensor::FileNameTensor(const TfApi &tfApi, const std::string &name) : api(tfApi), fileName(name)
{
    if (usesOffsets())
        allocateWithOffset();
    else
        allocateString();
}

FileNameTensor::~FileNameTensor()
{
    if (tensor == nullptr)
        return;
    if (!usesOffsets())
        strings.TF_StringDealloc(string()); // the tensor frees its 24 bytes, not what they point to
    api.TF_DeleteTensor(tensor);
}

bool FileNameTensor::encode(TF_Status *status)
{
    if (!usesOffsets()) {
        strings.TF_StringCopy(string(), fileName.data(), fileName.size());
        return true;
    }
    char *bytes = static_cast<char *>(api.TF_TensorData(tensor));
    std::memset(bytes, 0, OFFSET_SIZE);
    api.TF_StringEncode(fileName.data(), fileName.size(), bytes + OFFSET_SIZE, encodedSize, status);
    return api.TF_GetCode(status) == TF_OK;
}

bool FileNameTensor::usesOffsets() const
{
    return api.TF_StringEncode != nullptr && api.TF_StringEncodedSize != nullptr;
}

void FileNameTensor::allocateWithOffset()
{
    encodedSize = api.TF_StringEncodedSize(fileName.size());
    tensor = api.TF_AllocateTensor(TF_STRING, nullptr, 0, OFFSET_SIZE + encodedSize);
}

void FileNameTensor::allocateString()
{
    strings.load();
    if (!strings.isLoaded())
        return;
    tensor = api.TF_AllocateTensor(TF_STRING, nullptr, 0, STRING_SIZE);
    if (tensor != nullptr)
        strings.TF_StringInit(string());
}

TF_TString *FileNameTensor::string() const
{
    return static_cast<TF_TString *>(api.TF_TensorData(tensor));
}

} // namespace zav
