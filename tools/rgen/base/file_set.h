// The files that a run reads, so that it does not overwrite them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>

namespace cli {

/// A set of files that finds a file under any name: other spellings, symbolic and hard links.
class FileSet {
public:
    /// The file need not exist.
    void add(const std::string& path);

    /// The name under which the file at `path` was added, if any. Never finds pipes and devices.
    std::optional<std::string> find(const std::string& path) const;

private:
    /// Canonical paths and identities, each with the name that was added.
    std::map<std::string, std::string> names_;
};

/// The same text for two output paths if the second would replace the first: identity of the folder
/// and name in it. Links are not resolved, because an output replaces the link itself.
std::string placeWritten(const std::string& path);

/// The files that readInputFile has read so far.
FileSet& filesRead();

}  // namespace cli
