// All that the library asks of the operating system. platform_windows.cpp and platform_posix.cpp
// implement this page, and a build compiles exactly one of them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace rgen::platform {

/// Path text as the file system takes it: UTF-16 on Windows, UTF-8 bytes elsewhere.
using NativePathText = boost::filesystem::path::string_type;

/// What hosts receive in delete-on-close mode: a Windows HANDLE, elsewhere a descriptor number.
using FileHandle = void*;

/// Separator of the paths that the library builds: "\" on Windows, "/" elsewhere.
extern const char pathSeparator;

/// Converts UTF-8 path text for the file system. Throws std::range_error ("bad conversion") for
/// text that is not strict UTF-8, on every system alike.
NativePathText toWidePath(const std::string& utf8Text);

/// True for a device, a pipe or a socket at `path`: opening or reading one may wait for ever.
/// Windows, whose devices and pipes are in no folder, is not asked: always false. Throws as
/// toWidePath does.
bool namesSpecialFile(const std::string& path);

/// Takes over the time zone that the host or the system has set since the last time. Does nothing
/// on Windows, whose C runtime goes by its own.
void adoptTimeZone();

/// Breaks `secondsSince1970` (UTC) down into local time, by the time zone that was adopted last.
/// False for negative numbers and for those past the year 3000; `brokenDown` is then unspecified.
bool localTime(std::int64_t secondsSince1970, std::tm& brokenDown);

/// Writes `brokenDown` after `text` by a time facet that the host has put into the global C++
/// locale. False, and nothing is written, when that is the standard facet, and always on Windows:
/// there a facet sets the C locale of the whole process for as long as it writes.
bool appendByHostFacet(std::string& text, const std::tm& brokenDown, std::string_view pattern);

/// Creates `path` as a file that vanishes with its last handle; an existing file is overwritten.
/// Windows takes the bytes of `path` in the ANSI code page. False when it cannot be created.
bool createDeleteOnCloseFile(const std::string& path, FileHandle& file);

/// Writes `size` bytes; does not wait for the reader of a full pipe. False when nothing could be
/// written because of an error; otherwise `written` tells how many bytes arrived.
bool writeToFile(FileHandle file, const void* bytes, std::size_t size, std::size_t& written);

void closeFile(FileHandle file);

/// A program that was started from one command line. It has no console window and no open files of
/// this process, and it is not ended when this object goes.
class ChildProcess {
public:
    /// Starts the program that the first word of `commandLine` (UTF-8) names; the system searches
    /// for it. Throws std::range_error as toWidePath does. started() tells the outcome.
    explicit ChildProcess(const std::string& commandLine);
    ~ChildProcess();

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const;

    /// Waits for the end of the program. True when the time has passed and the program still runs;
    /// false when it has ended or cannot be waited for.
    bool waitTimedOut(std::uint32_t milliseconds);

    /// Fetches the exit code of an ended program, once. False when the system does not tell it.
    bool queryExitCode(std::uint32_t& exitCode);

private:
    std::intptr_t process_;
    std::intptr_t waitHandle_;
};

/// Collects the remains of programs that were still running when their ChildProcess went. Cheap
/// when there are none; does nothing on Windows, where nothing remains.
void reapAbandonedProcesses();

/// The pages stay, but the system may take their content and their memory, until they are written
/// again.
void offerPages(void* pages, std::size_t size);

/// A pointer that each thread has for itself; null until the thread sets it. Reading it needs no
/// memory. The first setting on a thread may; false when there is none, or when the process has no
/// slot left for such pointers, and the pointer then stays null.
void* threadPointer();
bool setThreadPointer(void* pointer);

/// Lowest address of the calling thread's stack, or null when the system does not tell it. Throws
/// std::bad_alloc when memory is too short for asking.
const char* stackLimit();

/// What keeps a template within a stack.
struct StackRule {
    /// Bytes that a template must leave to the code below it.
    std::size_t reserve;
    /// Levels of XPath nesting that a template does without, so that one expression fits into
    /// `reserve`. libxml2 itself allows 5,000 levels, on Windows 1,000.
    int withheldXPathLevels;
};

/// For a small stack whose limit is known.
extern const StackRule smallStackRule;

/// For a stack whose limit the system does not tell: that of a fiber or coroutine on Linux. A
/// template then counts on `assumedStack` bytes below it.
extern const StackRule unknownStackRule;
extern const std::size_t assumedStack;

}  // namespace rgen::platform
