// SPDX-License-Identifier: Apache-2.0
#include "FailingAllocations.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <new>
#include <unwind.h>

// What glibc keeps for replaced functions.
extern "C" {
void *__libc_malloc(size_t size);
void *__libc_calloc(size_t count, size_t size);
void *__libc_realloc(void *block, size_t size);
void __libc_free(void *block);
}

namespace {

/// Whose code lies at an address.
enum class Owner { Ours, TensorFlow, StandardLibrary, System };

struct Module
{
    uintptr_t begin;
    uintptr_t end;
    Owner owner;
};

struct Modules
{
    std::array<Module, 512> list;
    std::atomic<size_t> count;
    std::atomic<bool> haveTensorFlow;
};

std::atomic<bool> isArmed = false;
std::atomic<long> counted = 0;
std::atomic<long> failed = 0;
long firstFailing = 0;
bool failsLaterToo = false;
bool isForOneThread = false;
thread_local bool isArmingThread = false;
thread_local bool isLooking = false; // this code's own allocations succeed
thread_local bool isLoading = false; // while dlopen runs: what a library allocates at its start does not count
Modules modules;

Owner ownerOf(const char *name)
{
    const auto has = [name](const char *part) { return std::strstr(name, part) != nullptr; };
    if (has("tensorflow"))
        return Owner::TensorFlow;
    if (has("libstdc++") || has("libgcc_s"))
        return Owner::StandardLibrary;
    for (const char *system : {"/libc.so", "/ld-linux", "/libpthread", "/libdl", "linux-vdso", "/libfontconfig",
                               "/libfreetype", "/libglib", "/libexpat", "/libcrypto", "failing_allocations"}) {
        if (has(system))
            return Owner::System;
    }
    return Owner::Ours;
}

int noteModule(dl_phdr_info *info, size_t /*size*/, void *data)
{
    auto *count = static_cast<size_t *>(data);
    const Owner owner = ownerOf(info->dlpi_name);
    if (owner == Owner::TensorFlow)
        modules.haveTensorFlow = true;
    for (int i = 0; i < info->dlpi_phnum && *count < modules.list.size(); ++i) {
        const auto &segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_X) == 0)
            continue;
        const uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
        modules.list[(*count)++] = {begin, begin + segment.p_memsz, owner};
    }
    return 0;
}

Owner ownerAt(uintptr_t address)
{
    for (size_t i = 0; i < modules.count; ++i) {
        if (address >= modules.list[i].begin && address < modules.list[i].end)
            return modules.list[i].owner;
    }
    return Owner::System;
}

struct Search
{
    Owner found;
};

/// The first caller that is neither the standard library nor this file's replacements.
_Unwind_Reason_Code lookAtFrame(_Unwind_Context *context, void *data)
{
    const Owner owner = ownerAt(_Unwind_GetIP(context));
    static_cast<Search *>(data)->found = owner;
    return owner == Owner::StandardLibrary ? _URC_NO_REASON : _URC_END_OF_STACK;
}

Owner ownerOfCaller(void *caller)
{
    const Owner owner = ownerAt(reinterpret_cast<uintptr_t>(caller));
    if (owner != Owner::StandardLibrary)
        return owner;
    // The standard library allocates for whoever called it.
    Search search{Owner::System};
    struct Walk
    {
        Search *search;
        bool isBeyond;
    } walk{&search, false};
    _Unwind_Backtrace(
        [](_Unwind_Context *context, void *data) {
            auto *walking = static_cast<Walk *>(data);
            const Owner here = ownerAt(_Unwind_GetIP(context));
            // The frames of the replaced functions come first, then those of the standard library.
            walking->isBeyond = walking->isBeyond || here == Owner::StandardLibrary;
            return walking->isBeyond ? lookAtFrame(context, walking->search) : _URC_NO_REASON;
        },
        &walk);
    return search.found;
}

/// Whether TensorFlow is anywhere on the stack. An instance of a template that several libraries contain runs in one of
/// them for all, so that an allocation of TensorFlow may come from code of ours.
bool isWithinTensorFlow()
{
    bool isFound = false;
    _Unwind_Backtrace(
        [](_Unwind_Context *context, void *found) {
            *static_cast<bool *>(found) = ownerAt(_Unwind_GetIP(context)) == Owner::TensorFlow;
            return *static_cast<bool *>(found) ? _URC_END_OF_STACK : _URC_NO_REASON;
        },
        &isFound);
    return isFound;
}

bool mustFail(void *caller)
{
    if (!isArmed || (isForOneThread && !isArmingThread) || isLooking || isLoading)
        return false;
    isLooking = true;
    const bool isOurs = ownerOfCaller(caller) == Owner::Ours && !(modules.haveTensorFlow && isWithinTensorFlow());
    isLooking = false;
    if (!isOurs)
        return false;
    const long number = ++counted;
    const bool fails = firstFailing > 0 && (number == firstFailing || (failsLaterToo && number > firstFailing));
    failed += fails ? 1 : 0;
    return fails;
}

void *allocated(size_t size, void *caller)
{
    if (!mustFail(caller))
        return __libc_malloc(size);
    errno = ENOMEM;
    return nullptr;
}

} // namespace

namespace failingAllocations {

void noteModules()
{
    isLooking = true;
    size_t count = 0;
    dl_iterate_phdr(noteModule, &count); // other threads go on with the list: the first ones come again, in their order
    modules.count = count;
    isLooking = false;
}

void arm(long first, bool laterOnesToo, bool ofThisThread)
{
    noteModules();
    firstFailing = first;
    failsLaterToo = laterOnesToo;
    isForOneThread = ofThisThread;
    isArmingThread = true;
    counted = 0;
    failed = 0;
    isArmed = true;
}

long disarm()
{
    isArmed = false;
    isArmingThread = false;
    return counted;
}

long failedCount()
{
    return failed;
}

} // namespace failingAllocations

#define ZAV_REPLACED extern "C" __attribute__((visibility("default")))
#define ZAV_CALLER __builtin_return_address(0)

ZAV_REPLACED void *malloc(size_t size)
{
    return allocated(size, ZAV_CALLER);
}

ZAV_REPLACED void *calloc(size_t count, size_t size)
{
    if (!mustFail(ZAV_CALLER))
        return __libc_calloc(count, size);
    errno = ENOMEM;
    return nullptr;
}

ZAV_REPLACED void *realloc(void *block, size_t size)
{
    if (!mustFail(ZAV_CALLER))
        return __libc_realloc(block, size);
    errno = ENOMEM;
    return nullptr;
}

ZAV_REPLACED void free(void *block)
{
    __libc_free(block);
}

// The real one takes this library for its caller, whose search path then counts. The names here are whole paths.
ZAV_REPLACED void *dlopen(const char *name, int mode)
{
    static const auto open = reinterpret_cast<void *(*)(const char *, int)>(dlsym(RTLD_NEXT, "dlopen"));
    const bool wasLoading = isLoading;
    isLoading = true;
    void *library = open(name, mode);
    isLoading = wasLoading;
    if (isArmed && !modules.haveTensorFlow)
        failingAllocations::noteModules();
    return library;
}

#define ZAV_REPLACED_OPERATOR __attribute__((visibility("default")))

ZAV_REPLACED_OPERATOR void *operator new(size_t size)
{
    void *block = allocated(size == 0 ? 1 : size, ZAV_CALLER);
    return block != nullptr ? block : throw std::bad_alloc();
}

ZAV_REPLACED_OPERATOR void *operator new[](size_t size)
{
    void *block = allocated(size == 0 ? 1 : size, ZAV_CALLER);
    return block != nullptr ? block : throw std::bad_alloc();
}

ZAV_REPLACED_OPERATOR void *operator new(size_t size, const std::nothrow_t & /*tag*/) noexcept
{
    return allocated(size == 0 ? 1 : size, ZAV_CALLER);
}

ZAV_REPLACED_OPERATOR void *operator new[](size_t size, const std::nothrow_t & /*tag*/) noexcept
{
    return allocated(size == 0 ? 1 : size, ZAV_CALLER);
}

ZAV_REPLACED_OPERATOR void operator delete(void *block) noexcept
{
    __libc_free(block);
}

ZAV_REPLACED_OPERATOR void operator delete[](void *block) noexcept
{
    __libc_free(block);
}

ZAV_REPLACED_OPERATOR void operator delete(void *block, size_t /*size*/) noexcept
{
    __libc_free(block);
}

ZAV_REPLACED_OPERATOR void operator delete[](void *block, size_t /*size*/) noexcept
{
    __libc_free(block);
}
