// The process environment on Linux.
//
// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <filesystem>

#include "support/process_environment.h"

namespace rgen_test {

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

}  // namespace rgen_test
