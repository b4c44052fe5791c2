// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace zav {

// The types of the TensorFlow C API that the library passes through, as that API publishes them. TensorFlow's own
// headers are not needed to build; `TfApi` brings the functions at run time.

struct TF_Buffer;
struct TF_Graph;
struct TF_ImportGraphDefOptions;
struct TF_Operation;
struct TF_Session;
struct TF_SessionOptions;
struct TF_Status;
struct TF_TString;
struct TF_Tensor;

/// One output of an operation of a graph.
struct TF_Output
{
    TF_Operation *oper = nullptr;
    int index = 0;
};

/// The element types that the library names; a graph can declare others, which it only compares.
enum TF_DataType : int { TF_FLOAT = 1, TF_STRING = 7 };

/// The status codes that the library names: every other one is a failure.
enum TF_Code : int { TF_OK = 0 };

} // namespace zav
