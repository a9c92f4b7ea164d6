// What the tests ask of Linux.
//
// SPDX-License-Identifier: MIT
#include "support/test_platform.h"

#include <dirent.h>
#include <dlfcn.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <system_error>

// Null in builds without the leak sanitizer.
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));
extern "C" void __lsan_disable() __attribute__((weak));
extern "C" void __lsan_enable() __attribute__((weak));

namespace rgen_test {
namespace {

// The names in a folder of the process's own that the system makes up.
std::vector<std::string> namesOf(const char* folder) {
    std::vector<std::string> names;
    DIR* directory = opendir(folder);
    if (directory == nullptr) return names;
    const std::string own = std::to_string(dirfd(directory));
    while (const dirent* entry = readdir(directory)) {
        if (entry->d_name[0] != '.' && entry->d_name != own) names.emplace_back(entry->d_name);
    }
    closedir(directory);
    std::sort(names.begin(), names.end());
    return names;
}

// What a descriptor of this process refers to; empty for one that has been closed meanwhile.
std::string targetOf(const std::string& descriptor) {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/fd/" + descriptor, ignored).string();
}

std::string joined(const std::vector<std::string>& texts, const char* separator) {
    std::string result;
    for (const std::string& text : texts)
        result += separator + text;
    return result;
}

// The open descriptors, apart from those that watch abandoned converters until these are reaped.
std::string openDescriptors() {
    std::vector<std::string> numbers = namesOf("/proc/self/fd");
    const auto watches = [](const std::string& number) {
        return targetOf(number) == "anon_inode:[pidfd]";
    };
    numbers.erase(std::remove_if(numbers.begin(), numbers.end(), watches), numbers.end());
    return joined(numbers, " ");
}

std::string signalState() {
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    std::string handled;
    std::string held;
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0) continue;
        const auto handler = reinterpret_cast<std::uintptr_t>(action.sa_handler);
        if (action.sa_handler != SIG_DFL)
            handled += " " + std::to_string(number) + "=" + std::to_string(handler);
        if (sigismember(&blocked, number) == 1) held += " " + std::to_string(number);
    }
    return "handled signals:" + handled + "\nblocked signals:" + held + "\n";
}

std::string fileModeMask() {
    const mode_t mask = umask(0);
    umask(mask);
    return "file mode mask: " + std::to_string(mask) + "\n";
}

std::string environmentState() {
    std::vector<std::string> texts;
    for (char** text = environ; *text != nullptr; ++text)
        texts.emplace_back(*text);
    std::sort(texts.begin(), texts.end());
    return "environment: " + std::to_string(std::hash<std::string>()(joined(texts, "\n"))) + "\n";
}

// The state letter of a process whose parent is this one; nothing for any other, and for one that
// has ended meanwhile, whose file can be opened and not read.
std::string stateOfChild(const std::string& number) {
    std::ifstream file("/proc/" + number + "/stat");
    std::string text;
    std::getline(file, text, '\0');
    // The program's name is in brackets and may hold anything.
    std::istringstream fields(text.substr(std::min(text.size(), text.rfind(')') + 1)));
    std::string state;
    pid_t parent = 0;
    fields >> state >> parent;
    return parent == getpid() ? state : std::string();
}

std::string childStates() {
    std::string states;
    for (const std::string& name : namesOf("/proc")) {
        if (name.find_first_not_of("0123456789") == std::string::npos) states += stateOfChild(name);
    }
    return states;
}

pid_t start(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    pid_t number = 0;
    if (posix_spawn(&number, pointers.front(), nullptr, nullptr, pointers.data(), environ) != 0) {
        std::perror(pointers.front());
        std::abort();
    }
    return number;
}

pid_t asNumber(void* process) {
    return static_cast<pid_t>(reinterpret_cast<std::intptr_t>(process));
}

int asDescriptor(void* handle) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(handle));
}

}  // namespace

const char pathSeparator = ':';

std::string environmentText(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::string() : std::string(value);
}

void setEnvironmentText(const std::string& name, const std::string& value) {
    if (value.empty()) {
        unsetenv(name.c_str());
    } else {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

std::string programFolder() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

void setTimeZone(const char* name) {
    if (name == nullptr) {
        unsetenv("TZ");
    } else {
        setenv("TZ", name, 1);
    }
    tzset();
}

unsigned long processNumber() {
    return static_cast<unsigned long>(getpid());
}

unsigned long long callingThread() {
    return pthread_self();
}

std::string systemState() {
    return "threads: " + std::to_string(threadCount()) + "\ndescriptors:" + openDescriptors() +
           "\n" + signalState() + fileModeMask() + environmentState();
}

long residentBytes() {
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

long openHandles() {
    return static_cast<long>(namesOf("/proc/self/fd").size());
}

const long handlesOfLocks = 0;

long threadCount() {
    return static_cast<long>(namesOf("/proc/self/task").size());
}

long endedChildren() {
    const std::string states = childStates();
    return static_cast<long>(std::count(states.begin(), states.end(), 'Z'));
}

long allChildren() {
    return static_cast<long>(childStates().size());
}

IgnoredLeaks::IgnoredLeaks() {
    if (__lsan_disable != nullptr) __lsan_disable();
}

IgnoredLeaks::~IgnoredLeaks() {
    if (__lsan_enable != nullptr) __lsan_enable();
}

bool sanitizerFindsLeaks() {
    return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

// The arguments come from /proc, so that main needs no parameters. The file that the facts are
// written to is left out.
void describeProcess(std::ostream& out) {
    {
        std::ifstream arguments("/proc/self/cmdline", std::ios::binary);
        for (std::string argument; std::getline(arguments, argument, '\0');)
            out << "argument\t" << argument << '\n';
    }
    out << "directory\t" << std::filesystem::current_path().string() << '\n';
    for (const std::string& number : namesOf("/proc/self/fd")) {
        const std::string target = targetOf(number);
        if (target.find(".unfinished") == std::string::npos)
            out << "descriptor\t" << number << '\t' << target << '\n';
    }
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind("SigBlk:", 0) == 0 || line.rfind("SigIgn:", 0) == 0) out << line << '\n';
    }
    out << "session\t" << (getsid(0) == getpid() ? "own" : "inherited") << '\n';
}

void crash() {
    const rlimit noCoreFile = {0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    signal(SIGSEGV, SIG_DFL);
    raise(SIGSEGV);
    std::abort();
}

void ignoreSignals() {
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_IGN);
}

void startThisProgramAgain() {
    start({std::filesystem::read_symlink("/proc/self/exe").string()});
}

ChildHost::ChildHost(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {programFolder() + "/" + program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    process_ = reinterpret_cast<void*>(static_cast<std::intptr_t>(start(words)));
}

bool ChildHost::runs() {
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(asNumber(process_)), &info,
                  WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

// SIGKILL is what no process can prepare for.
void ChildHost::kill() {
    if (process_ == nullptr) return;
    ::kill(asNumber(process_), SIGKILL);
    waitpid(asNumber(process_), nullptr, 0);
    process_ = nullptr;
}

int ChildHost::exitCode() {
    int status = 0;
    waitpid(asNumber(process_), &status, 0);
    process_ = nullptr;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void* loadLibrary(const char* path) {
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

bool unloadLibrary(void* library) {
    return dlclose(library) == 0;
}

std::string lastLoadError() {
    const char* text = dlerror();
    return text == nullptr ? std::string() : text;
}

void* findSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

bool isLibraryLoaded(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
}

const bool librarySharesCppRuntime = true;

const long bytesKeptOfLoad = 0;
const long bytesKeptOfThread = 256;
const long handlesKeptOfThread = 0;

std::string takeDeliveredFile(void* handle) {
    const int descriptor = asDescriptor(handle);
    const off_t size = lseek(descriptor, 0, SEEK_END);
    std::string content(static_cast<std::size_t>(std::max<off_t>(size, 0)), '\0');
    const ssize_t count = pread(descriptor, content.data(), content.size(), 0);
    content.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    close(descriptor);
    return content;
}

bool closesOnBytes(void* handle, const std::string& bytes) {
    struct stat status = {};
    const bool hasNoName = fstat(asDescriptor(handle), &status) == 0 && status.st_nlink == 0;
    return takeDeliveredFile(handle) == bytes && hasNoName;
}

}  // namespace rgen_test
