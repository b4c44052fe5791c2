// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "TfApi.h"

#include <QtCore/QtGlobal>

#include <cstring>
#include <vector>

namespace zav {

inline constexpr std::size_t TF_FUNCTION_COUNT = 34;

/// The pointers of the table as they lie in memory, behind the flag.
inline std::vector<QFunctionPointer> pointersOf(const TfApi &api)
{
    std::vector<QFunctionPointer> pointers(TF_FUNCTION_COUNT);
    std::memcpy(pointers.data(), reinterpret_cast<const char *>(&api) + sizeof(void *),
                pointers.size() * sizeof(QFunctionPointer));
    return pointers;
}

} // namespace zav
