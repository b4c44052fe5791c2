// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TfApi.h"

#include <cstddef>
#include <string>

namespace zav {

/// The scalar string tensor that hands a file name to a graph's saver.
///
/// Up to TensorFlow 2.3 a string tensor is a table of 8-byte offsets before the strings as `TF_StringEncode` writes
/// them; that layout is used where the function resolves. Later versions keep one TF_TString of 24 bytes an element,
/// with functions that earlier ones lack.
class FileNameTensor
{
public:
    /// Allocates the tensor; both arguments must outlive it.
    FileNameTensor(const TfApi &tfApi, const std::string &name);
    ~FileNameTensor();

    Q_DISABLE_COPY_MOVE(FileNameTensor)

    /// Null when the runtime has no string functions, or no memory: then nothing may be encoded.
    TF_Tensor *get() const { return tensor; }

    /// Writes the name. False when the runtime refuses, with the reason in `status`, which stays as it was where
    /// encoding cannot fail. May be repeated.
    bool encode(TF_Status *status);

private:
    struct StringFunctions
    {
        void (*TF_StringInit)(TF_TString *string) = nullptr;
        void (*TF_StringCopy)(TF_TString *target, const char *source, std::size_t size) = nullptr;
        void (*TF_StringDealloc)(TF_TString *string) = nullptr;

        void load();
        bool isLoaded() const;
    };

    bool usesOffsets() const;
    void allocateWithOffset();
    void allocateString();
    TF_TString *string() const;

    const TfApi &api;
    const std::string &fileName;
    StringFunctions strings;
    std::size_t encodedSize = 0; ///< of the name, without the offset
    TF_Tensor *tensor = nullptr;
};

} // namespace zav
