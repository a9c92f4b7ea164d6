// The process's current folder for the length of a scope, for cases about relative paths.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_WORKING_FOLDER_H
#define RGEN_TESTS_SUPPORT_WORKING_FOLDER_H

#include <filesystem>
#include <string>

namespace rgen_test {

class WorkingFolder {
public:
    explicit WorkingFolder(const std::string& path) : previous_(std::filesystem::current_path()) {
        std::filesystem::current_path(std::filesystem::u8path(path));
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(previous_, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::filesystem::path previous_;
};

}  // namespace rgen_test

#endif
