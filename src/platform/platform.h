// Everything that the library needs from the operating system, but for child processes
// (child_process.h). Implemented in platform_windows.cpp, on Linux in platform_posix.cpp and
// thread_state_posix.cpp.
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

/// Path text in the file system's encoding: UTF-16 on Windows, UTF-8 bytes elsewhere.
using NativePathText = boost::filesystem::path::string_type;

/// What hosts receive in delete-on-close mode: a Windows HANDLE, elsewhere a file descriptor.
using FileHandle = void*;

/// Separator of the paths that the library builds: "\" on Windows, "/" elsewhere.
extern const char pathSeparator;

/// Converts UTF-8 path text for the file system. Throws std::range_error ("bad conversion") for
/// text that is not strict UTF-8, on every system.
NativePathText toWidePath(const std::string& utf8Text);

/// True for a device, a pipe or a socket at `path`: opening or reading one may block for ever.
/// Always false on Windows, where devices and pipes are not in folders. Throws like toWidePath.
bool namesSpecialFile(const std::string& path);

/// Reads the time zone again, which the host or the system may have changed. Does nothing on
/// Windows, where the C runtime keeps its own.
void adoptTimeZone();

/// Converts `secondsSince1970` (UTC) to local time in the time zone that was adopted last. False
/// for negative numbers and after the year 3000; `brokenDown` is then unspecified.
bool localTime(std::int64_t secondsSince1970, std::tm& brokenDown);

/// Appends `brokenDown` to `text`, formatted by a time facet that the host has put into the global
/// C++ locale. Returns false and appends nothing for the standard facet, and always on Windows:
/// there a facet changes the C locale of the whole process while it formats.
bool appendByHostFacet(std::string& text, const std::tm& brokenDown, std::string_view pattern);

/// Creates a file at `path` that is deleted when its last handle is closed; an existing file is
/// overwritten. On Windows `path` is in the ANSI code page. False when it cannot be created.
bool createDeleteOnCloseFile(const std::string& path, FileHandle& file);

/// Writes `size` bytes; does not block on a full pipe. False when an error occurred before anything
/// was written; otherwise `written` is the number of bytes written.
bool writeToFile(FileHandle file, const void* bytes, std::size_t size, std::size_t& written);

void closeFile(FileHandle file);

/// Lets the system reclaim the memory of these pages and discard their content until they are
/// written again. They stay allocated.
void offerPages(void* pages, std::size_t size);

/// A pointer of the calling thread; null until the thread sets it. Reading it needs no memory, the
/// first set on a thread may. setThreadPointer() returns false, and the pointer stays null, without
/// memory or when the process has no TLS slot left.
void* threadPointer();
bool setThreadPointer(void* pointer);

/// Lowest address of the calling thread's stack, or null when the system does not know it, as on a
/// fiber on Linux. Throws std::bad_alloc when the query runs out of memory.
const char* stackLimit();

}  // namespace rgen::platform
