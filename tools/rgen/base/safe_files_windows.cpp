// Safe files on Windows.
//
// SPDX-License-Identifier: MIT
#include "base/safe_files.h"

#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace cli {

struct FolderLock::State {
    HANDLE file = INVALID_HANDLE_VALUE;

    ~State() {
        if (file != INVALID_HANDLE_VALUE) CloseHandle(file);
    }
};

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, DWORD reason) {
    throw std::system_error(static_cast<int>(reason), std::system_category(), path);
}

fs::path lockPath(const std::string& folder) {
    return fs::u8path(folder) / lockFileName;
}

/// Owns a handle. Closing can fail like a write, so it is checked.
class File {
public:
    File(const std::string& path, DWORD access, DWORD sharing, DWORD creation)
        : path_(path),
          handle_(CreateFileW(fs::u8path(path).c_str(), access, sharing, nullptr, creation,
                              FILE_ATTRIBUTE_NORMAL, nullptr)) {
        if (handle_ == INVALID_HANDLE_VALUE) fail(path_, GetLastError());
    }
    ~File() {
        if (handle_ != INVALID_HANDLE_VALUE) CloseHandle(handle_);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOrdinary() const { return GetFileType(handle_) == FILE_TYPE_DISK; }

    void write(std::string_view bytes) const {
        constexpr std::size_t largestPiece = 1U << 30U;
        while (!bytes.empty()) {
            DWORD size = 0;
            const auto piece = static_cast<DWORD>(std::min(bytes.size(), largestPiece));
            if (WriteFile(handle_, bytes.data(), piece, &size, nullptr) == 0) {
                fail(path_, GetLastError());
            }
            if (size == 0) fail(path_, ERROR_DISK_FULL);
            bytes.remove_prefix(size);
        }
    }

    void flush() const {
        if (FlushFileBuffers(handle_) == 0) fail(path_, GetLastError());
    }

    void finish() {
        const HANDLE handle = handle_;
        handle_ = INVALID_HANDLE_VALUE;
        if (CloseHandle(handle) == 0) fail(path_, GetLastError());
    }

private:
    const std::string path_;
    HANDLE handle_;
};

/// No other process can open the file while the handle is open.
HANDLE openAlone(const fs::path& path, DWORD creation) {
    return CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, creation,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

/// Empty when unknown.
std::string machineName() {
    DWORD size = 0;
    GetComputerNameExW(ComputerNamePhysicalDnsHostname, nullptr, &size);
    std::wstring name(size, L'\0');
    if (size == 0 || GetComputerNameExW(ComputerNamePhysicalDnsHostname, name.data(), &size) == 0) {
        return {};
    }
    name.resize(size);
    return fs::path(name).u8string();
}

/// Errors are ignored: without the text the folder is never taken for abandoned.
void writeMachineName(HANDLE file) {
    const std::string name = machineName();
    DWORD size = 0;
    WriteFile(file, name.data(), static_cast<DWORD>(name.size()), &size, nullptr);
}

bool isOfThisMachine(HANDLE file) {
    constexpr DWORD longestName = 1024;
    char bytes[longestName] = {};
    DWORD size = 0;
    if (ReadFile(file, bytes, longestName, &size, nullptr) == 0 || size == 0) return false;
    return std::string_view(bytes, size) == machineName();
}

}  // namespace

/// A new folder inherits the rights of its parent folder.
bool makePrivateFolder(const std::string& path) {
    if (CreateDirectoryW(fs::u8path(path).c_str(), nullptr) != 0) return true;
    if (GetLastError() == ERROR_ALREADY_EXISTS) return false;
    fail(path, GetLastError());
}

bool isPrivateFolder(const std::string& path) {
    const DWORD facts = GetFileAttributesW(fs::u8path(path).c_str());
    return facts != INVALID_FILE_ATTRIBUTES && (facts & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (facts & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

void writeNewFile(const std::string& path, std::string_view bytes) {
    File file(path, GENERIC_WRITE, 0, CREATE_NEW);
    file.write(bytes);
    file.finish();
}

void applyMask(const std::string&) {}

OwnerRights::OwnerRights() : mask_(0) {}

OwnerRights::~OwnerRights() = default;

void flushFile(const std::string& path) {
    constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    File file(path, GENERIC_WRITE, everybody, OPEN_EXISTING);
    file.flush();
    file.finish();
}

void writeIntoSpecialFile(const std::string& path, std::string_view bytes) {
    File file(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
    // A regular file that has replaced it would be truncated by a failed write.
    if (file.isOrdinary()) fail(path, ERROR_FILE_EXISTS);
    file.write(bytes);
    file.finish();
}

bool isFullDisk(const std::error_code& failure) {
    // Functions of the C++ library report errno values, all others Windows error codes.
    if (failure.category() != std::system_category())
        return failure == std::errc::no_space_on_device;
    const int reason = failure.value();
    return reason == ERROR_DISK_FULL || reason == ERROR_HANDLE_DISK_FULL ||
           reason == ERROR_FILE_TOO_LARGE;
}

std::optional<std::string> fileIdentity(const std::string& path) {
    constexpr DWORD everybody = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    HANDLE file = CreateFileW(fs::u8path(path).c_str(), FILE_READ_ATTRIBUTES, everybody, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) return std::nullopt;
    BY_HANDLE_FILE_INFORMATION facts = {};
    const bool isKnown = GetFileInformationByHandle(file, &facts) != 0;
    CloseHandle(file);
    if (!isKnown) return std::nullopt;
    return std::to_string(facts.dwVolumeSerialNumber) + ":" + std::to_string(facts.nFileIndexHigh) +
           ":" + std::to_string(facts.nFileIndexLow);
}

/// Windows ignores letter case, and dots and blanks at the end.
std::string comparableName(const std::string& name) {
    std::wstring letters = fs::u8path(name).wstring();
    letters.erase(letters.find_last_not_of(L". ") + 1);
    const auto length = static_cast<int>(letters.size());
    LCMapStringW(LOCALE_INVARIANT, LCMAP_UPPERCASE, letters.data(), length, letters.data(), length);
    return fs::path(letters).u8string();
}

FolderLock::FolderLock(std::unique_ptr<State> state) : state_(std::move(state)) {}

FolderLock::~FolderLock() = default;

std::unique_ptr<FolderLock> FolderLock::make(const std::string& folder) {
    auto state = std::make_unique<State>();
    state->file = openAlone(lockPath(folder), CREATE_NEW);
    if (state->file == INVALID_HANDLE_VALUE) {
        const DWORD reason = GetLastError();
        const bool isTaken = reason == ERROR_PATH_NOT_FOUND || reason == ERROR_FILE_EXISTS ||
                             reason == ERROR_SHARING_VIOLATION;
        if (isTaken) return nullptr;
        fail(folder, reason);
    }
    writeMachineName(state->file);
    return std::unique_ptr<FolderLock>(new FolderLock(std::move(state)));
}

std::unique_ptr<FolderLock> FolderLock::takeOver(const std::string& folder) {
    auto state = std::make_unique<State>();
    state->file = openAlone(lockPath(folder), OPEN_EXISTING);
    if (state->file == INVALID_HANDLE_VALUE || !isOfThisMachine(state->file)) return nullptr;
    return std::unique_ptr<FolderLock>(new FolderLock(std::move(state)));
}

}  // namespace cli
