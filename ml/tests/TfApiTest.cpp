// SPDX-License-Identifier: Apache-2.0
#include "TfApi.h"

#include "TfApiPointers.h"

#include <QtCore/QFileInfo>
#include <QtCore/QLibrary>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

namespace zav {
namespace {

// The functions in the order in which the record holds them.
constexpr std::array FUNCTIONS = {
    "TF_Version",
    "TF_SetConfig",
    "TF_DeleteSessionOptions",
    "TF_NewStatus",
    "TF_DeleteStatus",
    "TF_NewSession",
    "TF_DeleteSession",
    "TF_SessionRun",
    "TF_NewGraph",
    "TF_NewImportGraphDefOptions",
    "TF_GraphImportGraphDef",
    "TF_DeleteImportGraphDefOptions",
    "TF_GraphOperationByName",
    "TF_GraphNextOperation",
    "TF_AllocateTensor",
    "TF_NewTensor",
    "TF_DeleteTensor",
    "TF_TensorData",
    "TF_StringEncode",
    "TF_StringEncodedSize",
    "TF_NewBufferFromString",
    "TF_DeleteBuffer",
    "TF_OperationName",
    "TF_GetCode",
    "TF_GraphGetTensorNumDims",
    "TF_NumDims",
    "TF_Dim",
    "TF_DataTypeSize",
    "TF_TensorByteSize",
    "TF_OperationOutputType",
    "TF_GraphGetTensorShape",
    "TF_NewSessionOptions",
    "TF_TensorType",
    "TF_DeleteGraph",
};

TEST(TfApi, IsAFlagAndThirtyFourPointers)
{
    static_assert(FUNCTIONS.size() == TF_FUNCTION_COUNT);
    static_assert(std::is_standard_layout_v<TfApi>);
    EXPECT_EQ(35 * sizeof(void *), sizeof(TfApi));
}

TEST(TfApi, StartsWithoutFunctions)
{
    const TfApi api;
    EXPECT_FALSE(api.reserved);
    for (const QFunctionPointer pointer : pointersOf(api))
        EXPECT_EQ(nullptr, pointer);
    EXPECT_FALSE(api.isLoaded());
    EXPECT_TRUE(api.checkComplete().hasError());
}

TEST(TfApi, LoadFindsEachFunctionByItsNameInTheOrderOfTheRecord)
{
    TfApi api;
    api.load();
    const std::vector<QFunctionPointer> pointers = pointersOf(api);
    for (std::size_t i = 0; i < FUNCTIONS.size(); ++i)
        EXPECT_EQ(QLibrary::resolve(TfApi::runtimeFileName(), FUNCTIONS[i]), pointers[i]) << FUNCTIONS[i];
}

TEST(TfApi, LoadLeavesTheFlagAlone)
{
    TfApi api;
    api.load();
    EXPECT_FALSE(api.reserved);
    api.reserved = true;
    api.load();
    EXPECT_TRUE(api.reserved);
}

TEST(TfApi, LoadLooksEverythingUpAgain)
{
    TfApi api;
    api.load();
    const std::vector<QFunctionPointer> first = pointersOf(api);
    api.TF_Version = nullptr;
    api.TF_DeleteGraph = nullptr;
    api.load();
    EXPECT_EQ(first, pointersOf(api));
}

TEST(TfApi, IsLoadedAsksForThreeFunctionsOnly)
{
    TfApi loaded;
    loaded.load();
    TfApi api;
    api.TF_Version = loaded.TF_Version;
    api.TF_NewGraph = loaded.TF_NewGraph;
    EXPECT_FALSE(api.isLoaded());
    api.TF_TensorByteSize = loaded.TF_TensorByteSize;
    EXPECT_TRUE(api.isLoaded());
    api.TF_NewGraph = nullptr;
    EXPECT_FALSE(api.isLoaded());
    api.TF_NewGraph = loaded.TF_NewGraph;
    api.TF_Version = nullptr;
    EXPECT_FALSE(api.isLoaded());
}

TEST(TfApi, IsCompleteWithoutTheTwoStringFunctions)
{
    TfApi api;
    api.load();
    api.TF_StringEncode = nullptr;
    api.TF_StringEncodedSize = nullptr;
    EXPECT_FALSE(api.checkComplete().hasError()) << api.checkComplete().toString().toStdString();
}

TEST(TfApi, TheFirstMissingFunctionIsNamedWithTheFileThatWasTried)
{
    TfApi api;
    api.load();
    api.TF_SessionRun = nullptr;
    api.TF_DeleteGraph = nullptr;
    const Error error = api.checkComplete();
    EXPECT_TRUE(error.equals(Failure));
    EXPECT_TRUE(error.message().contains(QStringLiteral("TF_SessionRun")));
    EXPECT_FALSE(error.message().contains(QStringLiteral("TF_DeleteGraph")));
    EXPECT_TRUE(error.message().contains(TfApi::runtimeFileName()));
    EXPECT_TRUE(error.message().contains(QStringLiteral("scripts/setup")));
}

TEST(TfApi, EachFunctionIsMissedByItsName)
{
    TfApi whole;
    whole.load();
    for (std::size_t i = 0; i < FUNCTIONS.size(); ++i) {
        TfApi api = whole;
        std::memset(reinterpret_cast<char *>(&api) + (i + 1) * sizeof(void *), 0, sizeof(void *));
        const QString name = QString::fromLatin1(FUNCTIONS[i]);
        const Error error = api.checkComplete();
        EXPECT_EQ(error.hasError(), !name.startsWith(QStringLiteral("TF_StringEncode"))) << FUNCTIONS[i];
        EXPECT_TRUE(!error.hasError() || error.message().contains(QStringLiteral("function %1 was").arg(name)))
            << error.message().toStdString();
    }
}

TEST(TfApi, TheRuntimeIsTheRealOne)
{
    TfApi api;
    api.load();
    ASSERT_TRUE(api.isLoaded()) << api.checkComplete().message().toStdString();
    EXPECT_EQ('2', *api.TF_Version());
}

} // namespace
} // namespace zav
