// Files that a command adds to a folder: all of them or none.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/interruption.h"

namespace cli {

/// Throws a CommandError when anything is at the path, a link included.
void requireAbsent(const std::string& path);

/// Removes what was written unless everything was.
class NewFiles {
public:
    NewFiles() = default;
    ~NewFiles() = default;
    NewFiles(const NewFiles&) = delete;
    NewFiles& operator=(const NewFiles&) = delete;

    /// Writes a file and the folders above it. Throws a CommandError.
    void write(const std::string& path, std::string_view content);

    /// Makes a file that is the same as `original`: a relative link, on Windows a copy. Throws a
    /// CommandError.
    void repeat(const std::string& path, const std::string& original);

    void keep();

private:
    std::vector<std::unique_ptr<TemporaryFile>> files_;
};

/// A path quoted for a command line.
std::string commandArgument(const std::string& path);

}  // namespace cli
