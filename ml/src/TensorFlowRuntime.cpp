// SPDX-License-Identifier: Apache-2.0
#include <zav/TensorFlowRuntime.h>

#include "ReturnIfError.h"
#include "TfApi.h"

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "ml/src/TensorFlowRuntime";

} // namespace

void TensorFlowRuntime::setHostFolder(const QString &folder)
{
    TfApi::setHostFolder(folder);
}

Result<RuntimeDescription> TensorFlowRuntime::describe()
{
    TfApi api;
    api.load();
    ZAV_RETURN_IF_ERROR(api.checkComplete(), __LINE__);
    return RuntimeDescription{QString::fromUtf8(api.TF_Version()), api.openedFile(), TfApi::runtimeOrigin()};
}

} // namespace zav
