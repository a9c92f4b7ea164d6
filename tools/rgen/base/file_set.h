// Which files a run reads, so that it does not write over them.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>

namespace cli {

/// A set of files, each known by all of its names: other spellings, symbolic and hard links.
class InputFiles {
public:
    /// The file need not exist.
    void add(const std::string& path);

    /// The name under which the file at `path` was added, if it was. Pipes and devices never are.
    std::optional<std::string> find(const std::string& path) const;

private:
    /// Places and identities, each with the name.
    std::map<std::string, std::string> names_;
};

/// What the paths of two outputs have in common when the second would replace the first: the folder
/// and the name in it. A link is replaced itself, wherever it leads.
std::string placeWritten(const std::string& path);

/// The files that readInputFile has read.
InputFiles& filesRead();

}  // namespace cli
