// What the tests ask of the operating system. CMake compiles test_platform_posix.cpp or
// test_platform_windows.cpp; sized_thread.h has the stacks. Programs without GoogleTest use this,
// too: where the system refuses what always works, the program ends with a message.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_TEST_PLATFORM_H
#define RGEN_TESTS_SUPPORT_TEST_PLATFORM_H

#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace rgen_test {

// Environment, as child processes and the library see it.

// The UTF-8 value of an environment variable; empty for an unset one.
std::string environmentText(const std::string& name);
// Sets an environment variable; the empty text removes it.
void setEnvironmentText(const std::string& name, const std::string& value);
// Separates the folders in the variable PATH.
extern const char pathSeparator;
// The folder of the running program, without a separator at its end.
std::string programFolder();
// Sets the variable TZ of the C library; null removes it.
void setTimeZone(const char* name);

// Sets an environment variable for one scope.
class ScopedEnvironmentText {
public:
    ScopedEnvironmentText(const std::string& name, const std::string& value)
        : name_(name), previous_(environmentText(name)) {
        setEnvironmentText(name_, value);
    }
    ~ScopedEnvironmentText() { setEnvironmentText(name_, previous_); }
    ScopedEnvironmentText(const ScopedEnvironmentText&) = delete;
    ScopedEnvironmentText& operator=(const ScopedEnvironmentText&) = delete;

private:
    std::string name_;
    std::string previous_;
};

// Sets the process's time zone for one scope.
class TimeZone {
public:
    // A name that the C libraries of both systems know without a time zone data base: a standard
    // name, the offset west of Greenwich and, for daylight saving by the rules of the United
    // States, a second name: "UTC0", "EST5EDT".
    explicit TimeZone(const std::string& name) {
        if (const char* previous = std::getenv("TZ")) previous_ = previous;
        setTimeZone(name.c_str());
    }
    ~TimeZone() { setTimeZone(previous_ ? previous_->c_str() : nullptr); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;

private:
    std::optional<std::string> previous_;
};

// This process.

unsigned long processNumber();
// The number of the calling thread; found without allocating memory.
unsigned long long callingThread();
// One line for each of: the number of threads, what is done about signals; on Linux also the file
// mode mask, the blocked signals, the open descriptors and a hash of the environment.
std::string systemState();
// Physical memory in bytes, without the free memory of the C heap, whose size depends on the last
// large blocks.
long residentBytes();
// Grows by one with each descriptor (Linux) or handle (Windows) that is left open.
long openHandles();
// How much openHandles() may grow without a leak: locks make a handle of their own when threads
// first meet at them (Windows).
extern const long handlesOfLocks;
long threadCount();
// Children that have ended and that nobody has collected. Always 0 on Windows.
long endedChildren();
// Children that run or, on Linux, have ended. An ended one has closed its files.
long allChildren();
// While it lives, a leak sanitizer ignores the blocks that its thread allocates.
class IgnoredLeaks {
public:
    IgnoredLeaks();
    ~IgnoredLeaks();
    IgnoredLeaks(const IgnoredLeaks&) = delete;
    IgnoredLeaks& operator=(const IgnoredLeaks&) = delete;
};
// True when there is a leak sanitizer and it knows of a block that nothing points to any more.
bool sanitizerFindsLeaks();
// Writes how this process was started, one fact a line, its fields separated by tabs.
void describeProcess(std::ostream& out);
// Ends this process as a program error does, without any dialog, debugger or core file.
[[noreturn]] void crash();
// From now on signals that ask this process to end have no effect, where the system has signals.
void ignoreSignals();
// Runs this program once more, with this environment, in a process that outlives this one.
void startThisProgramAgain();

// Another program of this build, run as a child process that may be killed.
class ChildHost {
public:
    // Starts the program of that name in the folder of this one.
    ChildHost(const std::string& program, const std::vector<std::string>& arguments);
    // Kills a child that still runs.
    ~ChildHost() { kill(); }
    ChildHost(const ChildHost&) = delete;
    ChildHost& operator=(const ChildHost&) = delete;

    bool runs();
    // Ends the child from outside and waits until it is gone.
    void kill();
    // Waits for the child's own end and returns its exit code; -1 when it did not end by itself.
    int exitCode();

private:
    void* process_ = nullptr;
};

// Libraries that are loaded at run time.

// Null when the library cannot be loaded; lastLoadError() says why.
void* loadLibrary(const char* path);
bool unloadLibrary(void* library);
std::string lastLoadError();
// The address of an exported function or variable, or null.
void* findSymbol(void* library, const char* name);
// True while the system has the library in memory.
bool isLibraryLoaded(const char* path);
// Whether the report library uses the C++ runtime of its host, and not one of its own.
extern const bool librarySharesCppRuntime;
// What stays when the report library is unloaded, in bytes and handles: of each load (a table of
// the C++ runtime), and of each thread that has used the library and still lives.
extern const long bytesKeptOfLoad;
extern const long bytesKeptOfThread;
extern const long handlesKeptOfThread;

// Handles of delete-on-close files, as rgen_generateReport returns them.

// Closes the handle and returns what the file holds; on Windows, where such a handle is for writing
// only, a text with the number of bytes.
std::string takeDeliveredFile(void* handle);
// The same for a file without a name; true when it has exactly these bytes, on Windows when it has
// that many.
bool closesOnBytes(void* handle, const std::string& bytes);

}  // namespace rgen_test

#endif
