// The steps of a change: lock, let the library write, check, rename.
//
// SPDX-License-Identifier: MIT
#include "data/persistent_store.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <thread>

#include "base/command_error.h"
#include "base/console.h"
#include "base/interruption.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "data/xml_documents.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* keptEnding = ".kept";

/// Resolves links, also to a file that does not exist yet: the link stays, and all users of the
/// file share one lock.
fs::path placeOf(const std::string& path) {
    constexpr int mostLinks = 40;
    fs::path place = fs::u8path(path);
    std::error_code failure;
    for (int links = 0; fs::is_symlink(place, failure); ++links) {
        const fs::path target = fs::read_symlink(place, failure);
        if (failure || links == mostLinks) return fs::u8path(path);
        const fs::path next = place.parent_path() / target;
        const fs::path folder = fs::canonical(next.parent_path(), failure);
        place = failure ? next : folder / next.filename();
    }
    return place;
}

/// The first bytes of a text, cut at a character boundary.
std::string startOf(const std::string& text, std::size_t size) {
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
        --size;
    return text.substr(0, size);
}

/// A fixed hash function: different builds of rgen share the lock.
std::string hashOf(std::string_view text) {
    constexpr std::uint64_t prime = 0x100000001B3U;
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char letter : text)
        hash = (hash ^ static_cast<unsigned char>(letter)) * prime;
    char digits[17] = {};
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return digits;
}

/// File names have at most 255 bytes, so the name of the lock is shortened if necessary.
fs::path lockFileOf(const std::string& path) {
    constexpr std::size_t longest = 200;
    const fs::path place = placeOf(path);
    std::string name = place.filename().u8string();
    if (name.size() > longest) name = startOf(name, longest) + "-" + hashOf(name);
    return fs::u8path(joinedPath(folderOf(place.u8string()), name + ".lock"));
}

std::string folderAdvice(const std::string& path) {
    return "check the rights of the folder \"" + folderOf(path) + "\" and the room on the disk";
}

/// The temporary data directory that the library writes to.
void makeStage(const std::string& folder, const std::string& guidText) {
    makePrivateFolder(folder);
    writeNewFile(joinedPath(folder, "config.xml"),
                 "<config><reportTypes><type guid=\"" + guidText +
                     "\"><persistDataFile>data.xml</persistDataFile>"
                     "<reportTypeFile>none.xsl</reportTypeFile></type></reportTypes></config>\n");
}

CommandError failure(const std::string& message, const std::system_error& error,
                     const std::string& advice) {
    const bool isFull = isFullDisk(error.code());
    return {isFull ? ExitCode::Unverified : ExitCode::Environment,
            message + ": " + error.code().message(), advice};
}

/// A link, a folder or a file without access rights in place of the lock file blocks every run.
CommandError withoutLock(const fs::path& lockFile, const std::system_error& error) {
    const std::string path = lockFile.u8string();
    const std::error_code& code = error.code();
    std::error_code ignored;
    const bool isRefused = code == std::errc::permission_denied ||
                           code == std::errc::too_many_symbolic_link_levels ||
                           code == std::errc::is_a_directory;
    const bool isInTheWay = isRefused && fs::exists(fs::symlink_status(lockFile, ignored));
    return failure("cannot lock \"" + path + "\"", error,
                   isInTheWay ? "remove it when no rgen runs" : folderAdvice(path));
}

/// Tells whether the file exists, can be read and is XML.
bool isWhole(const std::string& path) {
    if (!exists(path)) return false;
    requireReadable(path);
    return damageOf(path).empty();
}

}  // namespace

StoreLock::StoreLock(const std::string& path, Console& console) : lock_(lockFileOf(path)) {
    constexpr std::chrono::milliseconds pause{10};
    constexpr std::chrono::seconds silence{1};
    const auto start = std::chrono::steady_clock::now();
    bool isNoted = false;
    try {
        while (!lock_.tryLock()) {
            throwIfInterrupted();
            if (!isNoted && std::chrono::steady_clock::now() - start > silence) {
                console.note("waiting for another rgen, which changes \"" + path + "\"");
                isNoted = true;
            }
            std::this_thread::sleep_for(pause);
        }
    } catch (const NotALockFile& error) {
        throw CommandError(ExitCode::Environment,
                           "cannot lock \"" + lock_.path().u8string() + "\": " + error.what(),
                           "move it away; rgen needs this name while it changes the data");
    } catch (const std::system_error& error) {
        throw withoutLock(lock_.path(), error);
    }
}

StagedStore::StagedStore(const std::string& path, const repgen::Guid& guid,
                         const std::string& guidText) try
    : path_(path), stage_(placeOf(path).u8string()), guid_(guid) {
    makeStage(stage_.file(".rgen"), guidText);
    generator_.setDataDir(folderOf(stage_.file(".rgen")));
} catch (const std::system_error& error) {
    throw failure("cannot write beside \"" + path + "\"", error,
                  folderAdvice(placeOf(path).u8string()));
}

std::string StagedStore::inside(const std::string& name) const {
    return stage_.file(".rgen/" + name);
}

/// The owner can read and change the file, whatever the umask, because rgen reads it right after.
void StagedStore::write(const ValueSet& values) {
    generator_.setPersistentValues(guid_, libraryValues(values));
    std::error_code ignored;
    fs::permissions(fs::u8path(inside("data.xml")), fs::perms::owner_read | fs::perms::owner_write,
                    fs::perm_options::add, ignored);
}

std::vector<Value> StagedStore::read(RgenStatus& status) const {
    return persistentValues(generator_, guid_, status);
}

std::string StagedStore::damage() const {
    return damageOf(inside("data.xml"));
}

void StagedStore::deliver() const {
    try {
        replaceFile(fs::u8path(inside("data.xml")), placeOf(path_));
    } catch (const std::system_error& error) {
        throw failure("cannot write \"" + path_ + "\"", error,
                      folderAdvice(placeOf(path_).u8string()));
    }
}

void restoreKeptData(const std::string& path, Console& console) {
    const std::string kept = path + keptEnding;
    if (!exists(kept)) return;
    std::error_code failure;
    if (isWhole(path)) {
        fs::remove(fs::u8path(kept), failure);
        return;
    }
    fs::rename(fs::u8path(kept), fs::u8path(path), failure);
    if (failure) {
        throw CommandError(ExitCode::Environment,
                           "cannot put \"" + kept + "\" back: " + failure.message(),
                           "rename it to \"" + path + "\"");
    }
    console.note("an earlier run was ended while it wrote; its old data was put back");
}

void recoverPersistentData(const DataDirectory& directory, const ReportType& type,
                           Console& console) {
    const std::string path = directory.path(type.persistDataFile);
    if (type.persistDataFile.empty() || !exists(path + keptEnding)) return;
    // Left by a run that ended after its last step; it does not affect readers.
    if (isWhole(path)) return;
    const StoreLock lock(path, console);
    restoreKeptData(path, console);
}

void recoverForReading(const DataDirectory& directory, const ReportType& type, Console& console) {
    try {
        recoverPersistentData(directory, type, console);
    } catch (const CommandError& error) {
        if (error.exitCode == ExitCode::Interrupted) throw;
        console.note("the old data in \"" + directory.path(type.persistDataFile) + keptEnding +
                     "\" was not put back: " + error.what());
    }
}

}  // namespace cli
