// SPDX-License-Identifier: Apache-2.0

// Built once for each file, configured as TfApi's, in which no function can be found.

#include "MessageRecorder.h"
#include "TfApiPointers.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(AbsentRuntime, LoadLeavesTheWholeTableNullAndLogsNothing)
{
    const MessageRecorder recorder;
    TfApi api;
    api.load();
    EXPECT_EQ(std::vector<QFunctionPointer>(TF_FUNCTION_COUNT, nullptr), pointersOf(api));
    EXPECT_FALSE(api.isLoaded());
    EXPECT_TRUE(recorder.messages().isEmpty());
}

TEST(AbsentRuntime, LoadMakesNullWhatWasThereBefore)
{
    TfApi api;
    api.TF_Version = [] { return "2.21.0"; };
    api.TF_NewGraph = []() -> TF_Graph * { return nullptr; };
    api.TF_TensorByteSize = [](const TF_Tensor *) -> std::size_t { return 0; };
    ASSERT_TRUE(api.isLoaded());
    api.load();
    EXPECT_EQ(std::vector<QFunctionPointer>(TF_FUNCTION_COUNT, nullptr), pointersOf(api));
    EXPECT_FALSE(api.isLoaded());
}

} // namespace
} // namespace zav
