// The Linux half of platform.h. Paths go to the file system as the UTF-8 bytes they are; the
// converter is started without a shell and waited for through a process descriptor.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <locale>
#include <mutex>
#include <new>
#include <sstream>
#include <typeinfo>
#include <vector>

#include "platform/platform.h"
#include "platform/utf8.h"

namespace rgen::platform {
namespace {

constexpr std::int64_t lastAcceptedSecond = 32535215999;

constexpr std::size_t kibibyte = 1024;
/// Kibibytes of stack that a sanitizer's instrumentation takes on top.
constexpr std::size_t instrumentation = RGEN_SANITIZER_STACK_KIB;

int asDescriptor(FileHandle file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file));
}

/// Splits at blanks outside double quotes and drops the quotes. Nothing else is special.
std::vector<std::string> splitCommandLine(const std::string& commandLine) {
    std::vector<std::string> words;
    bool inQuotes = false;
    bool inWord = false;
    for (const char character : commandLine) {
        if (character == ' ' && !inQuotes) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        if (character == '"') {
            inQuotes = !inQuotes;
        } else {
            words.back() += character;
        }
    }
    return words;
}

/// The surroundings of a converter: a session of its own, default signals, no descriptor of this
/// process, and the null device as its standard streams.
class SpawnSettings {
public:
    SpawnSettings() {
        if (posix_spawn_file_actions_init(&actions) != 0) throw std::bad_alloc();
        if (posix_spawnattr_init(&attributes) != 0) {
            posix_spawn_file_actions_destroy(&actions);
            throw std::bad_alloc();
        }
        sigset_t signals;
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes, &signals);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        if (!describeDescriptors()) {
            release();
            throw std::bad_alloc();
        }
    }
    ~SpawnSettings() { release(); }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

private:
    bool describeDescriptors() {
        for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
            const int added =
                posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
            if (added != 0) return false;
        }
        return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1) == 0;
    }

    void release() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
};

constexpr int noDescriptor = -1;

int openProcessDescriptor(pid_t process) {
    return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

enum class ChildState { Running, Ended, Unknown };

/// Collects the process if it has ended. A process that somebody else has collected counts as ended
/// with an unknown exit code. Without a process descriptor (refused by the system) the number
/// serves.
ChildState collect(pid_t process, int descriptor, std::uint32_t& exitCode) {
    siginfo_t info = {};
    const idtype_t kind = descriptor == noDescriptor ? P_PID : P_PIDFD;
    const id_t id = static_cast<id_t>(descriptor == noDescriptor ? process : descriptor);
    int outcome = 0;
    do {
        outcome = waitid(kind, id, &info, WEXITED | WNOHANG);
    } while (outcome == -1 && errno == EINTR);
    if (outcome == -1) return errno == ECHILD ? ChildState::Ended : ChildState::Unknown;
    if (info.si_pid == 0) return ChildState::Running;
    exitCode = static_cast<std::uint32_t>(info.si_status);
    return ChildState::Ended;
}

/// The list has nothing to destroy: the exit functions of a host may come after the destructors of
/// this library's static objects.
struct AbandonedProcess {
    pid_t process;
    int descriptor;
    AbandonedProcess* next;
};

std::mutex abandonedMutex;
AbandonedProcess* abandonedProcesses = nullptr;
std::atomic<bool> anyAbandoned = false;

void abandon(pid_t process, int descriptor) {
    void* room = std::malloc(sizeof(AbandonedProcess));
    if (room == nullptr) {
        if (descriptor != noDescriptor) close(descriptor);
        return;
    }
    const std::lock_guard lock(abandonedMutex);
    abandonedProcesses = ::new (room) AbandonedProcess{process, descriptor, abandonedProcesses};
    anyAbandoned = true;
}

/// True when the process is gone or can never be collected; its descriptor is closed then.
bool disposeIfEnded(pid_t process, int descriptor) {
    std::uint32_t exitCode = 0;
    if (collect(process, descriptor, exitCode) == ChildState::Running) return false;
    if (descriptor != noDescriptor) close(descriptor);
    return true;
}

/// The library is unloaded, or the process ends: nobody will collect them any more. At the end of
/// the process other threads may still run: where one of them uses the list, it stays.
[[gnu::destructor]] void forgetAbandonedProcesses() {
    const std::unique_lock lock(abandonedMutex, std::try_to_lock);
    if (!lock.owns_lock()) return;
    while (AbandonedProcess* abandoned = abandonedProcesses) {
        if (abandoned->descriptor != noDescriptor) close(abandoned->descriptor);
        abandonedProcesses = abandoned->next;
        std::free(abandoned);
    }
    anyAbandoned = false;
}

/// Stands in for the process descriptor when the system refuses one: looks every 20 ms.
bool runsForAnother(pid_t process, std::uint32_t milliseconds) {
    constexpr std::uint32_t step = 20;
    for (std::uint32_t passed = 0; passed < milliseconds; passed += step) {
        siginfo_t info = {};
        const int outcome =
            waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT);
        if (outcome == -1 || info.si_pid != 0) return false;
        poll(nullptr, 0, step);
    }
    return true;
}

}  // namespace

const char pathSeparator = '/';

const StackRule smallStackRule = {(200 + instrumentation) * kibibyte, 3000};

// Less for expressions, so that more of the little is left for templates.
const StackRule unknownStackRule = {(128 + instrumentation) * kibibyte, 4000};

// Of the 256 KiB that every call may count on, the host and the way to the template take up to 32.
const std::size_t assumedStack = (224 + instrumentation) * kibibyte;

NativePathText toWidePath(const std::string& utf8Text) {
    requireUtf8(utf8Text);
    return utf8Text;
}

bool namesSpecialFile(const std::string& path) {
    struct stat information = {};
    if (stat(toWidePath(path).c_str(), &information) != 0) return false;
    return !S_ISREG(information.st_mode) && !S_ISDIR(information.st_mode);
}

void adoptTimeZone() {
    // Without TZ it looks at the system's file each time, so it is not for every single value.
    tzset();
}

bool localTime(std::int64_t secondsSince1970, std::tm& brokenDown) {
    if (secondsSince1970 < 0 || secondsSince1970 > lastAcceptedSecond) return false;
    const std::time_t seconds = secondsSince1970;
    return localtime_r(&seconds, &brokenDown) != nullptr;
}

bool appendByHostFacet(std::string& text, const std::tm& brokenDown, std::string_view pattern) {
    using Facet = std::time_put<char>;
    const std::locale global;
    const auto& facet = std::use_facet<Facet>(global);
    if (typeid(facet) == typeid(Facet)) return false;
    std::ostringstream stream;
    stream.imbue(global);
    facet.put(std::ostreambuf_iterator<char>(stream), stream, ' ', &brokenDown, pattern.data(),
              pattern.data() + pattern.size());
    text += stream.str();
    return true;
}

bool createDeleteOnCloseFile(const std::string& path, FileHandle& file) {
    const NativePathText nativePath = toWidePath(path);
    const int mayWait = namesSpecialFile(path) ? O_NONBLOCK : 0;
    const int descriptor =
        open(nativePath.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | mayWait,
             S_IRUSR | S_IWUSR);
    if (descriptor == -1) return false;
    struct stat information = {};
    const bool known = fstat(descriptor, &information) == 0;
    const bool isRegular = known && S_ISREG(information.st_mode);
    if (!known || (isRegular && unlink(nativePath.c_str()) != 0)) {
        close(descriptor);
        return false;
    }
    // A file that existed before has its own mode; it stays where the file has other names.
    const bool nameless = fstat(descriptor, &information) == 0 && information.st_nlink == 0;
    if (nameless) static_cast<void>(fchmod(descriptor, S_IRUSR | S_IWUSR));
    file = reinterpret_cast<FileHandle>(static_cast<std::intptr_t>(descriptor));
    return true;
}

bool writeToFile(FileHandle file, const void* bytes, std::size_t size, std::size_t& written) {
    const auto* next = static_cast<const char*>(bytes);
    written = 0;
    while (written < size) {
        const ssize_t count = write(asDescriptor(file), next + written, size - written);
        if (count == -1 && errno == EINTR) continue;
        if (count <= 0) return written > 0;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

void closeFile(FileHandle file) {
    close(asDescriptor(file));
}

ChildProcess::ChildProcess(const std::string& commandLine)
    : process_(0), waitHandle_(noDescriptor) {
    std::vector<std::string> words = splitCommandLine(toWidePath(commandLine));
    if (words.empty()) return;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const SpawnSettings settings;
    pid_t process = 0;
    if (posix_spawnp(&process, arguments.front(), &settings.actions, &settings.attributes,
                     arguments.data(), environ) != 0) {
        return;
    }
    process_ = process;
    waitHandle_ = openProcessDescriptor(process);
}

ChildProcess::~ChildProcess() {
    const auto process = static_cast<pid_t>(process_);
    const auto descriptor = static_cast<int>(waitHandle_);
    if (started() && !disposeIfEnded(process, descriptor)) abandon(process, descriptor);
}

bool ChildProcess::started() const {
    return process_ != 0;
}

bool ChildProcess::waitTimedOut(std::uint32_t milliseconds) {
    if (waitHandle_ == noDescriptor)
        return runsForAnother(static_cast<pid_t>(process_), milliseconds);
    pollfd ended = {static_cast<int>(waitHandle_), POLLIN, 0};
    const int outcome = poll(&ended, 1, static_cast<int>(milliseconds));
    // A signal handler of the host may cut the wait short; the caller simply waits again.
    return outcome == 0 || (outcome == -1 && errno == EINTR);
}

bool ChildProcess::queryExitCode(std::uint32_t& exitCode) {
    exitCode = 0;
    const auto descriptor = static_cast<int>(waitHandle_);
    if (collect(static_cast<pid_t>(process_), descriptor, exitCode) != ChildState::Ended) {
        return false;
    }
    // The number may belong to another process from now on.
    if (descriptor != noDescriptor) close(descriptor);
    process_ = 0;
    return true;
}

void reapAbandonedProcesses() {
    if (!anyAbandoned) return;
    // Where another thread collects them, or did when the host forked, nobody waits for it.
    const std::unique_lock lock(abandonedMutex, std::try_to_lock);
    if (!lock) return;
    AbandonedProcess** link = &abandonedProcesses;
    while (AbandonedProcess* abandoned = *link) {
        if (disposeIfEnded(abandoned->process, abandoned->descriptor)) {
            *link = abandoned->next;
            std::free(abandoned);
        } else {
            link = &abandoned->next;
        }
    }
    anyAbandoned = abandonedProcesses != nullptr;
}

void offerPages(void* pages, std::size_t size) {
    madvise(pages, size, MADV_FREE);
}

}  // namespace rgen::platform
