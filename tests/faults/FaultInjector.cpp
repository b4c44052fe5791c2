// SPDX-License-Identifier: Apache-2.0
//
// Runs a program and makes the n-th of its system calls on files of a folder fail.
//
//   fault_injector [--under FOLDER]... [--calls NAMES] [--nth N] [--every] [--do WHAT] [--log FILE] -- PROGRAM
//   ARGUMENT...
//
// --under FOLDER  counts calls on files with this beginning of their path only; may be repeated
// --calls NAMES   those of these kinds, separated by commas: open, read, write, sync, rename, mmap, mkdir, close,
//                 truncate, unlink, seek, stat; default: all
// --nth N         which of the counted calls, from 1; default 0: none
// --every         that one and all after it
// --do WHAT       the name of an error number (EIO, ENOSPC, ...): the call is not made and fails with it;
//                 short: the call is made with half of its bytes; KILL, TERM, INT or HUP: the signal is sent before
//                 the call, which is then made, if the program lives
// --log FILE      one line for each counted call: number, kind, name of the system call, path
//
// The last line of the log is `counted N done M`. Exit code: that of the program, or 128 and the number of the signal
// that ended it.
//
// The kernel stops the process at these calls alone (seccomp) and the injector changes its registers (ptrace): no call
// of any library passes unseen, as those from within libc would pass a library that is loaded before it.
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

/// Which file a system call is about.
enum class Subject { Descriptor, Path, PathAt, MappedDescriptor, RenamedTo, RenamedToAt };

struct Call
{
    long number;
    const char *name;
    const char *kind;
    Subject subject;
    bool canBeShort;
};

constexpr std::array CALLS = {
    Call{SYS_open, "open", "open", Subject::Path, false},
    Call{SYS_openat, "openat", "open", Subject::PathAt, false},
    Call{SYS_creat, "creat", "open", Subject::Path, false},
    Call{SYS_read, "read", "read", Subject::Descriptor, true},
    Call{SYS_pread64, "pread64", "read", Subject::Descriptor, true},
    Call{SYS_readv, "readv", "read", Subject::Descriptor, false},
    Call{SYS_write, "write", "write", Subject::Descriptor, true},
    Call{SYS_pwrite64, "pwrite64", "write", Subject::Descriptor, true},
    Call{SYS_writev, "writev", "write", Subject::Descriptor, false},
    Call{SYS_copy_file_range, "copy_file_range", "write", Subject::Descriptor, false},
    Call{SYS_sendfile, "sendfile", "write", Subject::Descriptor, false},
    Call{SYS_fsync, "fsync", "sync", Subject::Descriptor, false},
    Call{SYS_fdatasync, "fdatasync", "sync", Subject::Descriptor, false},
    Call{SYS_rename, "rename", "rename", Subject::RenamedTo, false},
    Call{SYS_renameat, "renameat", "rename", Subject::RenamedToAt, false},
    Call{SYS_renameat2, "renameat2", "rename", Subject::RenamedToAt, false},
    Call{SYS_link, "link", "rename", Subject::RenamedTo, false},
    Call{SYS_linkat, "linkat", "rename", Subject::RenamedToAt, false},
    Call{SYS_mmap, "mmap", "mmap", Subject::MappedDescriptor, false},
    Call{SYS_mkdir, "mkdir", "mkdir", Subject::Path, false},
    Call{SYS_mkdirat, "mkdirat", "mkdir", Subject::PathAt, false},
    Call{SYS_close, "close", "close", Subject::Descriptor, false},
    Call{SYS_ftruncate, "ftruncate", "truncate", Subject::Descriptor, false},
    Call{SYS_truncate, "truncate", "truncate", Subject::Path, false},
    Call{SYS_fallocate, "fallocate", "truncate", Subject::Descriptor, false},
    Call{SYS_unlink, "unlink", "unlink", Subject::Path, false},
    Call{SYS_unlinkat, "unlinkat", "unlink", Subject::PathAt, false},
    Call{SYS_lseek, "lseek", "seek", Subject::Descriptor, false},
    Call{SYS_stat, "stat", "stat", Subject::Path, false},
    Call{SYS_lstat, "lstat", "stat", Subject::Path, false},
    Call{SYS_fstat, "fstat", "stat", Subject::Descriptor, false},
    Call{SYS_newfstatat, "newfstatat", "stat", Subject::PathAt, false},
    Call{SYS_statx, "statx", "stat", Subject::PathAt, false},
    Call{SYS_access, "access", "stat", Subject::Path, false},
};

struct Named
{
    const char *name;
    int number;
};

constexpr std::array ERRORS = {
    Named{"EIO", EIO},       Named{"ENOSPC", ENOSPC}, Named{"EINTR", EINTR},   Named{"EMFILE", EMFILE},
    Named{"EACCES", EACCES}, Named{"EROFS", EROFS},   Named{"EDQUOT", EDQUOT},
};
constexpr std::array SIGNALS = {Named{"KILL", SIGKILL}, Named{"TERM", SIGTERM}, Named{"INT", SIGINT},
                                Named{"HUP", SIGHUP}};

struct Plan
{
    std::vector<std::string> folders;
    std::string kinds;
    long nth = 0;
    bool isForEvery = false;
    int error = 0;
    int signal = 0;
    bool isShort = false;
    std::string logPath;
    char **program = nullptr;
};

[[noreturn]] void fail(const std::string &what)
{
    std::fprintf(stderr, "fault_injector: %s\n", what.c_str());
    std::_Exit(125);
}

template <typename Names>
int numberOf(const Names &names, const std::string &name)
{
    for (const Named &named : names) {
        if (name == named.name)
            return named.number;
    }
    return 0;
}

void readAction(const std::string &name, Plan *plan)
{
    plan->isShort = name == "short";
    plan->error = numberOf(ERRORS, name);
    plan->signal = numberOf(SIGNALS, name);
    if (!plan->isShort && plan->error == 0 && plan->signal == 0)
        fail("unknown --do " + name);
}

Plan readArguments(int argc, char **argv)
{
    Plan plan;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--") {
            plan.program = argv + i + 1;
            break;
        }
        if (option == "--every") {
            plan.isForEvery = true;
            continue;
        }
        if (i + 1 >= argc)
            fail("no value for " + option);
        const std::string value = argv[++i];
        if (option == "--under")
            plan.folders.push_back(value);
        else if (option == "--calls")
            plan.kinds = "," + value + ",";
        else if (option == "--nth")
            plan.nth = std::stol(value);
        else if (option == "--do")
            readAction(value, &plan);
        else if (option == "--log")
            plan.logPath = value;
        else
            fail("unknown option " + option);
    }
    if (plan.program == nullptr || plan.program[0] == nullptr)
        fail("no program");
    return plan;
}

bool isCounted(const Call &call, const Plan &plan)
{
    return plan.kinds.empty() || plan.kinds.find("," + std::string(call.kind) + ",") != std::string::npos;
}

/// Lets the kernel stop the process at the counted calls, and nowhere else. A mapping without a file is not stopped.
void installFilter(const Plan &plan)
{
    constexpr auto load = [](size_t offset) -> sock_filter {
        return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
    };
    std::vector<sock_filter> program = {load(offsetof(seccomp_data, nr))};
    for (const Call &call : CALLS) {
        if (!isCounted(call, plan))
            continue;
        const auto number = static_cast<unsigned>(call.number);
        if (call.subject == Subject::MappedDescriptor) {
            program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 5));
            program.push_back(load(offsetof(seccomp_data, args) + 4 * sizeof(__u64)));
            program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0xffffffffU, 1, 0));
            program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
            program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
            program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
        } else {
            program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1));
            program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
        }
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0)
        fail(std::string("seccomp: ") + std::strerror(errno));
}

std::string linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target{};
    const ssize_t size = readlink(path.c_str(), target.data(), target.size());
    return size > 0 ? std::string(target.data(), static_cast<size_t>(size)) : std::string();
}

/// The text at an address of another process.
std::string textAt(pid_t process, unsigned long long address)
{
    std::string text;
    while (text.size() < PATH_MAX) {
        std::array<char, 256> piece{};
        // Not across the end of a page: the next one may not be there.
        const size_t size = std::min<size_t>(piece.size(), 4096 - (address % 4096));
        const iovec local = {piece.data(), size};
        const iovec remote = {reinterpret_cast<void *>(address), size}; // NOLINT(performance-no-int-to-ptr)
        if (process_vm_readv(process, &local, 1, &remote, 1, 0) <= 0)
            break;
        const size_t length = strnlen(piece.data(), size);
        text.append(piece.data(), length);
        if (length < size)
            break;
        address += size;
    }
    return text;
}

std::string processFile(pid_t process, const std::string &name)
{
    return "/proc/" + std::to_string(process) + "/" + name;
}

std::string descriptorPath(pid_t process, unsigned long long descriptor)
{
    return linkTarget(processFile(process, "fd/" + std::to_string(static_cast<int>(descriptor))));
}

std::string pathAt(pid_t process, int folder, unsigned long long address)
{
    const std::string path = textAt(process, address);
    if (path.empty() || path.front() == '/')
        return path.empty() && folder >= 0 ? descriptorPath(process, static_cast<unsigned>(folder)) : path;
    const std::string base = folder == AT_FDCWD ? linkTarget(processFile(process, "cwd"))
                                                : descriptorPath(process, static_cast<unsigned>(folder));
    return base + "/" + path;
}

std::string subjectOf(const Call &call, pid_t process, const user_regs_struct &registers)
{
    switch (call.subject) {
    case Subject::Descriptor:
        return descriptorPath(process, registers.rdi);
    case Subject::MappedDescriptor:
        return descriptorPath(process, registers.r8);
    case Subject::Path:
        return pathAt(process, AT_FDCWD, registers.rdi);
    case Subject::RenamedTo:
        return pathAt(process, AT_FDCWD, registers.rsi);
    case Subject::PathAt:
        return pathAt(process, static_cast<int>(registers.rdi), registers.rsi);
    case Subject::RenamedToAt:
        return pathAt(process, static_cast<int>(registers.rdx), registers.r10);
    }
    return {};
}

class Injector
{
public:
    explicit Injector(const Plan &plan) : m_plan(plan)
    {
        if (!plan.logPath.empty())
            m_log = std::fopen(plan.logPath.c_str(), "w");
    }

    int run();

private:
    void start();
    void resumeAll();
    bool handle(pid_t thread, int status);
    void stopAtCall(pid_t thread);
    void disturb(pid_t thread, const Call &call, user_regs_struct *registers);

    const Plan &m_plan;
    FILE *m_log = nullptr;
    pid_t m_program = 0;
    int m_exitCode = 0;
    long m_counted = 0;
    long m_done = 0;
};

void Injector::start()
{
    std::array<int, 2> gate{};
    if (pipe(gate.data()) != 0)
        fail("no pipe");
    m_program = fork();
    if (m_program == 0) {
        char go = 0;
        close(gate[1]);
        if (read(gate[0], &go, 1) != 1)
            std::_Exit(125);
        close(gate[0]);
        for (const Named &named : SIGNALS) // a background job of a shell ignores some, and hands that on
            std::signal(named.number, SIG_DFL);
        installFilter(m_plan);
        execv(m_plan.program[0], m_plan.program);
        fail(std::string("cannot run ") + m_plan.program[0]);
    }
    const long options = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                         PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
    if (ptrace(PTRACE_SEIZE, m_program, nullptr, options) != 0) // NOLINT(cppcoreguidelines-pro-type-vararg)
        fail(std::string("ptrace: ") + std::strerror(errno));
    if (write(gate[1], "g", 1) != 1)
        fail("the program did not start");
    close(gate[0]);
    close(gate[1]);
}

int Injector::run()
{
    start();
    for (;;) {
        int status = 0;
        const pid_t thread = waitpid(-1, &status, __WALL);
        if (thread < 0)
            break;
        if (!handle(thread, status))
            continue;
    }
    if (m_log != nullptr) {
        std::fprintf(m_log, "counted %ld done %ld\n", m_counted, m_done);
        std::fclose(m_log);
    }
    return m_exitCode;
}

bool Injector::handle(pid_t thread, int status)
{
    if (WIFEXITED(status) || WIFSIGNALED(status)) {
        if (thread == m_program)
            m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return false;
    }
    const int event = status >> 16;
    int signal = 0;
    if (event == PTRACE_EVENT_SECCOMP)
        stopAtCall(thread);
    else if (event == 0)
        signal = WSTOPSIG(status);
    ptrace(PTRACE_CONT, thread, nullptr, static_cast<long>(signal)); // NOLINT(cppcoreguidelines-pro-type-vararg)
    return true;
}

void Injector::stopAtCall(pid_t thread)
{
    user_regs_struct registers{};
    if (ptrace(PTRACE_GETREGS, thread, nullptr, &registers) != 0) // NOLINT(cppcoreguidelines-pro-type-vararg)
        return;
    const auto *call = std::find_if(CALLS.begin(), CALLS.end(), [&](const Call &known) {
        return known.number == static_cast<long>(registers.orig_rax);
    });
    if (call == CALLS.end())
        return;
    const std::string path = subjectOf(*call, thread, registers);
    const bool isOurs = std::any_of(m_plan.folders.begin(), m_plan.folders.end(),
                                    [&](const std::string &folder) { return path.rfind(folder, 0) == 0; });
    if (!isOurs || (m_plan.isShort && !call->canBeShort))
        return;
    ++m_counted;
    if (m_log != nullptr) {
        std::fprintf(m_log, "%ld %s %s %s\n", m_counted, call->kind, call->name, path.c_str());
        std::fflush(m_log);
    }
    if (m_plan.nth > 0 && (m_counted == m_plan.nth || (m_plan.isForEvery && m_counted > m_plan.nth)))
        disturb(thread, *call, &registers);
}

void Injector::disturb(pid_t thread, const Call & /*call*/, user_regs_struct *registers)
{
    ++m_done;
    if (m_plan.signal != 0) {
        kill(m_program, m_plan.signal);
        return;
    }
    if (m_plan.isShort) {
        registers->rdx = (registers->rdx + 1) / 2;
    } else {
        registers->orig_rax = static_cast<unsigned long long>(-1L); // no call at all
        registers->rax = static_cast<unsigned long long>(-static_cast<long>(m_plan.error));
    }
    ptrace(PTRACE_SETREGS, thread, nullptr, registers); // NOLINT(cppcoreguidelines-pro-type-vararg)
}

} // namespace

int main(int argc, char **argv)
{
    const Plan plan = readArguments(argc, argv);
    return Injector(plan).run();
}
