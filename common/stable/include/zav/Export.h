// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/qglobal.h>

// Marks what a shared library of this product exports. Only its own build defines <LIBRARY>_BUILD.
// GCC refuses the older __attribute__ form next to [[nodiscard]], hence the standard spelling.

#if defined(Q_OS_WIN)
#define ZAV_EXPORT_SYMBOL Q_DECL_EXPORT
#define ZAV_IMPORT_SYMBOL Q_DECL_IMPORT
#else
#define ZAV_EXPORT_SYMBOL [[gnu::visibility("default")]]
#define ZAV_IMPORT_SYMBOL [[gnu::visibility("default")]]
#endif

#if defined(ZAV_COMMON_STABLE_BUILD)
#define ZAV_COMMON_STABLE_EXPORT ZAV_EXPORT_SYMBOL
#else
#define ZAV_COMMON_STABLE_EXPORT ZAV_IMPORT_SYMBOL
#endif

#if defined(ZAV_COMMON_CORE_MINI_BUILD)
#define ZAV_COMMON_CORE_MINI_EXPORT ZAV_EXPORT_SYMBOL
#else
#define ZAV_COMMON_CORE_MINI_EXPORT ZAV_IMPORT_SYMBOL
#endif

#if defined(ZAV_ML_BUILD)
#define ZAV_ML_EXPORT ZAV_EXPORT_SYMBOL
#else
#define ZAV_ML_EXPORT ZAV_IMPORT_SYMBOL
#endif
