// SPDX-License-Identifier: Apache-2.0
#include "RuntimeThreads.h"

#include <QtCore/QByteArray>

#include <algorithm>
#include <thread>

namespace zav {

namespace {

void setUnlessSet(const char *variable, const char *value)
{
    if (!qEnvironmentVariableIsSet(variable))
        qputenv(variable, value);
}

} // namespace

void keepRuntimeInCallingThreads()
{
    // Below 0: operations are not handed to the pool that all networks of a process share.
    setUnlessSet("TF_NUM_INTEROP_THREADS", "-1");
    // Within an operation, 1 is the calling thread.
    setUnlessSet("TF_NUM_INTRAOP_THREADS", "1");
}

int usableCores()
{
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

} // namespace zav
