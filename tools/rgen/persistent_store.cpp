// The road of new persistent data: lock, staged by the library, checked, renamed.
//
// SPDX-License-Identifier: MIT
#include "persistent_store.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include "command_error.h"
#include "console.h"
#include "input_file.h"
#include "interruption.h"
#include "xml_documents.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr const char* keptEnding = ".kept";

/// The file itself where the configured name is a link to it: the link stays, and all who use the
/// file share one lock.
fs::path placeOf(const std::string& path) {
    fs::path place = fs::u8path(path);
    std::error_code failure;
    if (!fs::is_symlink(place, failure)) return place;
    fs::path target = fs::canonical(place, failure);
    return failure ? place : target;
}

std::string besides(const std::string& path, const char* ending) {
    return placeOf(path).u8string() + ending;
}

std::string folderAdvice(const std::string& path) {
    return "check the rights of the folder \"" + folderOf(path) + "\" and the room on the disk";
}

void writeConfiguration(const std::string& path, const std::string& guidText) {
    std::ofstream file(fs::u8path(path), std::ios::binary);
    file << "<config><reportTypes><type guid=\"" << guidText << "\"><persistDataFile>data.xml"
         << "</persistDataFile><reportTypeFile>none.xsl</reportTypeFile></type></reportTypes>"
         << "</config>\n";
    file.close();
    if (!file) throw std::system_error(errno, std::generic_category());
}

/// A folder for its owner alone, with the data directory that the library writes in.
void makeStage(const std::string& folder, const std::string& guidText) {
    const fs::path stage = fs::u8path(folder);
    fs::remove_all(stage);
    if (!fs::create_directory(stage)) {
        throw std::system_error(std::make_error_code(std::errc::file_exists));
    }
    fs::permissions(stage, fs::perms::owner_all);
    fs::create_directory(stage / ".rgen");
    writeConfiguration(joinedPath(folder, ".rgen/config.xml"), guidText);
}

}  // namespace

StoreLock::StoreLock(const std::string& path, Console& console)
    : lock_(fs::u8path(besides(path, ".lock"))) {
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
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Environment,
                           "cannot lock \"" + path + "\": " + error.code().message(),
                           folderAdvice(path));
    }
}

StagedStore::StagedStore(const std::string& path, const RgenGuid& guid, const std::string& guidText)
    : path_(path), folder_(besides(path, ".writing")), guid_(guid) {
    try {
        makeStage(folder_, guidText);
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Environment,
                           "cannot write beside \"" + path + "\": " + error.code().message(),
                           folderAdvice(path));
    }
    generator_.setDataDir(folder_);
}

StagedStore::~StagedStore() {
    std::error_code ignored;
    fs::remove_all(fs::u8path(folder_), ignored);
}

std::string StagedStore::inside(const std::string& name) const {
    return joinedPath(folder_, ".rgen/" + name);
}

RgenStatus StagedStore::write(const std::vector<Value>& values) const {
    return generator_.setPersistentData(guid_, values);
}

std::vector<Value> StagedStore::read(RgenStatus& status) const {
    return generator_.persistentData(guid_, status);
}

std::string StagedStore::damage() const {
    return damageOf(inside("data.xml"));
}

void StagedStore::deliver() const {
    try {
        replaceFile(fs::u8path(inside("data.xml")), placeOf(path_));
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Unverified,
                           "cannot write \"" + path_ + "\": " + error.code().message(),
                           folderAdvice(path_));
    }
}

void putKeptDataBack(const std::string& path, Console& console) {
    const std::string kept = path + keptEnding;
    if (!exists(kept)) return;
    std::error_code failure;
    if (exists(path) && damageOf(path).empty()) {
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
    // What is left of a run that ended after its last step disturbs nobody who reads.
    if (exists(path) && damageOf(path).empty()) return;
    const StoreLock lock(path, console);
    putKeptDataBack(path, console);
}

}  // namespace cli
