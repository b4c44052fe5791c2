// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Model.h"
#include "Tensor.h"

namespace zav {

/// The unit tests' view of a tensor's fields.
class TensorInspector
{
public:
    static int state(const Tensor &tensor) { return tensor.state; }
    static TF_DataType type(const Tensor &tensor) { return tensor.type; }
    static void *data(const Tensor &tensor) { return tensor.data; }
    static const std::vector<std::int64_t> *dataShape(const Tensor &tensor) { return tensor.dataShape.get(); }
    static TfApi *api(Tensor *tensor) { return &tensor->api; }

    /// Where TensorFlow keeps the held data.
    static void *storedData(const Tensor &tensor) { return tensor.api.TF_TensorData(tensor.tensor); }
    /// The dimensions of the held data.
    static std::vector<std::int64_t> storedShape(const Tensor &tensor)
    {
        std::vector<std::int64_t> dimensions(tensor.api.TF_NumDims(tensor.tensor));
        for (int i = 0; i < static_cast<int>(dimensions.size()); ++i)
            dimensions[i] = tensor.api.TF_Dim(tensor.tensor, i);
        return dimensions;
    }
    static std::size_t storedByteCount(const Tensor &tensor) { return tensor.api.TF_TensorByteSize(tensor.tensor); }
};

/// The unit tests' view of a model's fields.
class ModelInspector
{
public:
    static const TfApi &api(const Model &model) { return model.api; }
    static TfApi *api(Model *model) { return &model->api; }
    static bool hasSession(const Model &model) { return model.session != nullptr; }
};

} // namespace zav
