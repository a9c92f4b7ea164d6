// Temporary files and folders under names that nobody can predict.
// temporary_files_posix.cpp and temporary_files_windows.cpp create them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "process/guardian.h"

namespace vellum {

/// Letters and digits from the system's source of random numbers.
std::string randomLetters();

/// Creates a new empty file; throws std::system_error when the name is taken.
void createNewFile(const std::filesystem::path& path);

/// Creates a new folder that only this user may enter; throws std::system_error when the name is
/// taken.
void createPrivateFolder(const std::filesystem::path& path);

/// A private folder in the system's folder for temporary files. The destructor removes it with all
/// that it contains; the guardian does so if this process is killed.
class TemporaryFolder {
public:
    /// Throws std::system_error.
    explicit TemporaryFolder(tools::Guardian& guardian);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(const char* name) const { return path_ / name; }
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace vellum
