// SPDX-License-Identifier: Apache-2.0
#include "Interruption.h"

#include <atomic>
#include <csignal>

namespace zav {

namespace {

constexpr int FIRST_SIGNAL_EXIT_CODE = 128;

#ifdef SIGHUP
constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};
#else
constexpr int SIGNALS[] = {SIGINT, SIGTERM};
#endif

std::atomic<int> notedSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not wait for a lock");

} // namespace

// Outside the unnamed namespace, because it has the linkage of C.
extern "C" {
static void noteSignal(int signal)
{
    notedSignal = signal;
    std::signal(signal, SIG_DFL);
}
}

Interruption::Interruption()
{
    notedSignal = 0;
    for (const int signal : SIGNALS) {
        // A background job of a shell ignores SIGINT, one started by nohup SIGHUP; keep that.
        if (std::signal(signal, noteSignal) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

Interruption::~Interruption()
{
    for (const int signal : SIGNALS) {
        if (std::signal(signal, SIG_DFL) == SIG_IGN)
            std::signal(signal, SIG_IGN);
    }
}

bool Interruption::isRequested() const
{
    return notedSignal != 0;
}

int Interruption::exitCode() const
{
    return notedSignal == 0 ? 0 : FIRST_SIGNAL_EXIT_CODE + notedSignal;
}

} // namespace zav
