// SPDX-License-Identifier: Apache-2.0
//
// Loaded before a program (LD_PRELOAD), fails its ZAV_FAIL_ALLOCATION-th allocation from main on, and with
// ZAV_FAIL_LATER_TOO=1 all later ones. Writes how many there were, and how many failed, to the file of
// ZAV_ALLOCATIONS_FILE when the program ends.
#include "FailingAllocations.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

using Main = int (*)(int, char **, char **);
using Start = int (*)(Main, int, char **, void (*)(), void (*)(), void (*)(), void *);

Main programMain = nullptr;

void tell()
{
    const long counted = failingAllocations::disarm();
    const char *path = std::getenv("ZAV_ALLOCATIONS_FILE");
    FILE *file = path != nullptr ? std::fopen(path, "w") : nullptr;
    if (file == nullptr)
        return;
    std::fprintf(file, "%ld %ld\n", counted, failingAllocations::failedCount());
    std::fclose(file);
}

/// Qt (6.4) crashes where it gets no memory for what it keeps of a thread, which this makes for the first one.
void prepareQt()
{
    using CurrentThread = void *(*)();
    const auto currentThread = reinterpret_cast<CurrentThread>(dlsym(RTLD_DEFAULT, "_ZN7QThread13currentThreadEv"));
    if (currentThread != nullptr)
        currentThread();
}

int armedMain(int argc, char **argv, char **environment)
{
    prepareQt();
    const char *number = std::getenv("ZAV_FAIL_ALLOCATION");
    failingAllocations::arm(number != nullptr ? std::atol(number) : 0, std::getenv("ZAV_FAIL_LATER_TOO") != nullptr,
                            false);
    const int code = programMain(argc, argv, environment);
    tell();
    return code;
}

} // namespace

// glibc calls main from here.
extern "C" __attribute__((visibility("default"))) int __libc_start_main(Main main, int argc, char **argv,
                                                                        void (*init)(), void (*finish)(),
                                                                        void (*finishLinker)(), void *stackEnd)
{
    programMain = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(armedMain, argc, argv, init, finish, finishLinker, stackEnd);
}
