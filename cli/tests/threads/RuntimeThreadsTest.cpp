// SPDX-License-Identifier: Apache-2.0
#include "RuntimeThreads.h"

#include <gtest/gtest.h>

#include <QtCore/QByteArray>

namespace zav {
namespace {

TEST(RuntimeThreads, RuntimeIsToldToStayInTheCallingThread)
{
    qunsetenv("TF_NUM_INTEROP_THREADS");
    qunsetenv("TF_NUM_INTRAOP_THREADS");
    keepRuntimeInCallingThreads();
    EXPECT_EQ(qgetenv("TF_NUM_INTEROP_THREADS"), "-1");
    EXPECT_EQ(qgetenv("TF_NUM_INTRAOP_THREADS"), "1");
}

TEST(RuntimeThreads, WhatTheUserHasSetStays)
{
    qputenv("TF_NUM_INTEROP_THREADS", "3");
    qunsetenv("TF_NUM_INTRAOP_THREADS");
    keepRuntimeInCallingThreads();
    EXPECT_EQ(qgetenv("TF_NUM_INTEROP_THREADS"), "3");
    EXPECT_EQ(qgetenv("TF_NUM_INTRAOP_THREADS"), "1");
}

TEST(RuntimeThreads, ThereIsACoreAtLeast)
{
    EXPECT_GE(usableCores(), 1);
}

} // namespace
} // namespace zav
