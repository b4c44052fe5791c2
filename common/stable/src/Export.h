// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

// Marks what a shared library of this product exports. Only its own build defines <LIBRARY>_BUILD.

#if defined(ZAV_COMMON_STABLE_BUILD)
#define ZAV_COMMON_STABLE_EXPORT Q_DECL_EXPORT
#else
#define ZAV_COMMON_STABLE_EXPORT Q_DECL_IMPORT
#endif

#if defined(ZAV_COMMON_CORE_MINI_BUILD)
#define ZAV_COMMON_CORE_MINI_EXPORT Q_DECL_EXPORT
#else
#define ZAV_COMMON_CORE_MINI_EXPORT Q_DECL_IMPORT
#endif

#if defined(ZAV_ML_BUILD)
#define ZAV_ML_EXPORT Q_DECL_EXPORT
#else
#define ZAV_ML_EXPORT Q_DECL_IMPORT
#endif
