// A library for LD_PRELOAD that makes something happen in vellum directly before a chosen system
// call. Its variables:
//
// INTERPOSER_AT     the number of the call, counted from 1 INTERPOSER_DOES   "kill": kills the
// process; "signal": sends SIGTERM; "remove": deletes the page; "late": sets the clock a day ahead
// from then on INTERPOSER_PAGE   the page INTERPOSER_LOG    receives a line for each call with its
// number and name, and the word "delivered" when a file is renamed after the chosen call
//
// Calls that examine or change files and processes count, but not those that only read. With
// "late", only calls that read the clock count. Calls of child processes do not count.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

struct Plan {
    pid_t process = 0;
    long at = 0;
    long count = 0;
    std::string does;
    std::string page;
    std::string log;
    bool hasHappened = false;
};

Plan& plan() {
    static Plan made = [] {
        const auto text = [](const char* name) {
            const char* value = getenv(name);
            return std::string(value == nullptr ? "" : value);
        };
        Plan plan;
        const bool isVellum = std::strcmp(program_invocation_short_name, "vellum") == 0;
        plan.process = isVellum ? getpid() : 0;
        plan.at = std::atol(text("INTERPOSER_AT").c_str());
        plan.does = text("INTERPOSER_DOES");
        plan.page = text("INTERPOSER_PAGE");
        plan.log = text("INTERPOSER_LOG");
        return plan;
    }();
    return made;
}

template <typename Function>
Function original(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

void note(const std::string& text) {
    using Write = ssize_t (*)(int, const void*, size_t);
    static const Write write = original<Write>("write");
    const int file = open(plan().log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    static_cast<void>(!write(file, text.data(), text.size()));
    close(file);
}

void happen() {
    plan().hasHappened = true;
    using Unlink = int (*)(const char*);
    using Kill = int (*)(pid_t, int);
    static const Unlink unlink = original<Unlink>("unlink");
    static const Kill kill = original<Kill>("kill");
    if (plan().does == "remove") unlink(plan().page.c_str());
    if (plan().does == "signal") kill(getpid(), SIGTERM);
    if (plan().does == "kill") kill(getpid(), SIGKILL);
}

void step(const char* name, bool isClock = false) {
    if (plan().process == 0 || plan().process != getpid()) return;
    if (isClock != (plan().does == "late")) return;
    const bool isAfter = plan().hasHappened;
    ++plan().count;
    if (isAfter && std::strcmp(name, "rename") == 0) note("delivered\n");
    if (isAfter) return;
    note(std::to_string(plan().count) + " " + name + "\n");
    if (plan().count == plan().at) happen();
}

}  // namespace

// One line for each function: result, name, parameters, arguments of the original call.
#define PASS_ON(result, name, parameters, arguments)                    \
    extern "C" result name parameters {                                 \
        static const auto next = original<result(*) parameters>(#name); \
        step(#name);                                                    \
        return next arguments;                                          \
    }

PASS_ON(int, stat, (const char* path, struct stat* facts), (path, facts))
PASS_ON(int, lstat, (const char* path, struct stat* facts), (path, facts))
PASS_ON(int, rename, (const char* from, const char* to), (from, to))
PASS_ON(int, unlink, (const char* path), (path))
PASS_ON(int, unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
PASS_ON(int, remove, (const char* path), (path))
PASS_ON(int, mkdir, (const char* path, mode_t mode), (path, mode))
PASS_ON(pid_t, fork, (), ())
PASS_ON(int, kill, (pid_t process, int number), (process, number))
PASS_ON(int, poll, (pollfd * watched, nfds_t count, int time), (watched, count, time))
PASS_ON(pid_t, waitpid, (pid_t process, int* status, int options), (process, status, options))
PASS_ON(ssize_t, write, (int file, const void* text, size_t size), (file, text, size))
PASS_ON(ssize_t, writev, (int file, const struct iovec* parts, int count), (file, parts, count))

extern "C" int waitid(idtype_t type, id_t process, siginfo_t* facts, int options) {
    using Wait = int (*)(idtype_t, id_t, siginfo_t*, int);
    static const Wait next = original<Wait>("waitid");
    step("waitid");
    return next(type, process, facts, options);
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) {
    using Clock = int (*)(clockid_t, timespec*);
    static const Clock next = original<Clock>("clock_gettime");
    step("clock_gettime", true);
    const int result = next(clock, time);
    constexpr time_t aDay = 86400;
    if (plan().hasHappened && plan().does == "late") time->tv_sec += aDay;
    return result;
}
