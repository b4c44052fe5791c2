// SPDX-License-Identifier: Apache-2.0
//
// Loaded before a program (LD_PRELOAD), fails its ZAV_FAIL_ALLOCATION-th allocation from main on, and with
// ZAV_FAIL_LATER_TOO=1 all later ones. Writes how many there were, and how many failed, to the file of
// ZAV_ALLOCATIONS_FILE when the program ends.
#include "FailingAllocations.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <unistd.h>
#include <unwind.h>

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

constexpr int CRASH_OF_QT_GUI = 86;

_Unwind_Reason_Code findQtGui(_Unwind_Context *context, void *isFound)
{
    Dl_info info;
    if (dladdr(reinterpret_cast<void *>(_Unwind_GetIP(context)), &info) != 0 && info.dli_fname != nullptr &&
        std::strstr(info.dli_fname, "libQt6Gui") != nullptr)
        *static_cast<bool *>(isFound) = true;
    return *static_cast<bool *>(isFound) ? _URC_END_OF_STACK : _URC_NO_REASON;
}

/// Tells a crash within Qt Gui, which survives no lack of memory, from one within the program.
void onCrash(int signal)
{
    failingAllocations::disarm();
    bool isOfQtGui = false;
    _Unwind_Backtrace(findQtGui, &isOfQtGui);
    if (isOfQtGui)
        _exit(CRASH_OF_QT_GUI);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
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
    std::signal(SIGSEGV, onCrash);
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
