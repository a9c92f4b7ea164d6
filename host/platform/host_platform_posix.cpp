// The operating system for the host library on Linux. The version of a loaded library is read from
// its note, which is in memory: the file may have been replaced since.
//
// SPDX-License-Identifier: MIT
#include <dlfcn.h>
#include <elf.h>
#include <link.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <unistd.h>
#include <unwind.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <stdexcept>
#include <string_view>

#include "platform/host_platform.h"
#include "text/character_check.h"

namespace rgenh::platform {
namespace {

constexpr long nanosecondsOfSecond = 1000000000;

// As in cmake/version_note.c.in.
constexpr std::string_view versionNoteName("strata_repgenlib", sizeof "strata_repgenlib");

timespec timeAfter(std::int64_t milliseconds) noexcept {
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    // A wait this long is as good as one without an end.
    constexpr std::int64_t longest = std::int64_t{1000} * 86400 * 365 * 100;
    const std::int64_t added = milliseconds < longest ? milliseconds : longest;
    time.tv_sec += added / 1000;
    time.tv_nsec += added % 1000 * 1000000;
    if (time.tv_nsec >= nanosecondsOfSecond) {
        time.tv_nsec -= nanosecondsOfSecond;
        ++time.tv_sec;
    }
    return time;
}

_Unwind_Reason_Code stopUnwinding(_Unwind_Context* /*context*/, void* /*unused*/) {
    return _URC_END_OF_STACK;
}

/// The system's unwinder prepares its tables when it unwinds for the first time. A host that is
/// linked with -static-libgcc throws with a copy of its own, which uses the system's unwinder for
/// frames of the libraries. Without its tables that would end the process.
[[gnu::constructor]] void prepareUnwinder() {
    _Unwind_Backtrace(stopUnwinding, nullptr);
}

struct ThreadStart {
    void (*run)(void*);
    void* argument;
};

void* runThread(void* start) {
    const std::unique_ptr<ThreadStart> owned(static_cast<ThreadStart*>(start));
    owned->run(owned->argument);
    return nullptr;
}

/// Blocks the signals that terminals, timers and other processes send; a new thread inherits that.
/// The rest stays as it is: language runtimes send SIGPWR, SIGURG, real-time signals and others to
/// single threads, to stop them during garbage collections, and would wait for ever.
class BlockedSignals {
public:
    BlockedSignals() noexcept {
        sigset_t blocked;
        sigemptyset(&blocked);
        for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGALRM, SIGCHLD, SIGTSTP,
                                 SIGWINCH, SIGIO, SIGUSR1}) {
            sigaddset(&blocked, number);
        }
        pthread_sigmask(SIG_BLOCK, &blocked, &previous_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t previous_ = {};
};

constexpr std::size_t aligned(std::size_t size) {
    return (size + 3) / 4 * 4;
}

/// Removes up to `size` bytes at the start of a text and returns them.
std::string_view take(std::string_view& text, std::size_t size) {
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(taken.size());
    return taken;
}

/// The text of the version note in a segment of notes; empty if there is none.
std::string_view versionIn(std::string_view notes) {
    while (notes.size() >= sizeof(Elf64_Nhdr)) {
        Elf64_Nhdr header = {};
        std::memcpy(&header, take(notes, sizeof header).data(), sizeof header);
        const std::string_view name = take(notes, aligned(header.n_namesz));
        const std::string_view content = take(notes, aligned(header.n_descsz));
        if (name.substr(0, header.n_namesz) == versionNoteName) {
            return content.substr(0, content.find('\0'));
        }
    }
    return {};
}

struct Search {
    const std::uintptr_t address;
    std::string& version;
};

bool contains(const dl_phdr_info& file, std::uintptr_t address) {
    for (int i = 0; i < file.dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = file.dlpi_phdr[i];
        const std::uintptr_t start = file.dlpi_addr + part.p_vaddr;
        if (part.p_type == PT_LOAD && address >= start && address - start < part.p_memsz) {
            return true;
        }
    }
    return false;
}

int findVersion(dl_phdr_info* file, std::size_t /*size*/, void* context) {
    auto& search = *static_cast<Search*>(context);
    if (!contains(*file, search.address)) return 0;
    for (int i = 0; i < file->dlpi_phnum; ++i) {
        const ElfW(Phdr)& part = file->dlpi_phdr[i];
        if (part.p_type != PT_NOTE) continue;
        const auto* const start = reinterpret_cast<const char*>(file->dlpi_addr + part.p_vaddr);
        const std::string_view version = versionIn({start, part.p_memsz});
        if (!version.empty()) search.version = version;
    }
    return 1;
}

}  // namespace

std::uint64_t currentThread() noexcept {
    return static_cast<std::uint64_t>(pthread_self());
}

std::uint64_t currentProcess() noexcept {
    return static_cast<std::uint64_t>(getpid());
}

struct Monitor::State {
    pthread_mutex_t mutex;
    pthread_cond_t condition;
};

Monitor::Monitor() : state_(std::make_unique<State>()) {
    pthread_mutex_init(&state_->mutex, nullptr);
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&state_->condition, &attributes);
    pthread_condattr_destroy(&attributes);
}

Monitor::~Monitor() {
    pthread_cond_destroy(&state_->condition);
    pthread_mutex_destroy(&state_->mutex);
}

void Monitor::lock() noexcept {
    pthread_mutex_lock(&state_->mutex);
}

void Monitor::unlock() noexcept {
    pthread_mutex_unlock(&state_->mutex);
}

void Monitor::wait(std::int64_t milliseconds) noexcept {
    if (milliseconds < 0) {
        pthread_cond_wait(&state_->condition, &state_->mutex);
        return;
    }
    const timespec end = timeAfter(milliseconds);
    pthread_cond_timedwait(&state_->condition, &state_->mutex, &end);
}

void Monitor::notifyAll() noexcept {
    pthread_cond_broadcast(&state_->condition);
}

bool Thread::start(void (*run)(void*), void* argument, std::size_t stackBytes) noexcept {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    std::unique_ptr<ThreadStart> start(new (std::nothrow) ThreadStart{run, argument});
    pthread_t thread = {};
    bool isStarted = false;
    if (start != nullptr && pthread_attr_setstacksize(&attributes, stackBytes) == 0) {
        const BlockedSignals blocked;
        isStarted = pthread_create(&thread, &attributes, runThread, start.get()) == 0;
    }
    pthread_attr_destroy(&attributes);
    // The thread frees it.
    if (isStarted) static_cast<void>(start.release());
    handle_ = thread;
    isJoinable_ = isStarted;
    return isStarted;
}

bool Thread::isTerminated() const noexcept {
    return false;
}

void Thread::join() noexcept {
    pthread_join(handle_, nullptr);
    isJoinable_ = false;
}

void Thread::detach() noexcept {
    pthread_detach(handle_);
    isJoinable_ = false;
}

std::int64_t monotonicMicroseconds() noexcept {
    const timespec now = timeAfter(0);
    return std::int64_t{now.tv_sec} * 1000000 + now.tv_nsec / 1000;
}

int processorCount() noexcept {
    static const int count = [] {
        cpu_set_t usable;
        CPU_ZERO(&usable);
        return sched_getaffinity(0, sizeof usable, &usable) == 0 ? CPU_COUNT(&usable) : 1;
    }();
    return count;
}

boost::filesystem::path nativePath(const std::string& path) {
    if (!isUtf8(path)) throw std::range_error("a path is not valid UTF-8");
    return {path};
}

std::string utf8Path(const std::string& path) {
    return path;
}

std::string systemErrorText(std::int64_t number) {
    const char* const text = strerrordesc_np(static_cast<int>(number));
    if (text != nullptr) return text;
    return "error " + std::to_string(number);
}

LoadedFile loadedFileOf(const void* address) {
    LoadedFile file;
    file.version = "unknown";
    Dl_info info = {};
    if (dladdr(address, &info) != 0) {
        const std::unique_ptr<char, decltype(&std::free)> whole(realpath(info.dli_fname, nullptr),
                                                                &std::free);
        file.path = whole != nullptr ? whole.get() : info.dli_fname;
    }
    Search search = {reinterpret_cast<std::uintptr_t>(address), file.version};
    dl_iterate_phdr(findVersion, &search);
    return file;
}

void closeFile(void* handle) noexcept {
    close(static_cast<int>(reinterpret_cast<std::intptr_t>(handle)));
}

}  // namespace rgenh::platform
