// platform.h on Linux, without the state of each thread (thread_state_posix.cpp). Paths are passed
// to the file system as UTF-8 bytes, unchanged.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <iterator>
#include <locale>
#include <sstream>
#include <typeinfo>

#include "platform/platform.h"
#include "platform/utf8.h"

namespace rgen::platform {
namespace {

constexpr std::int64_t lastAcceptedSecond = 32535215999;

int asDescriptor(FileHandle file) {
    return static_cast<int>(reinterpret_cast<std::intptr_t>(file));
}

}  // namespace

const char pathSeparator = '/';

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
    // Without TZ it stats the system's time zone file each time: too slow for every single value.
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
    // A file that existed before keeps its mode if it has other names.
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

void offerPages(void* pages, std::size_t size) {
    madvise(pages, size, MADV_FREE);
}

}  // namespace rgen::platform
